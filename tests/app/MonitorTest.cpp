#include <stdexcept>
#include <utility>

#include "app/MonitorFixture.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

TEST_F(MonitorTest, StartsByOpeningThePortOfTheSettingsWhoseOlderPlaceIsReadOnce) {
  MemoryRegistry older;
  modRegistry(older).SetStringValue(Hive::CurrentUser,
                                    "Software\\VB and VBA Program Settings\\Wattlark\\Settings",
                                    "PortNum", "5");
  for (const int number : {3, 5}) {
    if (number == 5) std::swap(registry, older);
    listener = {};
    Start();
    EXPECT_EQ(port.lastPortNumber, number);
    EXPECT_EQ(port.lastSettings, "9600,N,8,1");
    EXPECT_THAT(listener.timerChanges, ElementsAre(true));
    EXPECT_THAT(prompts.asked, IsEmpty());
  }
}

TEST_F(MonitorTest, SavesNothingOverAStoreItCouldNotRead) {
  PutMeter("Kitchen", 5);
  Put("KillAWatts\\Kitchen", "UsageToDate", "1234.5");
  registry.failsReads = true;
  Start();
  EXPECT_FALSE(monitor->Load());
  ASSERT_FALSE(prompts.asked.empty());
  EXPECT_EQ(prompts.asked.back().text,
            "Settings and meters could not be read: another program is using it");
  registry.failsReads = false;
  Tick(400);
  EXPECT_FALSE(monitor->Unload());
  EXPECT_EQ(Get("KillAWatts\\Kitchen", "UsageToDate"), "1234.5");
}

TEST_F(MonitorTest, GivesAFrameToTheMeterOfItsAddressAndNothingElseToAny) {
  PutMeter("Kitchen", 5);
  PutMeter("Office", 6);
  Start();
  Arrive({});
  EXPECT_THAT(listener.commImages, IsEmpty());
  Arrive(MeterFrame(5, {700}, {498}, {.wrongChecksum = true}));
  EXPECT_THAT(listener.commImages, ElementsAre(CommImage::Receiving));
  for (const Bytes& bytes : {WrapFrame({0x88, 1}), SampleFrame(5, 2, {1}), Frame120W(7),
                             Join({Frame120W(5), Frame120W(7)})}) {
    listener.commImages.clear();
    Arrive(bytes);
    EXPECT_THAT(listener.commImages, ElementsAre(CommImage::Receiving, CommImage::Idle));
  }
  EXPECT_THAT(listener.readings, IsEmpty());
  clock.Advance(250);
  Arrive(Frame120W(6));
  EXPECT_FALSE(Meter(0).HasReading());
  EXPECT_NEAR(Meter(1).Watts(), 120, 1e-9);
  EXPECT_EQ(Meter(1).Timestamp(), clock.now);
  EXPECT_THAT(listener.readings, ElementsAre("Office"));
  // Only the last frame of one read counts.
  Arrive(Join({Frame120W(6), Frame120W(5)}));
  EXPECT_THAT(listener.readings, ElementsAre("Office", "Kitchen"));
  EXPECT_THAT(listener.errors, IsEmpty());
}

TEST_F(MonitorTest, LeavesBytesInThePortWhileBusy) {
  PutMeter("Kitchen", 5);
  Start();
  listener.duringStatusUpdate = [this] {
    EXPECT_FALSE(monitor->IsUpdateTimerEnabled());
    Arrive(Frame120W(5));
  };
  Tick();
  EXPECT_THAT(listener.timerChanges, ElementsAre(true, false, true));
  EXPECT_EQ(port.waiting.size(), Frame120W(5).size());
  EXPECT_THAT(listener.readings, IsEmpty());
  listener.duringStatusUpdate = nullptr;
  listener.duringReading = [this] { Arrive(Frame120W(5)); };
  Arrive({});
  EXPECT_EQ(listener.readings.size(), 1U);
  EXPECT_EQ(port.waiting.size(), Frame120W(5).size());
  listener.duringReading = nullptr;
  Arrive({});
  EXPECT_EQ(listener.readings.size(), 2U);
  bool left = false;
  listener.duringStatusUpdate = [&] {
    if (!std::exchange(left, true)) monitor->Unload();
  };
  Tick();
  EXPECT_FALSE(monitor->IsUpdateTimerEnabled()) << "it was left within the tick";
}

TEST_F(MonitorTest, ReportsErrorsWithTheirMomentInABoxWhenAskedAndEndsNothing) {
  PutMeter("Kitchen", 5);
  Start();
  port.readFailure = "cable pulled";
  Arrive({});
  port.readFailure.clear();
  monitor->ReportError("first", At("2026-01-02T03:04:05"));
  EXPECT_THAT(prompts.asked, IsEmpty());
  monitor->ReportError("second", DateTime(), false);
  EXPECT_THAT(prompts.asked,
              ElementsAre(FieldsAre("second", "Error!", PromptIcon::Exclamation, _, _)));
  EXPECT_EQ(monitor->Errors().Text(),
            "11/16/2026 8:10:00 PM: Communications Error - cable pulled\r\n"
            "1/2/2026 3:04:05 AM: first\r\n11/16/2026 8:10:00 PM: second\r\n");
  listener.duringReading = [] { throw std::runtime_error("bad meter"); };
  Arrive(Frame120W(5));
  EXPECT_EQ(listener.errors.back(), "Communications Error - bad meter");
  listener.duringReading = nullptr;
  listener.duringStatusUpdate = [] { throw std::runtime_error("no face"); };
  Tick();
  EXPECT_EQ(listener.errors.back(), "no face");
  EXPECT_TRUE(monitor->IsUpdateTimerEnabled());
  listener.duringStatusUpdate = nullptr;
  Arrive(Frame120W(5));
  EXPECT_EQ(monitor->Frames().delivered, 2U) << "busy no longer";
  monitor->ClearErrors();
  EXPECT_TRUE(monitor->Errors().IsEmpty());
  EXPECT_EQ(listener.infoTexts.back(), "");
}

TEST(ErrorList, KeepsTheNewestThousandAndMebibyte) {
  const RegionalSettings region = RegionalSettings::UnitedStates();
  const DateTime now = At("2026-11-16T20:10:00");
  ErrorList errors(region);
  for (int i = 1; i <= 1001; ++i) errors.Add(std::to_string(i), now);
  EXPECT_THAT(errors.Text(), StartsWith("11/16/2026 8:10:00 PM: 2\r\n"));
  const std::string quote(std::size_t{64} << 10, 'x');
  for (int i = 1; i <= 100; ++i) errors.Add(std::to_string(i) + quote, now);
  EXPECT_THAT(errors.Text(), StartsWith("11/16/2026 8:10:00 PM: 86x"));
  errors.Add(std::string(std::size_t{2} << 20, 'y'), now);
  EXPECT_THAT(errors.Text(), StartsWith("11/16/2026 8:10:00 PM: yy"));
}

TEST_F(MonitorTest, TriesAPortThatIsClosedEveryTwoSeconds) {
  PutMeter("Kitchen", 5);
  port.opens = false;
  Start();
  Tick();
  EXPECT_EQ(port.openCalls, 1) << "not within two seconds";
  port.opens = true;
  Tick(10);
  EXPECT_EQ(port.openCalls, 2);
  port.opens = false;
  port.Lose();
  EXPECT_EQ(monitor->MainAreaText(),
            "Unable to communicate on COM3:\r\nDouble click to modify settings...");
  Tick(20);
  EXPECT_EQ(port.openCalls, 2 + 10);
  EXPECT_THAT(prompts.asked, IsEmpty());
  port.opens = true;
  Tick(2);
  EXPECT_EQ(monitor->MainAreaText(), "");
  Arrive(Frame120W(5));
  EXPECT_THAT(listener.readings, ElementsAre("Kitchen"));
}

}  // namespace
}  // namespace wattlark
