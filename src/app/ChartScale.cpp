#include "app/ChartScale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <limits>
#include <span>

#include "acquisition/MeterStatistics.h"
#include "app/Units.h"
#include "support/modFormat.h"

namespace wattlark {

namespace {

constexpr double kLargestNamed = 1e15;

double Finite(double value) {
  return std::isfinite(value) ? value : 0;
}

// The smallest of 1, 2, 2.5 and 5 times a power of ten that is not below `raw`.
double RoundStep(double raw) {
  const double magnitude = std::pow(10, std::floor(std::log10(raw)));
  for (const double mantissa : {1.0, 2.0, 2.5, 5.0}) {
    // A little slack: 0.1 + 0.2 must not ask for the next larger step.
    if (raw <= mantissa * magnitude * (1 + 1e-9)) return mantissa * magnitude;
  }
  return 10 * magnitude;
}

int DecimalsOf(double step) {
  constexpr int kMostDecimals = 9;
  int decimals = 0;
  for (double scaled = step;
       decimals < kMostDecimals && std::abs(scaled - std::round(scaled)) > 1e-6 * scaled;
       scaled *= 10) {
    ++decimals;
  }
  return decimals;
}

std::int64_t FloorDivide(std::int64_t dividend, std::int64_t divisor) {
  return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

std::span<const int> TickSteps(int interval) {
  static constexpr std::array kSeconds{10, 15, 20, 30, 60};
  static constexpr std::array kMinutes{10, 15, 20, 30, 60};
  static constexpr std::array kHours{3, 4, 6, 12, 24};
  static constexpr std::array kWeekDays{1, 2, 3, 7};
  static constexpr std::array kMonthDays{5, 7, 10, 15, 31};
  static constexpr std::array kMonths{1, 2, 3, 6, 12};
  switch (interval) {
    case Minute:
      return kSeconds;
    case Hour:
      return kMinutes;
    case Day:
      return kHours;
    case Week:
      return kWeekDays;
    case Month:
      return kMonthDays;
    default:
      return kMonths;
  }
}

}  // namespace

ValueScale MakeValueScale(double minimum, double maximum, int steps) {
  const double low = std::min(0.0, Finite(minimum));
  const double high = std::max(0.0, Finite(maximum));
  // Divided before subtracted: the whole span may be beyond all numbers.
  const double raw = high / steps - low / steps;
  if (raw < std::numeric_limits<double>::min() || raw > 1e300) return {0, 1, 0.25};
  const double step = RoundStep(raw);
  const auto upTo = [step](double value) { return std::ceil(value / step - 1e-9) * step; };
  return {low == 0 ? 0 : -upTo(-low), upTo(high), step};
}

ValueScale MakeCentredScale(double largest, int stepsEachWay) {
  const ValueScale half = MakeValueScale(0, std::abs(largest), stepsEachWay);
  const double reach = half.step * stepsEachWay;
  return {-reach, reach, half.step};
}

std::string ValueLabel(const RegionalSettings& regional, const ValueScale& scale, double value) {
  const double largest = std::max(std::abs(scale.lower), std::abs(scale.upper));
  if (largest >= kLargestNamed) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3g", value);
    return text.data();
  }
  double divisor = 1;
  const char* prefix = "";
  if (largest >= 1e12) {
    divisor = 1e12;
    prefix = "T";
  } else if (largest >= 1e9) {
    divisor = 1e9;
    prefix = "G";
  } else if (largest >= 1e6) {
    divisor = 1e6;
    prefix = "M";
  }
  // Steps add up with an error that must not show as "-0.0" or "1e-17".
  if (std::abs(value) < scale.step / 1000) return FormatNumberAuto(regional, 0, 0);
  return FormatNumberAuto(regional, value / divisor, DecimalsOf(scale.step / divisor)) + prefix;
}

std::vector<std::int64_t> TimeTicks(int interval, std::int64_t first, std::int64_t last, int most) {
  const int known = ChosenIndex(interval, IntervalCount);
  const bool countsBack = known == Week || known == Month;
  std::vector<std::int64_t> ticks;
  for (const std::int64_t step : TickSteps(known)) {
    ticks.clear();
    const std::int64_t origin = countsBack ? last : 0;
    const std::int64_t start = origin - FloorDivide(origin - first, step) * step;
    for (std::int64_t x = start; x <= last; x += step) ticks.push_back(x);
    if (ticks.size() <= static_cast<std::size_t>(std::max(1, most))) break;
  }
  return ticks;
}

}  // namespace wattlark
