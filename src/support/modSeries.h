#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace wattlark {

/// Shifts left by `n` entries and fills the tail with `fill`; n >= length fills the whole series,
/// n <= 0 changes nothing.
void ShiftSeries(std::span<double> series, std::int64_t n, double fill);
/// Sum and number of the entries that are not `NoValue`. The sum of entries near the largest double
/// may overflow.
struct SeriesSum {
  double sum = 0;
  std::size_t count = 0;
};
SeriesSum SumSeries(std::span<const double> series);
/// Mean of the entries that are not `NoValue`; `NoValue` when there are none.
double AverageSeries(std::span<const double> series);
/// The entries, oldest first, joined with ",": always with "." as decimal separator, so that the
/// text means the same in every region.
std::string JoinSeries(std::span<const double> series);
/// Copies the numbers of `text` into `series` from index 0. A part that is not a finite number
/// gives 0; surplus parts are ignored; entries not covered, and all of them for an empty text, keep
/// their values.
void SplitSeries(std::string_view text, std::span<double> series);

/// A value at or below `lower` gives `lower`, one below `upper` is kept, anything else (NaN
/// included) gives `upper`.
template <typename T>
constexpr T Clamp(T value, T lower, T upper) {
  if (value <= lower) return lower;
  return value < upper ? value : upper;
}

}  // namespace wattlark
