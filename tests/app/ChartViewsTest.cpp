#include <cmath>
#include <cstdint>
#include <limits>

#include "acquisition/MeterStatistics.h"
#include "acquisition/clsXBee.h"
#include "app/ChartScale.h"
#include "app/PacketChartView.h"
#include "app/RecentChartView.h"
#include "support/RegionalForms.h"
#include "twins/Frames.h"
#include "twins/HandClock.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

using testing::DoubleEq;

const RegionalSettings kUnitedStates = RegionalSettings::UnitedStates();

struct RecentChart : testing::Test {
  RecentChart() {
    settings.Mils = 0.106;
    settings.CO2perKWh = 1.34;
  }

  RecentChartView View(int unit, int interval, const RegionalSettings& regional = kUnitedStates) {
    settings.RecentUnit = unit;
    settings.RecentInterval = interval;
    return MakeRecentChartView(meter, settings, regional, At("2026-11-16T20:10:00"));
  }
  std::string Header(int unit, const RegionalSettings& regional = kUnitedStates) {
    return View(unit, Week, regional).header;
  }

  clsKillAWatt meter;
  AppSettings settings;
};

// 16 November 2026 lies 17121 days and 562 months behind 1 January 1980.
TEST_F(RecentChart, SlotsEndWithTheLastReading) {
  EXPECT_EQ(View(0, Week).x.back(), 17121) << "the present, before the first reading";
  using Row = std::tuple<const char*, int, std::size_t, std::int64_t, const char*, const char*>;
  for (const auto& [time, interval, count, last, firstLabel, lastLabel] :
       {Row{"2026-11-16T20:09:51.999", 1, 60, 24655450, "07:11PM", "08:10PM"},
        Row{"2026-11-16T20:09:51", 2, 24, 410925, "10PM", "09PM"},
        Row{"2026-11-16T20:09:51", 3, 7, 17121, "Tue", "Mon"},
        Row{"2026-11-16T20:09:51", 4, 31, 17121, "17Oct", "16Nov"},
        Row{"2026-11-16T20:09:51", 5, 12, 562, "Dec25", "Nov26"},
        // Across noon, midnight, a leap day and the base of the count.
        Row{"2026-11-16T12:00:30", 0, 60, 1479297631, "11:59:32AM", "12:00:31PM"},
        Row{"2024-03-01T00:00:00", 4, 31, 16131, "31Jan", "01Mar"},
        Row{"1980-01-01T00:00:00", 5, 12, 0, "Feb79", "Jan80"}}) {
    meter.Statistics().SetTimestamp(At(time));
    const auto x = View(0, interval).x;
    ASSERT_EQ(x.size(), count);
    for (std::size_t i = 0; i < x.size(); ++i) {
      EXPECT_EQ(x[i], last - static_cast<std::int64_t>(x.size() - 1 - i)) << i;
    }
    EXPECT_EQ(RecentAxisLabel(interval, x.front(), kUnitedStates), firstLabel);
    EXPECT_EQ(RecentAxisLabel(interval, x.back(), kUnitedStates), lastLabel);
  }
  EXPECT_EQ(RecentAxisLabel(Month, 17121, France()), "16nov.");
  EXPECT_EQ(RecentAxisLabel(Day, 410924, WithPatterns("d.M.yyyy", "H:mm:ss", "vorm.", "nachm.")),
            "08nachm.");
}

TEST(RecentHoverText, TellsValueAndTime) {
  using Row = std::tuple<int, int, std::int64_t, double, const char*>;
  for (const auto& [unit, interval, x, value, text] :
       {Row{1, 1, 24655450, 12.5, "12.500 Wh (total) for minute ending 8:10 PM"},
        Row{2, 2, 410925, 0.265, "$0.26500 (total) for hour ending 9 PM"},
        Row{3, 3, 17121, 3.35, "3.350 lbs (total) for Monday"},
        Row{0, 4, 17121, 1500, "1.5000 kW (avg.) for Mon Nov 16, 2026"},
        Row{1, 5, 562, 72000, "72.00 kWh (total) for November 2026"},
        Row{2, 3, 17121, NoValue, " (total) for Monday"},
        Row{9, 9, 1479326992, 601.2, "601.2 W (avg.) @ 8:09:52 PM"}}) {
    EXPECT_EQ(RecentHoverText(unit, interval, x, value, kUnitedStates), text);
  }
  EXPECT_EQ(RecentHoverText(2, 3, 17121, 1234.5, Germany()), "1.234,5\u00A0€ (total) for Montag");
}

TEST_F(RecentChart, DrawsPowerAsALineWithItsAlarmZones) {
  const std::array<double, 7> demand{NoValue, NoValue, 100, NoValue, 300, 50.4, NoValue};
  meter.Statistics().SetDemandRecent(Week, demand);
  const RecentChartView view = View(0, Week);
  EXPECT_THAT(view.y, testing::ElementsAreArray(demand));
  EXPECT_FALSE(view.filledSteps);
  EXPECT_EQ(view.axisTitle, "W");
  EXPECT_EQ(view.header, "150 W (average)");  // 450.4 over three
  EXPECT_EQ(View(7, 99).x.size(), 60U) << "a choice that is none is the first";
  MeterAlarm& alarm = meter.Alarm();
  alarm.SetAlarmLowerLimit(100);
  alarm.SetAlarmUpperLimit(1500);
  EXPECT_FALSE(View(0, Minute).zones);
  alarm.SetAlarmActive(true);
  const auto zones = View(0, Minute).zones;
  ASSERT_TRUE(zones);
  EXPECT_EQ(zones->lower, 100);
  EXPECT_EQ(zones->upper, 1500);
  for (const int unit : {1, 2, 3}) EXPECT_FALSE(View(unit, Minute).zones) << unit;
}

TEST_F(RecentChart, SumsUsage) {
  EXPECT_EQ(Header(3), "--- lbs (total)");
  const std::array<double, 7> usage{NoValue, NoValue, NoValue, NoValue, 1000, 0, 1500};
  meter.Statistics().SetUsageRecent(Week, usage);
  EXPECT_THAT(View(1, Week).y, testing::ElementsAreArray(usage));
  using Row = std::tuple<int, const char*, const char*, double>;
  for (const auto& [unit, title, header, perWattHour] :
       {Row{1, "Wh", "3 kWh (total)", 1}, Row{2, "", "$0.26500 (total)", 0.000106},
        Row{3, "lbs", "3.350 lbs (total)", 0.00134}}) {
    const RecentChartView view = View(unit, Week);
    EXPECT_TRUE(view.filledSteps);
    EXPECT_EQ(view.axisTitle, title);
    EXPECT_EQ(view.header, header);
    EXPECT_EQ(view.y[3], NoValue);
    EXPECT_DOUBLE_EQ(view.y[4], 1000 * perWattHour);
    EXPECT_DOUBLE_EQ(view.y[6], 1500 * perWattHour);
  }
  EXPECT_EQ(Header(2, Germany()), "0,26500\u00A0€ (total)");
}

TEST(PacketChart, ShowsThePacketOrWhenThereWasOne) {
  clsKillAWatt meter;
  const auto view = [&] { return MakePacketChartView(meter, kUnitedStates); };
  EXPECT_EQ(view().header, "No Data");
  EXPECT_THAT(view().amps, IsEmpty());
  // The time is that of the packet before the start.
  meter.Statistics().SetTimestamp(At("2026-11-15T08:05:01"));
  EXPECT_EQ(view().header, "Sampled @ 8:05:01 AM");
  EXPECT_THAT(view().volts, IsEmpty());
  HandClock clock;
  clsXBee decoder(clock);
  decoder.ParseBytes(MeterFrame(5, {512, 612, 412}, {498, 529, 467}));
  ASSERT_TRUE(decoder.SampleDecoded());
  meter.ProcessPacket(decoder);
  // 0.6 V a count from the middle of 412 and 612; 1/15.5 A a count from 498.
  EXPECT_THAT(view().volts, ElementsAre(DoubleEq(0), DoubleEq(60), DoubleEq(-60)));
  EXPECT_THAT(view().amps, ElementsAre(DoubleEq(0), DoubleEq(2), DoubleEq(-2)));
  EXPECT_EQ(view().header, "Sampled @ 8:10:00 PM");
}

TEST(ChartScale, CoversTheValuesWithRoundNumbers) {
  constexpr double kLargest = std::numeric_limits<double>::max();
  using Row = std::tuple<double, double, int, ValueScale>;
  for (const auto& [minimum, maximum, steps, scale] :
       {Row{0, 1000, 4, {0, 1000, 250}}, Row{400, 1001, 4, {0, 1500, 500}},
        Row{0, 0.3, 3, {0, 0.3, 0.1}}, Row{-120, 90, 4, {-200, 100, 100}},
        Row{-80, -20, 4, {-80, 0, 20}},
        // Nothing to cover.
        Row{INFINITY, NAN, 4, {0, 1, 0.25}}, Row{-kLargest, kLargest, 4, {0, 1, 0.25}}}) {
    const ValueScale made = MakeValueScale(minimum, maximum, steps);
    EXPECT_DOUBLE_EQ(made.lower, scale.lower) << maximum;
    EXPECT_DOUBLE_EQ(made.upper, scale.upper) << maximum;
    EXPECT_DOUBLE_EQ(made.step, scale.step) << maximum;
  }
  EXPECT_EQ(MakeCentredScale(170, 2).lower, -200);
}

TEST(ChartScale, LabelsSayOnlyWhatTheStepNeeds) {
  using Row = std::tuple<ValueScale, double, const char*>;
  for (const auto& [scale, value, text] :
       {Row{{0, 1000, 250}, 1000, "1,000"}, Row{{0, 0.1, 0.025}, 0.05, "0.050"},
        Row{{-0.3, 0.3, 0.1}, -0.3 + 3 * 0.1, "0"}, Row{{0, 2e6, 5e5}, 1.5e6, "1.5M"},
        Row{{0, 4e9, 1e9}, 3e9, "3G"}, Row{{0, 4e12, 1e12}, -3e12, "-3T"},
        Row{{0, 4e16, 1e16}, 3e16, "3e+16"}}) {
    EXPECT_EQ(ValueLabel(kUnitedStates, scale, value), text);
  }
  EXPECT_EQ(ValueLabel(Germany(), {0, 10, 2.5}, 7.5), "7,5");
}

TEST(ChartScale, TimeTicksAreFewAndRound) {
  using Row = std::tuple<int, std::int64_t, std::int64_t, int, std::vector<std::int64_t>>;
  for (const auto& [interval, first, last, most, ticks] :
       {Row{Minute, 6002, 6061, 4, {6015, 6030, 6045, 6060}}, Row{Minute, 6002, 6061, 1, {6060}},
        // Before 1980 slots are negative.
        Row{Hour, -61, -2, 4, {-60, -45, -30, -15}}, Row{Day, 482, 505, 4, {486, 492, 498, 504}},
        Row{Week, 100, 106, 4, {100, 102, 104, 106}},
        Row{Month, 100, 130, 5, {102, 109, 116, 123, 130}}}) {
    EXPECT_EQ(TimeTicks(interval, first, last, most), ticks) << interval << ' ' << most;
  }
}

}  // namespace
}  // namespace wattlark
