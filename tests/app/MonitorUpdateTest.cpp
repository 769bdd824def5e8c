#include <gmock/gmock.h>

#include "MonitorFixture.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
  clock.Advance(kHour - 1000);
  Tick();
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

TEST_F(MonitorUpdateTest, ATickPublishesThenChecksThenShowsTheStatus) {
  Put("Settings", "LogToPachube", "True");
  PutMeter("Kitchen", 5);
  Start();
  std::vector<std::string> order;
  pump.onRound = [&](int) {
    if (pachube.IsBusy()) order.emplace_back("publish");
    if (versionAlert.IsBusy()) order.emplace_back("check");
  };
  listener.duringStatusUpdate = [&] { order.emplace_back("status"); };
  TickWhenDue();
  EXPECT_THAT(order, ElementsAre("publish", "check", "status"));
}

TEST_F(MonitorUpdateTest, ReadingsGoOnWhileTheUserThinks) {
  PutMeter("Kitchen", 5);
  Start();
  versionAlert.answers = {{kFile}};
  prompts.updateAnswers = {UpdateAnswer::Download};
  prompts.duringOffer = [this] {
    EXPECT_TRUE(monitor->IsUpdateTimerEnabled());
    Arrive(Frame120W(5));
    TickWhenDue();
  };
  TickWhenDue();
  EXPECT_THAT(listener.readings, ElementsAre("Kitchen"));
  EXPECT_EQ(prompts.offers.size(), 1U);
  EXPECT_THAT(desktop.addresses, ElementsAre("http://maker.example/setup.exe"));
  EXPECT_EQ(listener.exits, 1);
}

TEST_F(MonitorUpdateTest, AnOfferWaitsUntilNoOtherWindowIsOpen) {
  Start();
  versionAlert.answers = {{kFile}};
  listener.showsNotices = false;
  TickWhenDue();
  Tick();
  EXPECT_THAT(prompts.offers, IsEmpty());
  listener.showsNotices = true;
  Tick();
  EXPECT_EQ(prompts.offers.size(), 1U);
  EXPECT_EQ(versionAlert.requests.size(), 1U);
  EXPECT_EQ(listener.exits, 0);
  // Nothing is told once the program ends.
  versionAlert.answers = {{kFile}};
  pump.onRound = [this](int) { monitor->StopRunning(); };
  TickWhenDue();
  EXPECT_EQ(prompts.offers.size(), 1U);
  EXPECT_FALSE(monitor->IsUpdateTimerEnabled());
}

}  // namespace
}  // namespace wattlark
