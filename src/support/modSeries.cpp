#include "support/modSeries.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "support/NoValue.h"
#include "support/modText.h"

namespace wattlark {

namespace {

// By value, unlike std::max, so that the compiler need not branch.
constexpr double Larger(double a, double b) {
  return a > b ? a : b;
}

// Entries near the largest double would overflow their sum; dividing first cannot.
double AverageOfHugeEntries(std::span<const double> series, double count) {
  double mean = 0;
  for (const double entry : series) {
    if (HasValue(entry)) mean += entry / count;
  }
  return mean;
}

}  // namespace

void ShiftSeries(std::span<double> series, std::int64_t n, double fill) {
  if (n <= 0) return;
  if (n >= std::ssize(series)) {
    std::fill(series.begin(), series.end(), fill);
    return;
  }
  const auto tail = std::copy(series.begin() + n, series.end(), series.begin());
  std::fill(tail, series.end(), fill);
}

SeriesSum SumSeries(std::span<const double> series) {
  // This runs for every reading. Four running sums, because one would make each addition
  // wait for the last; and one question for four entries, because entries without a value come in
  // long runs.
  constexpr std::size_t kBlock = 4;
  std::array<double, kBlock> sums{};
  std::size_t count = 0;
  const auto addOne = [&](double& sum, double entry) {
    if (!HasValue(entry)) return;
    sum += entry;
    ++count;
  };
  std::size_t i = 0;
  for (; i + kBlock <= series.size(); i += kBlock) {
    const double a = series[i];
    const double b = series[i + 1];
    const double c = series[i + 2];
    const double d = series[i + 3];
    if (Larger(Larger(a, b), Larger(c, d)) < NoValue) {
      sums[0] += a;
      sums[1] += b;
      sums[2] += c;
      sums[3] += d;
      count += kBlock;
    } else {
      addOne(sums[0], a);
      addOne(sums[1], b);
      addOne(sums[2], c);
      addOne(sums[3], d);
    }
  }
  for (; i < series.size(); ++i) addOne(sums[0], series[i]);
  return {sums[0] + sums[1] + sums[2] + sums[3], count};
}

double AverageSeries(std::span<const double> series) {
  const SeriesSum entries = SumSeries(series);
  if (entries.count == 0) return NoValue;
  const auto divisor = static_cast<double>(entries.count);
  return std::isfinite(entries.sum) ? entries.sum / divisor : AverageOfHugeEntries(series, divisor);
}

std::string JoinSeries(std::span<const double> series) {
  std::string text;
  text.reserve(series.size() * 8);
  for (std::size_t i = 0; i < series.size(); ++i) {
    if (i > 0) text += ',';
    AppendDouble(text, series[i]);
  }
  return text;
}

void SplitSeries(std::string_view text, std::span<double> series) {
  if (text.empty()) return;
  for (double& entry : series) {
    const std::size_t separator = text.find(',');
    entry = TextToDouble(text.substr(0, separator)).value_or(0.0);
    if (separator == std::string_view::npos) return;
    text.remove_prefix(separator + 1);
  }
}

}  // namespace wattlark
