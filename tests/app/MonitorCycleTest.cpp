// What ticks do besides receiving: the Total, saving, demo readings, alarms, the log and the checks
// for updates.

#include "app/MonitorFixture.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

TEST_F(MonitorTest, SavesEveryFiveMinutesAndAtTheEnd) {
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
  Tick(300);
  EXPECT_EQ(Get("KillAWatts\\Galley", "UsageToDate"), "78");
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "(none)");
  EXPECT_EQ(Get("Settings", "CurrentUnit"), "3");
  Meter(0).Statistics().SetUsage(ToDate, 79);
  EXPECT_TRUE(monitor->Unload());
  EXPECT_EQ(Get("KillAWatts\\Galley", "UsageToDate"), "79");
  EXPECT_FALSE(port.IsOpen());
  EXPECT_FALSE(monitor->IsUpdateTimerEnabled());
  registry.failsWrites = true;
  EXPECT_FALSE(monitor->Unload());
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

TEST_F(MonitorTest, FabricatesReadingsInDemoMode) {
  PutMeter("Kitchen", 5);
  PutMeter("Office", 6);
  Put("KillAWatts\\Kitchen", "DemandRecentHour", "1000");
  Start(true);
  EXPECT_TRUE(monitor->IsFlowing());
  Tick();
  EXPECT_EQ(Meter(0).Watts(), 1000);
  EXPECT_EQ(Meter(1).Watts(), 280) << "0.5 x 440 + 60";
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
  // One box for all of a kind.
  EXPECT_THAT(prompts.asked,
              ElementsAre(FieldsAre("Not all the Kill-A-Watts were loaded", "Duplicate ID",
                                    PromptIcon::Exclamation, _, _),
                          FieldsAre(AllOf(HasSubstr("PortNum"), HasSubstr("PeakToday")), "Error!",
                                    _, _, _)));
  EXPECT_TRUE(port.IsOpen()) << "and it runs";
}

struct MonitorAlarmTest : MonitorTest {
  MonitorAlarmTest() {
    PutMeterWithAlarm("A", 5);
    PutMeterWithAlarm("B", 6);
    Start();
    Use(0, 600, 1);
  }
};

TEST_F(MonitorAlarmTest, NoticesHoldTheLinesOfTheirTickTheTotalsFirstAndComeAgainAtTheInterval) {
  monitor->Profile().Total().Alarm().SetAlarmActive(true);
  Use(60, 600, 700.04);
  EXPECT_THAT(listener.notices, IsEmpty());
  Use(1, 600, 700.04);
  ASSERT_EQ(listener.notices.size(), 3U);
  EXPECT_THAT(listener.notices[0], FieldsAre(clock.now, "Total", "Total: Using 1,300.0 Watts",
                                             "Total: Using 1,300.0 Watts\r\n"));
  EXPECT_EQ(listener.notices[2].text,
            "Total: Using 1,300.0 Watts\r\nA: Using 600.0 Watts\r\nB: Using 700.0 Watts\r\n");
  EXPECT_THAT(desktop.waves, ElementsAre("notice.wav", "notice.wav", "notice.wav"));
  Use(600, 600, 700.04);
  EXPECT_EQ(listener.notices.size(), 3U);
  Use(1, 600, 700.04);
  EXPECT_EQ(listener.notices.size(), 6U);
}

TEST_F(MonitorAlarmTest, NothingIsToldOrLoggedWithoutAPortAndNoNoticeShownOverAnotherWindow) {
  monitor->Profile().Settings().LogToCSV = true;
  monitor->Profile().Settings().CSVFilename = "";
  port.opens = false;
  port.Close();
  Use(400, 600, 100);
  EXPECT_THAT(desktop.waves, IsEmpty());
  EXPECT_THAT(listener.errors, IsEmpty());
  port.opens = true;
  listener.showsNotices = false;
  Use(2, 600, 100);
  EXPECT_EQ(desktop.waves.size(), 1U);
  EXPECT_THAT(listener.errors, ElementsAre(StartsWith("Error Writing Log File - ")));
  EXPECT_THAT(prompts.asked, IsEmpty());
  listener.showsNotices = true;
  Use(2, 600, 100);
  EXPECT_THAT(listener.notices, IsEmpty()) << "it counts as given";
}

const char* const kFile = "2.9\r\n27 August 2010\r\nhttp://maker.example/setup.exe\r\n";

constexpr std::int64_t kHour = 3600000;  // ms

struct MonitorUpdateTest : WebMonitorTest {
  MonitorUpdateTest() {
    Put("ServiceEndpoints", "VersionFileURL", "http://maker.example/version.txt");
  }
  /// A tick more than an hour after the last check.
  void TickWhenDue() {
    clock.Advance(kHour);
    Tick();
  }
};

TEST_F(MonitorUpdateTest, ChecksEveryHourWhenTheSettingSaysSo) {
  Start();
  clock.Advance(kHour - 1000);
  Tick();
  EXPECT_EQ(versionAlert.requests.size(), 0U) << "the hour is not over";
  Tick();
  EXPECT_EQ(versionAlert.requests.size(), 1U);
  monitor->Profile().Settings().AutoUpdate = false;
  TickWhenDue();
  monitor->CheckForUpdates(false);
  EXPECT_EQ(versionAlert.requests.size(), 1U);
  monitor->Profile().Settings().AutoUpdate = true;
  Tick();
  EXPECT_EQ(versionAlert.requests.size(), 2U);
  // A clock that was set back delays it by no more than that hour.
  clock.now = clock.now.PlusDays(-400);
  Tick();
  TickWhenDue();
  EXPECT_EQ(versionAlert.requests.size(), 3U);
}

TEST_F(MonitorUpdateTest, AnOfferWaitsUntilNoOtherWindowIsOpenAndHoldsUpNoReading) {
  PutMeter("Kitchen", 5);
  Start();
  versionAlert.answers = {{kFile}, {kFile}};
  listener.showsNotices = false;
  TickWhenDue();
  Tick();
  EXPECT_THAT(prompts.offers, IsEmpty());
  listener.showsNotices = true;
  prompts.updateAnswers = {UpdateAnswer::Download};
  prompts.duringOffer = [this] {
    EXPECT_TRUE(monitor->IsUpdateTimerEnabled());
    Arrive(Frame120W(5));
    TickWhenDue();
  };
  Tick();
  EXPECT_THAT(listener.readings, ElementsAre("Kitchen"));
  EXPECT_EQ(prompts.offers.size(), 1U);
  EXPECT_THAT(desktop.addresses, ElementsAre("http://maker.example/setup.exe"));
  EXPECT_EQ(listener.exits, 1);
  // Nothing is told once the program ends.
  pump.onRound = [this](int) { monitor->StopRunning(); };
  TickWhenDue();
  EXPECT_EQ(prompts.offers.size(), 1U);
  EXPECT_FALSE(monitor->IsUpdateTimerEnabled());
}

}  // namespace
}  // namespace wattlark
