#include <gtest/gtest.h>

#include <sstream>

#include "app/ConsoleView.h"
#include "app/StatusViews.h"
#include "support/DisplayText.h"
#include "twins/HandClock.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

struct Status : testing::Test {
  Status() {
    profile.Settings().PortNum = 5;
    profile.Settings().Mils = 0.106;
  }
  clsKillAWatt& Add(const std::string& name, std::int16_t address) {
    return AddMeter(profile.Meters(), name, address);
  }
  void Read(clsKillAWatt& meter, double watts, double todayWattHours) {
    meter.AddReading(120, 1, watts, now, 1000);
    meter.Statistics().SetUsage(Today, todayWattHours);
  }
  TrayView Tray(bool isFlowing = true) const {
    return TrayIconView(profile, region, isFlowing, now);
  }

  DateTime now = At("2026-11-16T20:10:00");
  RegionalSettings region = RegionalSettings::UnitedStates();
  ProfileData profile{region};
};

TEST_F(Status, SaysWhyThereIsNothingToShow) {
  EXPECT_EQ(Tray(false).tooltip, "Wattlark: Unable to communicate on COM5:");
  EXPECT_EQ(MainAreaMessage(profile, true),
            "No Kill-A-Watts have been added\r\nDouble click to add...");
  EXPECT_EQ(Tray().tooltip, "Wattlark: No Kill-A-Watts have been added");
  clsKillAWatt& meter = Add("Kitchen", 5);
  EXPECT_EQ(MainAreaMessage(profile, true), "");
  meter.AddReading(120, 1, 450, now.PlusSeconds(-5), 1000);
  EXPECT_EQ(Tray().tooltip, "Wattlark: No data is being received");
  EXPECT_EQ(Tray().image, "KILLAWATT");
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
        Row{79.9, "KILLAWATT3"}, Row{1000, "KILLAWATT4"}, Row{NoValue, "KILLAWATT"}}) {
    Read(meter, 1, 1);
    meter.Statistics().SetPeak(SinceReset, 100);
    meter.Statistics().SetDemandRecent(Minute, std::vector<double>(60, watts));
    EXPECT_EQ(Tray().image, image) << watts;
  }
}

struct ConsoleView : Status {
  ConsoleView() { profile.Total().SetName("Total"); }

  // 3200 Wh today, which cost 33.92 cents.
  clsKillAWatt& AddReceivingMeter(const std::string& name, std::int16_t address) {
    clsKillAWatt& meter = Add(name, address);
    meter.AddReading(120.1, 5.1, 612.4, now, 1000);
    meter.Statistics().SetUsage(Today, 3200);
    return meter;
  }
  std::string Table(ConsoleSize size = {}, bool isFlowing = true) {
    return ConsoleTable(profile, region, isFlowing, now, size);
  }
};

TEST_F(ConsoleView, TwoMetersAreFollowedByTheirTotal) {
  AddReceivingMeter("Kitchen", 5);
  Add("Laundry room", 6);
  UpdateTotalKillAWatt(profile.Total(), profile.Meters(), now, 1000);
  profile.Total().Statistics().SetUsage(Today, 3200);
  EXPECT_EQ(Table(),
            "Meter         Volts   Amps     Watts       Today  Cost today  State\n"
            "Kitchen       120.1   5.10     612.4   3.200 kWh     $0.3392  receiving\n"
            "Laundry room    ---    ---       ---     0.00 Wh       $0.00  silent\n"
            "Total         120.1   5.10     612.4   3.200 kWh     $0.3392  receiving\n");
  now = now.PlusSeconds(5);
  UpdateTotalKillAWatt(profile.Total(), profile.Meters(), now, 6000);
  EXPECT_TRUE(
      Table().ends_with("Total           ---    ---       ---   3.200 kWh     $0.3392  silent\n"));
}

TEST_F(ConsoleView, OneMeterStandsAloneAndShowsItsAlarmUntilItIsSilent) {
  EXPECT_EQ(Table(), "No Kill-A-Watts have been added\n");
  clsKillAWatt& meter = AddReceivingMeter("Kitchen", 5);
  meter.Alarm().SetAlarmActive(true);
  meter.Alarm().SetAlarmUpperLimit(500);
  meter.Alarm().SetAlarmDuration(0);
  now = now.PlusSeconds(1);
  meter.AddReading(120.1, 5.1, 612.4, now, 1000);
  const std::string header = "Meter     Volts   Amps     Watts       Today  Cost today  State\n";
  EXPECT_EQ(Table(), header + "Kitchen   120.1   5.10     612.4   3.200 kWh     $0.3392  alarm\n");
  now = now.PlusSeconds(5);
  EXPECT_EQ(Table(), header + "Kitchen     ---    ---       ---   3.200 kWh     $0.3392  silent\n");
  EXPECT_TRUE(Table({}, false).starts_with("Unable to communicate on COM5:\nMeter "));
  meter.SetName("\x1b[31m\nred\xff");
  EXPECT_NE(Table().find("\n?[31m?red?  "), std::string::npos) << "it cannot drive the terminal";
  EXPECT_EQ(ConsoleLine(meter, now), "?[31m?red? no data");
}

// Whatever the terminal's size, no line wraps and nothing scrolls, and name and power come first.
TEST_F(ConsoleView, FitsEveryTerminal) {
  for (std::int16_t address = 1; address <= 12; ++address) {
    AddReceivingMeter("Appliance with quite a long name 洗濯機 " + std::to_string(address),
                      address);
  }
  for (int columns = 1; columns <= 130; ++columns) {
    for (const int rows : {1, 2, 3, 6, 16, 40}) {
      std::istringstream lines(Table({columns, rows}));
      std::string line;
      int count = 0;
      for (; std::getline(lines, line); ++count) {
        EXPECT_LE(DisplayWidth(line), static_cast<std::size_t>(std::max(columns - 1, 1)))
            << columns << ": " << line;
      }
      EXPECT_LE(count, std::max(rows - 1, 1)) << columns << " x " << rows;
    }
  }
}

TEST_F(ConsoleView, LeavesOutWhatMattersLeastFirst) {
  AddReceivingMeter("Refrigerator in the cellar", 5);
  EXPECT_EQ(Table({41, 24}),
            "Meter                   Watts  State\n"
            "Refrigerator in th…     612.4  receiving\n");
  for (std::int16_t address = 1; address <= 4; ++address) {
    AddReceivingMeter("M" + std::to_string(address), address);
  }
  std::istringstream lines(Table({80, 6}));
  std::string starts;
  for (std::string line; std::getline(lines, line);) starts += line.substr(0, 5) + "|";
  EXPECT_EQ(starts, "Meter|Refri|M1   |(and |Total|");
}

TEST_F(ConsoleView, LinesAreTheSameInEveryCountry) {
  clsKillAWatt& meter = Add("Plant", 7);
  meter.AddReading(240, 1250.5, 300120, now, 1000);
  meter.Statistics().SetUsage(Today, 7203456);
  EXPECT_EQ(ConsoleLine(meter, now), "Plant 300120.0 W 240.0 V 1250.50 A today 7203.456 kWh");
  EXPECT_EQ(ConsoleDate(now.PlusMilliseconds(1250)), "2026-11-16T20:10:01");
}

}  // namespace
}  // namespace wattlark
