// What ticks do besides receiving: the Total, saving, demo readings, alarms and publishing.

#include <gmock/gmock.h>

#include <utility>

#include "app/MonitorFixture.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

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
  monitor->Profile().Settings().CurrentUnit = 3;
  Tick(299);
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "77");
  Tick();
  EXPECT_EQ(Get("KillAWatts\\Galley", "UsageToDate"), "78");
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "(none)");
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
  EXPECT_EQ(monitor->Profile().Total().Watts(), 1280) << "of the same tick";
  EXPECT_EQ(monitor->Profile().Total().Timestamp(), clock.now);
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
  // One box for all of a kind.
  EXPECT_THAT(prompts.asked,
              ElementsAre(FieldsAre("Not all the Kill-A-Watts were loaded", "Duplicate ID",
                                    PromptIcon::Exclamation, _, _),
                          FieldsAre(testing::AllOf(HasSubstr("PortNum"), HasSubstr("PeakToday")),
                                    "Error!", _, _, _)));
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
  EXPECT_THAT(listener.notices, ElementsAre(FieldsAre(clock.now, "A", "A: Using 600.0 Watts",
                                                      "A: Using 600.0 Watts\r\n")));
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

TEST_F(MonitorAlarmTest, HoldsANoticeBackWhileAnotherWindowIsOpenOrNothingFlows) {
  StartWithAlarms();
  port.opens = false;
  port.Close();
  Use(100, 600, 100);
  EXPECT_THAT(desktop.waves, IsEmpty());
  port.opens = true;
  listener.showsNotices = false;
  Use(2, 600, 100);
  EXPECT_EQ(desktop.waves.size(), 1U);
  listener.showsNotices = true;
  Use(2, 600, 100);
  EXPECT_THAT(listener.notices, IsEmpty()) << "it counts as given";
}

// A log without a name fails whenever it is due, so that the errors tell when that was.
TEST_F(MonitorTest, LogsWhatIsDueAndWaitsForTheNextSlot) {
  Put("Settings", "LogToCSV", "True");
  clock.now = At("2026-11-16T20:07:30.500");
  Start();
  monitor->Profile().Settings().CSVFilename = "";
  Tick(200);
  EXPECT_THAT(listener.errors, IsEmpty()) << "no meter yet";
  AddMeter(monitor->Profile().Meters(), "Kitchen", 5);
  port.opens = false;
  port.Close();
  Tick(3);
  EXPECT_THAT(listener.errors, IsEmpty()) << "no port";
  port.opens = true;
  Tick(3);
  EXPECT_THAT(listener.errors, ElementsAre(StartsWith("Error Writing Log File - ")));
  EXPECT_EQ(listener.infoTexts.back(), "Click here to view errors...");
  EXPECT_THAT(prompts.asked, IsEmpty());
  while (clock.now < At("2026-11-16T20:14:59")) Tick();
  EXPECT_EQ(listener.errors.size(), 1U);
  Tick();
  EXPECT_EQ(listener.errors.size(), 2U);
  // The computer sleeps for hours.
  clock.Advance(std::int64_t{3} * 3600000);
  Tick(2);
  EXPECT_EQ(listener.errors.size(), 3U);
}

}  // namespace
}  // namespace wattlark
