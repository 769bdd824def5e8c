#include <gtest/gtest.h>

#include <array>

#include "app/CurrentPageView.h"
#include "support/RegionalForms.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

const RegionalSettings kUnitedStates = RegionalSettings::UnitedStates();
const DateTime kNow = At("2026-11-16T20:10:00");

struct CurrentPage : testing::Test {
  CurrentPage() {
    settings.Mils = 0.106;
    settings.CO2perKWh = 1.34;
  }

  /// One reading of `watts` at `kNow`, with a minute of `average` behind it.
  void Read(double watts, double average) {
    std::array<double, 60> demand;
    demand.fill(average);
    meter.Statistics().SetDemandRecent(Minute, demand);
    meter.AddReading(121.34, 4.15, watts, kNow, 1000);
  }
  CurrentPageView View(DateTime now = kNow, const RegionalSettings& regional = kUnitedStates) {
    return MakeCurrentPageView(meter, settings, regional, now);
  }

  clsKillAWatt meter;
  AppSettings settings;
};

struct ValueCase {
  int unit;
  int interval;
  double watts;  ///< present power, and average of the last minute
  const char* value;
  const char* intervalText;
};

class ReceivedValue : public CurrentPage, public testing::WithParamInterface<ValueCase> {};

TEST_P(ReceivedValue, IsShownInItsUnit) {
  settings.CurrentUnit = GetParam().unit;
  settings.CurrentInterval = GetParam().interval;
  Read(GetParam().watts, GetParam().watts);
  EXPECT_EQ(View().value, GetParam().value);
  EXPECT_EQ(View().interval, GetParam().intervalText);
}

INSTANTIATE_TEST_SUITE_P(Values, ReceivedValue,
                         testing::Values(ValueCase{0, 0, 612.4, "612.4 W", "Sampled @ 8:10:00 PM"},
                                         ValueCase{0, 3, 1000, "1,000.0 W", "Sampled @ 8:10:00 PM"},
                                         ValueCase{0, 0, 1000.5, "1.0005 kW",
                                                   "Sampled @ 8:10:00 PM"},
                                         ValueCase{0, 0, -98.7, "-98.70 W", "Sampled @ 8:10:00 PM"},
                                         ValueCase{1, 0, 100, "1.6667 Wh", "per Minute"},
                                         ValueCase{1, 1, 100, "100.00 Wh", "per Hour"},
                                         ValueCase{1, 2, 100, "2.4000 kWh", "per Day"},
                                         ValueCase{1, 3, 100, "16.800 kWh", "per Week"},
                                         ValueCase{1, 4, 100, "72.00 kWh", "per Month"},
                                         ValueCase{1, 5, 100, "876.0 kWh", "per Year"},
                                         ValueCase{2, 2, 500, "$1.2720", "per Day"},
                                         ValueCase{2, 1, -500, "-$0.05300", "per Hour"},
                                         ValueCase{3, 1, 500, "0.6700 lbs", "per Hour"},
                                         ValueCase{2, 2, 0, "$0.00", "per Day"},
                                         // A stored choice that no button stands for.
                                         ValueCase{7, 0, 612.4, "612.4 W", "Sampled @ 8:10:00 PM"},
                                         ValueCase{-1, 0, 612.4, "612.4 W", "Sampled @ 8:10:00 PM"},
                                         ValueCase{1, 6, 100, "1.6667 Wh", "per Minute"}));

TEST_F(CurrentPage, TellsTheLastMinuteFromThePresent) {
  Read(900, 500);
  EXPECT_EQ(View().value, "900.0 W");
  settings.CurrentUnit = 1;
  settings.CurrentInterval = 1;
  EXPECT_EQ(View().value, "500.0 Wh");
}

struct UnitCase {
  int unit;
  const char* noAverage;  ///< receiving, but with nothing to average yet
  const char* idle;
  const char* idleInGermany;
};

class MissingValue : public CurrentPage, public testing::WithParamInterface<UnitCase> {};

TEST_P(MissingValue, HasItsText) {
  settings.CurrentUnit = GetParam().unit;
  meter.Statistics().SetTimestamp(kNow);
  EXPECT_EQ(View().value, GetParam().noAverage);
  Read(500, NoValue);
  const DateTime later = kNow.PlusSeconds(5);
  EXPECT_EQ(View(later).value, GetParam().idle);
  EXPECT_EQ(View(later, Germany()).value, GetParam().idleInGermany);
}

INSTANTIATE_TEST_SUITE_P(Units, MissingValue,
                         testing::Values(UnitCase{0, "--- W", "--- W", "--- W"},
                                         UnitCase{1, "--- Wh", "--- Wh", "--- Wh"},
                                         UnitCase{2, "$ ---", "$0.00", "0,00\u00A0€"},
                                         UnitCase{3, "--- lbs", "--- lbs", "--- lbs"}));

TEST_F(CurrentPage, ShowsAReading) {
  Read(500, 500);
  meter.Statistics().SetPeak(SinceReset, 1000);
  const CurrentPageView view = View(kNow.PlusSeconds(4));
  EXPECT_TRUE(view.isReceiving);
  EXPECT_EQ(view.volts, "121.3 Volts");
  EXPECT_EQ(view.amps, "4.2 Amps");
  EXPECT_EQ(view.maximum, "1,000.0 W");
  EXPECT_EQ(view.needle, 0.5);
  EXPECT_EQ(view.meterTip, "Peak: 1,000.0 W Load Factor: 50.0%");
  EXPECT_FALSE(view.alarm);
}

TEST_F(CurrentPage, UsesTheRegionsForms) {
  Read(1234.5, 500);
  const CurrentPageView german = View(kNow, Germany());
  EXPECT_EQ(german.value, "1,2345 kW");
  EXPECT_EQ(german.interval, "Sampled @ 20:10:00");
  EXPECT_EQ(german.volts, "121,3 Volts");
  EXPECT_EQ(german.meterTip, "Peak: 1,2345 kW Load Factor: 100,0\u00A0%");
  settings.CurrentUnit = 2;
  settings.CurrentInterval = 5;
  EXPECT_EQ(View(kNow, France()).value, "464,3\u00A0€");  // 500 * 8.76 * 0.106 = 464.28
}

TEST_F(CurrentPage, ShowsNoReadingAfterFiveSeconds) {
  Read(500, 500);
  const CurrentPageView view = View(kNow.PlusSeconds(5));
  EXPECT_FALSE(view.isReceiving);
  EXPECT_EQ(view.volts, "--- Volts");
  EXPECT_EQ(view.amps, "--- Amps");
  EXPECT_EQ(view.interval, "Sampled @ 8:10:00 PM");
  EXPECT_FALSE(view.needle);
  EXPECT_EQ(view.meterTip, "");
}

TEST_F(CurrentPage, HasATextBeforeTheFirstReadingEver) {
  const CurrentPageView view = View();
  EXPECT_EQ(view.interval, "Sampled @ ---");
  EXPECT_FALSE(view.isReceiving);
}

TEST_F(CurrentPage, ShowsNoReadingLeftFromBeforeTheStart) {
  meter.Statistics().SetTimestamp(kNow);
  meter.Statistics().SetPeak(SinceReset, 800);
  const CurrentPageView view = View();
  EXPECT_TRUE(view.isReceiving);
  EXPECT_EQ(view.volts, "--- Volts");
  EXPECT_EQ(view.amps, "--- Amps");
  EXPECT_FALSE(view.needle);
  EXPECT_EQ(view.meterTip, "Peak: 800.0 W Load Factor: ");
}

TEST_F(CurrentPage, ShowsATotalWithoutReceivingMeters) {
  meter.AddReading(NoValue, NoValue, 0, kNow, 1000);
  const CurrentPageView view = View();
  EXPECT_EQ(view.value, "0.00 W");
  EXPECT_EQ(view.volts, "--- Volts");
  EXPECT_EQ(view.amps, "--- Amps");
}

struct NeedleCase {
  double watts;
  double peak;
  std::optional<double> needle;
};

class Needle : public CurrentPage, public testing::WithParamInterface<NeedleCase> {};

TEST_P(Needle, StaysOnTheScale) {
  Read(GetParam().watts, NoValue);
  meter.Statistics().SetPeak(SinceReset, GetParam().peak);
  EXPECT_EQ(View().needle, GetParam().needle);
}

INSTANTIATE_TEST_SUITE_P(Loads, Needle,
                         testing::Values(NeedleCase{250, 1000, 0.25}, NeedleCase{1000, 1000, 1.0},
                                         NeedleCase{500, 250, 1.0}, NeedleCase{-100, 1000, 0.0},
                                         NeedleCase{-200, -100, 1.0}, NeedleCase{0, 100, 0.0},
                                         NeedleCase{500, 0, std::nullopt}));

TEST_F(CurrentPage, ShowsAnAlarmWhileReceiving) {
  MeterAlarm& alarm = meter.Alarm();
  alarm.SetAlarmActive(true);
  alarm.SetAlarmUpperLimit(100);
  alarm.SetAlarmDuration(0);
  Read(500, 500);
  EXPECT_FALSE(View().alarm);
  meter.AddReading(120, 4, 500, kNow.PlusSeconds(1), 2000);
  EXPECT_TRUE(View(kNow.PlusSeconds(5)).alarm);
  EXPECT_FALSE(View(kNow.PlusSeconds(6)).alarm);
}

}  // namespace
}  // namespace wattlark
