#pragma once

#include <array>
#include <cmath>
#include <cstdint>

#include "acquisition/MeterStatistics.h"

namespace wattlark {

/// What a page shows its values in.
enum Unit { PowerUnit, EnergyUnit, CostUnit, CO2Unit };
inline constexpr int UnitCount = 4;

/// Hours of one interval; a month counts as 30 days, a year as 365.
inline constexpr std::array<double, IntervalCount> IntervalHours{1.0 / 60, 1, 24, 168, 720, 8760};

/// What stands for a cost that is not known.
inline constexpr const char* MissingCost = "$ ---";

/// The unit or interval that a stored number chooses: the first one when it is none of `count`.
inline constexpr int ChosenIndex(std::int32_t stored, int count) {
  return stored >= 0 && stored < count ? stored : 0;
}

/// `value` times `factor`; `NoValue` when there is no value or the product is beyond all numbers.
inline double Scaled(double value, double factor) {
  const double product = value * factor;
  return HasValue(value) && std::isfinite(product) ? product : NoValue;
}

/// Cost or CO2 of an energy in Wh, at a price or mass for each kWh; `NoValue` as for `Scaled`.
inline double AtRate(double wattHours, double perKilowattHour) {
  const double product = Scaled(wattHours, perKilowattHour);
  return HasValue(product) ? product / 1000 : NoValue;
}

}  // namespace wattlark
