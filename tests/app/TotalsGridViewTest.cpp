#include <gmock/gmock.h>

#include "app/TotalsGridView.h"
#include "support/RegionalForms.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

using testing::Each;
using testing::ElementsAre;

const RegionalSettings kUnitedStates = RegionalSettings::UnitedStates();
const DateTime kNow = At("2026-11-16T20:10:00");  // a Monday

struct TotalsGrid : testing::Test {
  TotalsGrid() {
    settings.Mils = 0.106;
    settings.CO2perKWh = 1.34;
  }

  TotalsGridView View(int unit, const RegionalSettings& regional = kUnitedStates,
                      DateTime now = kNow) {
    settings.TotalUnit = unit;
    return MakeTotalsGridView(meter, settings, regional, now);
  }
  std::vector<std::string> Values(int unit, const RegionalSettings& regional = kUnitedStates) {
    std::vector<std::string> values;
    for (const auto& row : View(unit, regional).rows) values.push_back(row.value);
    return values;
  }
  void SetPeaks(double watts, DateTime time) {
    for (int period = 0; period < PeriodCount; ++period) {
      meter.Statistics().SetPeak(period, watts);
      meter.Statistics().SetPeakTime(period, time);
    }
  }

  clsKillAWatt meter;
  AppSettings settings;
};

TEST_F(TotalsGrid, LabelsRowsAndColumn) {
  std::vector<std::string> labels;
  for (const auto& row : View(0).rows) labels.push_back(row.label);
  EXPECT_THAT(labels, ElementsAre("Yesterday", "Today", "This Week", "This Month", "This Year",
                                  "To Date", "Since Reset"));
  const char* headers[] = {"Peak Power Demand", "Total Usage", "Total Cost", "Total Production"};
  for (int unit = 0; unit < 4; ++unit) EXPECT_EQ(View(unit).header, headers[unit]);
  EXPECT_EQ(View(4).header, "Peak Power Demand");
}

TEST_F(TotalsGrid, ShowsPeaksAndTheirTimes) {
  EXPECT_THAT(Values(0), Each("0.00 W"));
  meter.Statistics().SetPeak(Yesterday, NoValue);
  EXPECT_EQ(Values(0)[Yesterday], "--- W");
  SetPeaks(812.5, At("2026-11-15T08:05:00"));
  const char* plain = "812.5 W @ 8:05:00 AM";
  const char* dated = "812.5 W @ 8:05:00 AM on 11/15/2026";
  EXPECT_THAT(Values(0), ElementsAre(plain, plain, "812.5 W @ 8:05:00 AM last Sunday", dated, dated,
                                     dated, dated));
  EXPECT_EQ(Values(0, Germany())[ThisWeek], "812,5 W @ 08:05:00 last Sonntag");
  EXPECT_EQ(Values(0, Germany())[ThisMonth], "812,5 W @ 08:05:00 on 15.11.2026");
}

TEST_F(TotalsGrid, TheWeekdayIsShortOnThePresentDateAlone) {
  using Row = std::array<const char*, 3>;
  for (const auto& [peak, now, ending] :
       {Row{"2026-11-16T12:00:00", "2026-11-16T23:59:59", " on Mon"},
        Row{"2026-11-16T12:00:00", "2026-11-17T00:00:00", " last Monday"},
        // The same day of another month, and of another year.
        Row{"2026-10-16T12:00:00", "2026-11-16T20:10:00", " last Friday"},
        Row{"2025-11-16T12:00:00", "2026-11-16T20:10:00", " last Sunday"}}) {
    SetPeaks(100, At(peak));
    EXPECT_EQ(View(0, kUnitedStates, At(now)).rows[ThisWeek].value,
              std::string("100.00 W @ 12:00:00 PM") + ending);
  }
}

TEST_F(TotalsGrid, ShowsUsage) {
  const double usage[] = {NoValue, 0, 450, 2500, 12345678, -2000, 1000};
  for (int period = 0; period < PeriodCount; ++period) {
    meter.Statistics().SetUsage(period, usage[period]);
  }
  EXPECT_THAT(Values(1), ElementsAre("--- Wh", "0.00 Wh", "450.0 Wh", "2.5000 kWh", "12,346 kWh",
                                     "-2,000.0 Wh", "1,000.0 Wh"));
  EXPECT_THAT(Values(2), ElementsAre("$ ---", "$0.00", "$0.04770", "$0.26500", "$1,308.6",
                                     "-$0.21200", "$0.10600"));
  EXPECT_THAT(Values(3), ElementsAre("---", "0.00 lbs", "0.6030 lbs", "3.350 lbs", "16,543 lbs",
                                     "-2.6800 lbs", "1.3400 lbs"));
  EXPECT_EQ(Values(2, Germany())[Today], "0,00\u00A0€");
  // No cost beyond all numbers.
  meter.Statistics().SetUsage(ToDate, 1E307);
  settings.Mils = 1000;
  EXPECT_EQ(Values(2)[ToDate], "$ ---");
}

}  // namespace
}  // namespace wattlark
