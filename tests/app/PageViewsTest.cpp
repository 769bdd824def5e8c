#include <vector>

#include "app/CurrentPageView.h"
#include "app/TotalsGridView.h"
#include "support/RegionalForms.h"
#include "twins/HandClock.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

const DateTime kNow = At("2026-11-16T20:10:00");  // a Monday

struct Page {
  explicit Page(int unit = 0, int interval = 0) {
    settings.Mils = 0.106;
    settings.CO2perKWh = 1.34;
    settings.CurrentUnit = unit;
    settings.CurrentInterval = interval;
  }

  /// One reading of `watts` at `kNow`, with a minute of `average` behind it.
  void Read(double watts, double average) {
    meter.Statistics().SetDemandRecent(Minute, std::vector<double>(60, average));
    meter.AddReading(121.34, 4.15, watts, kNow, 1000);
  }
  CurrentPageView View(DateTime now = kNow,
                       const RegionalSettings& regional = RegionalSettings::UnitedStates()) const {
    return MakeCurrentPageView(meter, settings, regional, now);
  }

  clsKillAWatt meter;
  AppSettings settings;
};

TEST(CurrentPage, ShowsAReceivedValueInItsUnit) {
  using Row = std::tuple<int, int, double, double, const char*, const char*>;
  for (const auto& [unit, interval, watts, average, value, intervalText] :
       {Row{0, 3, 1000.5, 500, "1.0005 kW", "Sampled @ 8:10:00 PM"},
        Row{1, 0, 900, 100, "1.6667 Wh", "per Minute"},
        Row{1, 3, 900, 100, "16.800 kWh", "per Week"},
        Row{1, 4, 900, 100, "72.00 kWh", "per Month"}, Row{1, 5, 900, 100, "876.0 kWh", "per Year"},
        Row{2, 2, 900, 500, "$1.2720", "per Day"}, Row{2, 1, 900, -500, "-$0.05300", "per Hour"},
        Row{3, 1, 900, 500, "0.6700 lbs", "per Hour"},
        // A stored choice that no button stands for.
        Row{-1, 0, 612.4, 500, "612.4 W", "Sampled @ 8:10:00 PM"},
        Row{1, 6, 900, 100, "1.6667 Wh", "per Minute"}}) {
    Page page(unit, interval);
    page.Read(watts, average);
    EXPECT_EQ(page.View().value, value);
    EXPECT_EQ(page.View().interval, intervalText);
  }
}

TEST(CurrentPage, HasATextForAMissingValue) {
  // Receiving, but with nothing to average yet; idle.
  const char* const units[][2] = {
      {"--- W", "--- W"}, {"--- Wh", "--- Wh"}, {"$ ---", "$0.00"}, {"--- lbs", "--- lbs"}};
  for (int unit = 0; unit < 4; ++unit) {
    Page page(unit);
    page.meter.Statistics().SetTimestamp(kNow);
    EXPECT_EQ(page.View().value, units[unit][0]);
    page.Read(500, NoValue);
    EXPECT_EQ(page.View(kNow.PlusSeconds(5)).value, units[unit][1]);
  }
}

TEST(CurrentPage, ShowsAReadingAndItsAlarmForFiveSeconds) {
  Page page;
  page.meter.Alarm().SetAlarmActive(true);
  page.meter.Alarm().SetAlarmUpperLimit(100);
  page.meter.Alarm().SetAlarmDuration(0);
  page.Read(500, 500);
  page.meter.Statistics().SetPeak(SinceReset, 1000);
  CurrentPageView view = page.View(kNow.PlusSeconds(4));
  EXPECT_TRUE(view.isReceiving);
  EXPECT_EQ(view.volts, "121.3 Volts");
  EXPECT_EQ(view.amps, "4.2 Amps");
  EXPECT_EQ(view.maximum, "1,000.0 W");
  EXPECT_EQ(view.needle, 0.5);
  EXPECT_EQ(view.meterTip, "Peak: 1,000.0 W Load Factor: 50.0%");
  EXPECT_FALSE(view.alarm);
  view = page.View(kNow, Germany());
  EXPECT_EQ(view.interval, "Sampled @ 20:10:00");
  EXPECT_EQ(view.volts, "121,3 Volts");
  EXPECT_EQ(view.meterTip, "Peak: 1.000,0 W Load Factor: 50,0\u00A0%");
  view = page.View(kNow.PlusSeconds(5));
  EXPECT_FALSE(view.isReceiving);
  EXPECT_EQ(view.volts, "--- Volts");
  EXPECT_EQ(view.amps, "--- Amps");
  EXPECT_EQ(view.interval, "Sampled @ 8:10:00 PM");
  EXPECT_FALSE(view.needle);
  page.meter.AddReading(120, 4, 500, kNow.PlusSeconds(1), 2000);
  EXPECT_TRUE(page.View(kNow.PlusSeconds(5)).alarm);
  EXPECT_FALSE(page.View(kNow.PlusSeconds(6)).alarm);
  page.meter.Statistics().SetPeak(SinceReset, 250);
  EXPECT_EQ(page.View().needle, 1.0);
  page.meter.Statistics().SetPeak(SinceReset, -250);
  EXPECT_EQ(page.View().needle, 0.0);
}

TEST(CurrentPage, ShowsWhatAMeterWithoutReadingLacks) {
  Page page;
  EXPECT_EQ(page.View().interval, "Sampled @ ---") << "before the first reading ever";
  // Left from before the start.
  page.meter.Statistics().SetTimestamp(kNow);
  page.meter.Statistics().SetPeak(SinceReset, 800);
  const CurrentPageView view = page.View();
  EXPECT_TRUE(view.isReceiving);
  EXPECT_EQ(view.volts, "--- Volts");
  EXPECT_EQ(view.amps, "--- Amps");
  EXPECT_FALSE(view.needle);
  // A total without receiving meters.
  page.meter.AddReading(NoValue, NoValue, 0, kNow, 1000);
  EXPECT_EQ(page.View().value, "0.00 W");
  EXPECT_EQ(page.View().volts, "--- Volts");
}

const RegionalSettings kUnitedStates = RegionalSettings::UnitedStates();

struct TotalsGrid : testing::Test, Page {
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
};

TEST_F(TotalsGrid, ShowsPeaksAndTheirTimesWithAShortWeekdayOnThePresentDateAlone) {
  EXPECT_THAT(Values(0), Each("0.00 W"));
  meter.Statistics().SetPeak(Yesterday, NoValue);
  EXPECT_EQ(Values(0)[Yesterday], "--- W");
  SetPeaks(812.5, At("2026-11-15T08:05:00"));
  const char* plain = "812.5 W @ 8:05:00 AM";
  const char* dated = "812.5 W @ 8:05:00 AM on 11/15/2026";
  EXPECT_THAT(Values(0), ElementsAre(plain, plain, "812.5 W @ 8:05:00 AM last Sunday", dated, dated,
                                     dated, dated));
  EXPECT_EQ(Values(0, Germany())[ThisMonth], "812,5 W @ 08:05:00 on 15.11.2026");
  using Row = std::array<const char*, 3>;
  for (const auto& [peak, now, ending] :
       {Row{"2026-11-16T12:00:00", "2026-11-16T23:59:59", " on Mon"},
        Row{"2026-11-16T12:00:00", "2026-11-17T00:00:00", " last Monday"},
        // The same day of another year.
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
  EXPECT_EQ(View(2).header, "Total Cost");
}

}  // namespace
}  // namespace wattlark
