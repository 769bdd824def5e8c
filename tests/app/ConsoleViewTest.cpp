#include <gtest/gtest.h>

#include <sstream>

#include "app/ConsoleView.h"
#include "support/DisplayText.h"
#include "twins/HandClock.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

const RegionalSettings kRegional = RegionalSettings::UnitedStates();

struct ConsoleView : testing::Test {
  ProfileData profile{kRegional};
  DateTime now = At("2026-11-16T20:10:01.250");

  ConsoleView() {
    profile.Settings().PortNum = 3;
    profile.Settings().Mils = 0.1;
    profile.Total().SetName("Total");
  }

  clsKillAWatt& AddMeter(const std::string& name, std::int16_t address) {
    return wattlark::AddMeter(profile.Meters(), name, address);
  }
  // 3200 Wh today, which cost 32 cents.
  clsKillAWatt& AddReceivingMeter(const std::string& name, std::int16_t address) {
    clsKillAWatt& meter = AddMeter(name, address);
    meter.AddReading(120.1, 5.1, 612.4, now, 1000);
    meter.Statistics().SetUsage(Today, 3200);
    return meter;
  }
  std::string Table(ConsoleSize size = {}, bool isFlowing = true) {
    return ConsoleTable(profile, kRegional, isFlowing, now, size);
  }
};

TEST_F(ConsoleView, TwoMetersAreFollowedByTheirTotal) {
  AddReceivingMeter("Kitchen", 5);
  AddMeter("Laundry room", 6);
  UpdateTotalKillAWatt(profile.Total(), profile.Meters(), now, 1000);
  profile.Total().Statistics().SetUsage(Today, 3200);
  EXPECT_EQ(Table(),
            "Meter         Volts   Amps     Watts       Today  Cost today  State\n"
            "Kitchen       120.1   5.10     612.4   3.200 kWh     $0.3200  receiving\n"
            "Laundry room    ---    ---       ---     0.00 Wh       $0.00  silent\n"
            "Total         120.1   5.10     612.4   3.200 kWh     $0.3200  receiving\n");
  now = now.PlusSeconds(5);
  UpdateTotalKillAWatt(profile.Total(), profile.Meters(), now, 6000);
  EXPECT_TRUE(
      Table().ends_with("Total           ---    ---       ---   3.200 kWh     $0.3200  silent\n"));
}

TEST_F(ConsoleView, OneMeterStandsAloneAndShowsItsAlarmUntilItIsSilent) {
  clsKillAWatt& meter = AddReceivingMeter("Kitchen", 5);
  meter.Alarm().SetAlarmActive(true);
  meter.Alarm().SetAlarmUpperLimit(500);
  meter.Alarm().SetAlarmDuration(0);
  now = now.PlusSeconds(1);
  meter.AddReading(120.1, 5.1, 612.4, now, 1000);
  const std::string header = "Meter     Volts   Amps     Watts       Today  Cost today  State\n";
  EXPECT_EQ(Table(), header + "Kitchen   120.1   5.10     612.4   3.200 kWh     $0.3200  alarm\n");
  now = now.PlusSeconds(5);
  EXPECT_EQ(Table(), header + "Kitchen     ---    ---       ---   3.200 kWh     $0.3200  silent\n");
}

TEST_F(ConsoleView, TellsWhyNothingIsShown) {
  EXPECT_EQ(Table({}, false), "Unable to communicate on COM3:\n");
  EXPECT_EQ(Table(), "No Kill-A-Watts have been added\n");
  AddMeter("Kitchen", 5);
  EXPECT_TRUE(Table({}, false).starts_with("Unable to communicate on COM3:\nMeter "));
}

TEST_F(ConsoleView, AHostileNameCannotDriveTheTerminal) {
  AddReceivingMeter("\x1b[31m\nred\xff", 5);
  const std::string table = Table();
  EXPECT_NE(table.find("\n?[31m?red?  "), std::string::npos) << table;
  EXPECT_EQ(ConsoleLine(profile.Meters()[0], now),
            "?[31m?red? 612.4 W 120.1 V 5.10 A today 3.200 kWh");
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
  EXPECT_EQ(Table({61, 24}),
            "Meter          Volts   Amps     Watts       Today  State\n"
            "Refrigerator…  120.1   5.10     612.4   3.200 kWh  receiving\n");
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
  const clsKillAWatt& meter = AddReceivingMeter("Kitchen", 5);
  EXPECT_EQ(ConsoleLine(meter, now), "Kitchen 612.4 W 120.1 V 5.10 A today 3.200 kWh");
  EXPECT_EQ(ConsoleLine(meter, now.PlusSeconds(5)), "Kitchen no data");
  EXPECT_EQ(ConsoleDate(now), "2026-11-16T20:10:01");
  clsKillAWatt& plant = AddMeter("Plant", 7);
  plant.AddReading(240, 1250.5, 300120, now, 1000);
  plant.Statistics().SetUsage(Today, 7203456);
  EXPECT_EQ(ConsoleLine(plant, now), "Plant 300120.0 W 240.0 V 1250.50 A today 7203.456 kWh");
}

}  // namespace
}  // namespace wattlark
