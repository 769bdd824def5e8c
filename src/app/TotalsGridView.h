#pragma once

#include <array>
#include <string>

#include "acquisition/clsKillAWatt.h"
#include "config/AppSettings.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// The grid of totals as texts, for one meter and the setting `TotalUnit`.
struct TotalsGridView {
  struct Row {
    std::string label;  ///< "Yesterday" .. "Since Reset"
    std::string value;
  };
  std::string header;  ///< "Peak Power Demand", "Total Usage", "Total Cost" or "Total Production"
  std::array<Row, PeriodCount> rows;
};

/// In the row "This Week" the peak's weekday reads " on " and its short name when the peak was on
/// `now`'s date, else " last " and its full name. A period without a peak shows no time.
TotalsGridView MakeTotalsGridView(const clsKillAWatt& meter, const AppSettings& settings,
                                  const RegionalSettings& regional, DateTime now);

}  // namespace wattlark
