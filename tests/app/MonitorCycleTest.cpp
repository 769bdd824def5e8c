// What ticks do besides receiving: the Total, saving, demo readings, alarms and publishing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include "app/MonitorFixture.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

TEST_F(MonitorTest, GivesTheTotalOneReadingATick) {
  PutMeter("Kitchen", 5);
  PutMeter("Solar", 6);
  Put("KillAWatts\\Solar", "KillAWattType", "1");
  Start();
  Meter(0).AddReading(120, 1, 500, clock.now, 1);
  Meter(1).AddReading(118, 3, 200, clock.now, 1);
  Tick(4);
  EXPECT_EQ(monitor->Profile().Total().Watts(), 300);
  EXPECT_EQ(monitor->Profile().Total().Timestamp(), clock.now);
  EXPECT_NEAR(monitor->Profile().Total().Statistics().Usage(ToDate), 3 * 300 / 3600.0, 1e-9);
  Tick();
  EXPECT_EQ(monitor->Profile().Total().Watts(), 0) << "both silent for five seconds";
}

TEST_F(MonitorTest, SavesEveryFiveMinutes) {
  PutMeter("Kitchen", 5);
  clock.ticks = 0xFFFFFFFF - 100000;  // wraps on the way
  Start();
  Meter(0).Statistics().SetUsage(ToDate, 77);
  Tick(299);
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "(none)");
  Tick();
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "77");
  Meter(0).Statistics().SetUsage(ToDate, 78);
  Meter(0).SetName("Galley");
  monitor->Profile().Settings().CurrentUnit = 2;
  Tick(299);
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "77");
  Tick();
  EXPECT_EQ(Get("KillAWatts\\Galley", "UsageToDate"), "78");
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "(none)");
  Meter(0).Statistics().SetUsage(ToDate, 79);
  monitor->Profile().Settings().CurrentUnit = 3;
  Tick(300);
  EXPECT_EQ(Get("KillAWatts\\Galley", "UsageToDate"), "79");
  EXPECT_EQ(Get("Settings", "CurrentUnit"), "3");
}

TEST_F(MonitorTest, ReportsASaveThatFailsOnceUntilItWorksAgain) {
  PutMeter("Kitchen", 5);
  Start();
  Tick(300);
  for (bool* fails : {&registry.failsWrites, &registry.failsCommit}) {
    listener.errors.clear();
    *fails = true;
    Meter(0).Statistics().SetUsage(ToDate, 99);
    Tick(900);
    EXPECT_THAT(listener.errors,
                ElementsAre("Settings and statistics could not be saved: the disk is full"));
    EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "0") << "as it was";
    EXPECT_FALSE(monitor->SaveEverything());
    *fails = false;
    Tick(5);
    EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "99");
    EXPECT_EQ(listener.errors.size(), 1U);
    Meter(0).Statistics().SetUsage(ToDate, 0);
    Tick(300);
  }
}

TEST_F(MonitorTest, UnloadsCleanly) {
  PutMeter("Kitchen", 5);
  Start();
  Arrive(Frame120W(5));
  monitor->Profile().Settings().CurrentUnit = 2;
  EXPECT_TRUE(monitor->Unload());
  EXPECT_FALSE(port.IsOpen());
  EXPECT_FALSE(monitor->IsUpdateTimerEnabled());
  EXPECT_EQ(Get("Settings", "CurrentUnit"), "2");
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "Timestamp"), "11/16/2026 8:10:00 PM");
  EXPECT_EQ(Get("TotalKillAWatt", "Name"), "Total");
  clock.Advance(3600000);
  Start();
  EXPECT_EQ(Meter(0).Timestamp(), At("2026-11-16T20:10:00")) << "the statistics go on";
  EXPECT_NEAR(Meter(0).Statistics().Peak(ToDate), 120, 1e-9);
  registry.failsWrites = true;
  EXPECT_FALSE(monitor->Unload());
  EXPECT_FALSE(port.IsOpen());
}

TEST_F(MonitorTest, FabricatesReadingsInDemoMode) {
  PutMeter("Kitchen", 5);
  PutMeter("Office", 6);
  Put("KillAWatts\\Kitchen", "DemandRecentHour", "1000");
  Start(true);
  EXPECT_EQ(port.openCalls, 0);
  EXPECT_TRUE(monitor->IsFlowing());
  EXPECT_EQ(monitor->MainAreaText(), "");
  Tick();
  EXPECT_EQ(Meter(0).Watts(), 1000);
  EXPECT_EQ(Meter(1).Watts(), 280) << "0.5 x 440 + 60";
  EXPECT_EQ(Meter(1).Timestamp(), clock.now);
  EXPECT_EQ(monitor->Profile().Total().Watts(), 1280) << "of the same tick";
  Tick(5);
  EXPECT_EQ(port.openCalls, 0);
  monitor->Unload();
  EXPECT_EQ(Get("Settings", "DemoMode"), "False") << "for this run only";
}

TEST_F(MonitorTest, TellsWhatCouldNotBeLoaded) {
  PutMeter("A", 5);
  PutMeter("B", 5);
  PutMeter("C", 5);
  Put("KillAWatts\\A", "PeakToday", "much");
  Put("Settings", "PortNum", "three");
  Start();
  ASSERT_EQ(prompts.asked.size(), 2U) << "one box for all of a kind";
  EXPECT_EQ(prompts.asked[0].text, "Not all the Kill-A-Watts were loaded");
  EXPECT_EQ(prompts.asked[0].caption, "Duplicate ID");
  EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Exclamation);
  EXPECT_EQ(prompts.asked[1].caption, "Error!");
  EXPECT_THAT(prompts.asked[1].text, testing::HasSubstr("PortNum"));
  EXPECT_THAT(prompts.asked[1].text, testing::HasSubstr("PeakToday"));
  EXPECT_TRUE(port.IsOpen()) << "and it runs";
}

struct MonitorAlarmTest : MonitorTest {
  void StartWithAlarms() {
    for (const auto& [name, address] : {std::pair("A", 5), std::pair("B", 6)}) {
      PutMeter(name, address);
      Put(std::string("KillAWatts\\") + name, "AlarmActive", "True");
    }
    Start();
    Use(0, 600, 1);
  }
  /// One reading a second of both meters, each followed by a tick.
  void Use(int seconds, double wattsOfA, double wattsOfB) {
    for (int i = 0; i <= seconds; ++i) {
      if (i > 0) clock.Advance(1000);
      Meter(0).AddReading(120, 1, wattsOfA, clock.now, clock.ticks);
      Meter(1).AddReading(120, 1, wattsOfB, clock.now, clock.ticks);
      if (i > 0) monitor->UpdateCycle();
    }
  }
};

TEST_F(MonitorAlarmTest, RaisesNoticesAfterTheDurationAndAtTheInterval) {
  StartWithAlarms();
  Use(60, 600, 100);
  EXPECT_THAT(listener.notices, IsEmpty());
  Use(1, 600, 100);
  ASSERT_EQ(listener.notices.size(), 1U);
  EXPECT_EQ(listener.notices[0].time, clock.now);
  EXPECT_EQ(listener.notices[0].meter, "A");
  EXPECT_EQ(listener.notices[0].line, "A: Using 600.0 Watts");
  EXPECT_EQ(listener.notices[0].text, "A: Using 600.0 Watts\r\n");
  EXPECT_THAT(desktop.waves, ElementsAre("notice.wav"));
  Use(600, 600, 100);
  EXPECT_EQ(listener.notices.size(), 1U);
  Use(1, 600, 100);
  EXPECT_EQ(listener.notices.size(), 2U);
}

TEST_F(MonitorAlarmTest, ANoticeHoldsTheLinesOfItsTickTheTotalsFirst) {
  StartWithAlarms();
  monitor->Profile().Total().Alarm().SetAlarmActive(true);
  Use(61, 600, 700.04);
  ASSERT_EQ(listener.notices.size(), 3U);
  EXPECT_EQ(listener.notices[0].meter, "Total");
  EXPECT_EQ(listener.notices[2].line, "B: Using 700.0 Watts");
  EXPECT_EQ(listener.notices[2].text,
            "Total: Using 1,300.0 Watts\r\nA: Using 600.0 Watts\r\nB: Using 700.0 Watts\r\n");
  EXPECT_EQ(desktop.waves.size(), 3U);
}

TEST_F(MonitorAlarmTest, HoldsANoticeBackWhileAnotherWindowIsOpen) {
  StartWithAlarms();
  listener.showsNotices = false;
  Use(61, 600, 100);
  EXPECT_EQ(desktop.waves.size(), 1U);
  listener.showsNotices = true;
  Use(2, 600, 100);
  EXPECT_THAT(listener.notices, IsEmpty()) << "it counts as given";
}

TEST_F(MonitorAlarmTest, RaisesNoneWhileNothingFlows) {
  StartWithAlarms();
  port.opens = false;
  port.Close();
  Use(100, 600, 100);
  EXPECT_THAT(listener.notices, IsEmpty());
  EXPECT_THAT(desktop.waves, IsEmpty());
  port.opens = true;
  Use(2, 600, 100);
  EXPECT_EQ(listener.notices.size(), 1U);
}

struct MonitorScheduleTest : MonitorTest {
  MonitorScheduleTest() {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    file = std::filesystem::path(testing::TempDir()) / (std::string(test->name()) + ".csv");
    std::filesystem::remove(file);
    Put("Settings", "LogToCSV", "True");
    Put("Settings", "CSVFilename", file.string());
  }
  ~MonitorScheduleTest() override { std::filesystem::remove(file); }
  std::string File() const {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  std::filesystem::path file;
};

TEST_F(MonitorScheduleTest, LogsWhatIsDue) {
  PutMeter("Kitchen", 5);
  clock.now = At("2026-11-16T20:07:30.500");
  Start();
  Tick(149);
  EXPECT_EQ(File(), "");
  listener.timerChanges.clear();
  Tick();
  EXPECT_EQ(File(), "Timestamp, Kitchen\r\n11/16/2026 8:10:00 PM, \r\n");
  EXPECT_EQ(listener.infoTexts.back(), "CSV file: Updated 11/16/2026 8:10:00 PM");
  EXPECT_THAT(listener.timerChanges, ElementsAre(false, true)) << "once off, once on again";
  // The computer sleeps for hours.
  clock.Advance(3 * 3600000);
  Tick(2);
  EXPECT_EQ(File(), "Timestamp, Kitchen\r\n11/16/2026 8:10:00 PM, \r\n11/16/2026 8:15:00 PM, \r\n");
}

TEST_F(MonitorScheduleTest, LogsNothingWithoutMetersOrAPort) {
  clock.now = At("2026-11-16T20:07:30");
  Start();
  Tick(400);
  EXPECT_EQ(File(), "");
  auto meter = std::make_unique<clsKillAWatt>();
  monitor->Profile().Meters().Add(std::move(meter));
  port.opens = false;
  port.Close();
  Tick(3);
  EXPECT_EQ(File(), "");
  port.opens = true;
  Tick(3);
  EXPECT_EQ(File(), "Timestamp, New Appliance\r\n11/16/2026 8:10:00 PM, \r\n");
}

TEST_F(MonitorScheduleTest, ListsAFailureAndWaitsForTheNextSlot) {
  PutMeter("Kitchen", 5);
  Start();
  monitor->Profile().Settings().CSVFilename = "";
  Tick(300);
  ASSERT_EQ(listener.errors.size(), 1U);
  EXPECT_THAT(listener.errors[0], StartsWith("Error Writing Log File - "));
  EXPECT_EQ(listener.infoTexts.back(), "Click here to view errors...");
  EXPECT_THAT(prompts.asked, IsEmpty());
  Tick(299);
  EXPECT_EQ(listener.errors.size(), 1U);
}

}  // namespace
}  // namespace wattlark
