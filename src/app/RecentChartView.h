#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "acquisition/clsKillAWatt.h"
#include "config/AppSettings.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// The chart of recent values as numbers and texts, for one meter and the settings' `RecentUnit`
/// and `RecentInterval`.
struct RecentChartView {
  /// One per slot, oldest first: units of the interval (seconds, minutes, hours, days or months)
  /// since 1 January 1980 00:00; each is one more than the one before.
  std::vector<std::int64_t> x;
  std::vector<double> y;     ///< as many; `NoValue` is a gap
  bool filledSteps = false;  ///< energy, cost and CO2; a line for power
  std::string axisTitle;     ///< "W", "Wh", "lbs" or empty
  std::string header;
  /// Alarm zones reach from -50000 W to the lower and from the upper limit to 50000 W; nothing
  /// hides them.
  struct Zones {
    double lower;
    double upper;
  };
  std::optional<Zones> zones;
};

RecentChartView MakeRecentChartView(const clsKillAWatt& meter, const AppSettings& settings,
                                    const RegionalSettings& regional, DateTime now);

/// What the time axis says at `x` ("08:10:01PM", "Mon", "16Nov").
std::string RecentAxisLabel(int interval, std::int64_t x, const RegionalSettings& regional);
/// What the status bar says of a data point ("601.2 W (avg.) @ 8:09:52 PM"); `unit` 0..3.
std::string RecentHoverText(int unit, int interval, std::int64_t x, double value,
                            const RegionalSettings& regional);

}  // namespace wattlark
