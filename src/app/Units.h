#pragma once

#include <array>

#include "acquisition/MeterStatistics.h"

namespace wattlark {

/// What a page shows its values in.
enum Unit { PowerUnit, EnergyUnit, CostUnit, CO2Unit };
inline constexpr int UnitCount = 4;

/// Hours of one interval; a month counts as 30 days, a year as 365.
inline constexpr std::array<double, IntervalCount> IntervalHours{1.0 / 60, 1, 24, 168, 720, 8760};

}  // namespace wattlark
