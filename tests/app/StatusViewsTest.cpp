#include <gtest/gtest.h>

#include "app/StatusViews.h"
#include "twins/HandClock.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

struct Status : testing::Test {
  Status() {
    profile.Settings().PortNum = 5;
    profile.Settings().Mils = 0.106;
  }
  clsKillAWatt& Add(const char* name, std::int16_t address) {
    return AddMeter(profile.Meters(), name, address);
  }
  void Read(clsKillAWatt& meter, double watts, double todayWattHours) {
    meter.AddReading(120, 1, watts, now, 1000);
    meter.Statistics().SetUsage(Today, todayWattHours);
  }
  TrayView Tray(bool isFlowing = true) const {
    return TrayIconView(profile, region, isFlowing, now);
  }

  const DateTime now = At("2026-11-16T20:10:00");
  RegionalSettings region = RegionalSettings::UnitedStates();
  ProfileData profile{region};
};

TEST_F(Status, SaysWhyThereIsNothingToShow) {
  EXPECT_EQ(MainAreaMessage(profile, false),
            "Unable to communicate on COM5:\r\nDouble click to modify settings...");
  EXPECT_EQ(Tray(false).tooltip, "Wattlark: Unable to communicate on COM5:");
  EXPECT_EQ(MainAreaMessage(profile, true),
            "No Kill-A-Watts have been added\r\nDouble click to add...");
  EXPECT_EQ(Tray().tooltip, "Wattlark: No Kill-A-Watts have been added");
  clsKillAWatt& meter = Add("Kitchen", 5);
  EXPECT_EQ(MainAreaMessage(profile, true), "");
  meter.AddReading(120, 1, 450, now.PlusSeconds(-5), 1000);
  EXPECT_EQ(Tray().tooltip, "Wattlark: No data is being received");
  EXPECT_EQ(Tray().image, "KILLAWATT");
  EXPECT_EQ(MainAreaMessage(profile, false).substr(0, 6), "Unable");
  EXPECT_EQ(Tray(false).image, "KILLAWATT");
}

TEST_F(Status, ShowsTheOneMeterOrTheTotal) {
  Read(Add("Kitchen", 5), 612.4, 1234.5);
  EXPECT_EQ(Tray().tooltip, "Current Power: 612.4 W\r\nToday: 1.2345 kWh ($0.13086)");
  Read(Add("Office", 6), 100, 100);
  Read(profile.Total(), 1712.4, 98.7);
  EXPECT_EQ(Tray().tooltip, "Current Power: 1.7124 kW\r\nToday: 98.70 Wh ($0.01046)");
  profile.Total().Statistics().SetUsage(Today, NoValue);
  EXPECT_EQ(Tray().tooltip, "Current Power: 1.7124 kW\r\nToday: --- Wh ()");
  // Cut at 63 characters, 20 of which stand behind those before the amount.
  Read(profile.Total(), 612.4, 1234.5);
  std::string kept;
  for (int i = 0; i < 20; ++i) kept += "€";
  region.currencySymbol = kept + "€";
  EXPECT_EQ(Tray().tooltip, "Current Power: 612.4 W\r\nToday: 1.2345 kWh (" + kept);
}

TEST_F(Status, PicturesTheLoadOfTheLastMinute) {
  clsKillAWatt& meter = Add("Kitchen", 5);
  using Row = std::pair<double, const char*>;
  for (const auto& [watts, image] :
       {Row{-50, "KILLAWATT0"}, Row{19.9, "KILLAWATT0"}, Row{20, "KILLAWATT1"},
        Row{55, "KILLAWATT2"}, Row{79.9, "KILLAWATT3"}, Row{100, "KILLAWATT4"},
        Row{1000, "KILLAWATT4"}, Row{NoValue, "KILLAWATT"}}) {
    Read(meter, 1, 1);
    meter.Statistics().SetPeak(SinceReset, 100);
    meter.Statistics().SetDemandRecent(Minute, std::vector<double>(60, watts));
    EXPECT_EQ(Tray().image, image) << watts;
  }
  meter.Statistics().ResetPeak();
  meter.Statistics().SetDemandRecent(Minute, std::vector<double>(60, 50));
  EXPECT_EQ(Tray().image, "KILLAWATT") << "no peak, no load factor";
}

TEST_F(Status, TellsOfAnAlarmInTheLongForm) {
  clsKillAWatt& meter = Add("Kitchen", 5);
  Read(meter, 9500, 0);
  EXPECT_EQ(AlarmNoticeLine(meter, region), "Kitchen: Using 9,500.0 Watts");
  Read(meter, 12000, 0);
  EXPECT_EQ(AlarmNoticeLine(meter, region), "Kitchen: Using 12.0 Kilowatts");
}

}  // namespace
}  // namespace wattlark
