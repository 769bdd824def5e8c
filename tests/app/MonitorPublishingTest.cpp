#include <filesystem>
#include <vector>

#include "MonitorFixture.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

const char* const kTweeted = "<created_at>";
const char* const kUpdated = "<updated>";

struct MonitorPublishingTest : WebMonitorTest {
  MonitorPublishingTest() {
    Put("Settings", "PachubeAPIKey", "key");
    Put("Settings", "GoogleUsername", "me");
    Put("Settings", "GooglePassword", "s3cret");
    Put("Settings", "GoogleWorksheetsFeed", "http://g/sheets");
    Put("Settings", "GoogleListFeed", "http://g/list");
    Put("Settings", "PowerMeterAuthInfo", "token=t&path=/p");
    Put("Settings", "TwitterUsername", "name");
    Put("Settings", "TwitterPassword", "pass");
    Put("Settings", "TwitterMessage", "%N uses %W");
    PutMeter("Kitchen", 5);
    clock.now = At("2026-11-16T20:07:30");
  }
  void Enable(const std::vector<const char*>& names) {
    for (const char* name : names) Put("Settings", name, "True");
  }
  /// Every status text that tells of a success.
  std::vector<std::string> Successes() const {
    std::vector<std::string> texts;
    for (const std::string& text : listener.infoTexts) {
      if (text.find("pdated ") != std::string::npos) texts.push_back(text);
    }
    return texts;
  }
};

TEST_F(MonitorPublishingTest, RunsDueDestinationsInOrderStampedWithTheirSlots) {
  Put("Settings", "CSVFilename", testing::TempDir() + "publishing_order.csv");
  Enable({"LogToCSV", "LogToPachube", "LogToGoogle", "LogToPowerMeter", "LogToTwitter"});
  Put("Settings", "TwitterInterval", "1");
  clock.now = At("2026-11-16T20:57:30");
  pachube.answers = {{" "}};
  google.answers = {{"Auth=t"}, {kUpdated}, {kUpdated}};
  twitter.answers = {{kTweeted}};
  Start();
  monitor->Profile().Total().Statistics().SetDemandRecent(Hour, std::vector<double>(60, 5));
  Tick(149);
  EXPECT_THAT(Successes(), IsEmpty());
  // The slots fell due at the full hour; ticks come a moment later.
  clock.Advance(400);
  Tick();
  EXPECT_THAT(Successes(), ElementsAre("CSV file: Updated 11/16/2026 9:00:00 PM",
                                       "Pachube: Updated 11/16/2026 9:00:00 PM",
                                       "Google Docs: Updated 11/16/2026 9:00:00 PM",
                                       "Google PowerMeter: Updated 11/16/2026 9:00:00 PM",
                                       "Twitter: Status updated 11/16/2026 9:00:00 PM"));
  EXPECT_THAT(google.requests[2].body, HasSubstr("2026-11-17T02:00:00.000Z</meter:endTime>"));
  EXPECT_THAT(listener.errors, IsEmpty());
  std::filesystem::remove(testing::TempDir() + "publishing_order.csv");
}

TEST_F(MonitorPublishingTest, RunsFromTheMenuWhateverTheSettingsSay) {
  PutMeter("1st", 6);
  Start();
  Arrive(Frame120W(5));
  google.answers = {{"Auth=t"}, {kUpdated}};
  twitter.answers = {{kTweeted}, {kTweeted}};
  EXPECT_TRUE(monitor->PublishNow(PublishTarget::GoogleDocs, false).success);
  EXPECT_THAT(google.requests[1].body, HasSubstr(">120.00</gsx:kitchen>"));
  EXPECT_THAT(Successes(), ElementsAre("Google Docs: Updated 11/16/2026 8:07:30 PM"));
  EXPECT_THAT(listener.errors, ElementsAre(HasSubstr("left out of the row: '1st'")));
  EXPECT_TRUE(monitor->PublishNow(PublishTarget::Twitter, false).success);
  EXPECT_THAT(twitter.requests[0].body, StartsWith("status=Total uses"));
  monitor->Profile().Meters().Remove(Meter(1));
  EXPECT_TRUE(monitor->PublishNow(PublishTarget::Twitter, false).success);
  EXPECT_EQ(twitter.requests[1].body, "status=Kitchen uses 120.00 W");
  monitor->Profile().Meters().Remove(Meter(0));
  EXPECT_EQ(monitor->PublishNow(PublishTarget::Twitter, true).text,
            "Twitter: There is no meter to tell of");
  EXPECT_EQ(twitter.requests.size(), 2U);
}

TEST_F(MonitorPublishingTest, ShowsErrorsOfTheMenuInABox) {
  Start();
  prompts.duringAsk = [this] { EXPECT_TRUE(monitor->IsUpdateTimerEnabled()) << "ticks go on"; };
  const PublishResult result = monitor->PublishNow(PublishTarget::PowerMeter, false);
  EXPECT_EQ(result.text, "Wattlark: No usage data for the interval");
  EXPECT_THAT(prompts.asked, ElementsAre(FieldsAre(result.text, "Error!", _, _, _)));
  EXPECT_THAT(listener.errors, ElementsAre(result.text));
  // A command from another process must not open a window here.
  EXPECT_FALSE(monitor->PublishNow(PublishTarget::PowerMeter, true).success);
  EXPECT_EQ(prompts.asked.size(), 1U);
  // A sign-in that is cancelled ends without a word.
  monitor->Profile().Settings().TwitterPassword.clear();
  EXPECT_FALSE(monitor->PublishNow(PublishTarget::Twitter, false).success);
  EXPECT_EQ(prompts.asked.size(), 1U);
  EXPECT_EQ(listener.errors.size(), 2U);
  EXPECT_TRUE(monitor->IsUpdateTimerEnabled());
}

TEST_F(MonitorPublishingTest, RunsAMenuCommandWithinAScheduledWait) {
  Enable({"LogToPachube"});
  pachube.answers = {{" ", 0, "", HttpState::ResponseCompleted, {HttpState::Connecting}}};
  twitter.answers = {{kTweeted}};
  Start();
  Tick(149);
  pump.onRound = [this](int round) {
    if (round != 1) return;
    EXPECT_TRUE(monitor->PublishNow(PublishTarget::Twitter, true).success);
    // The same service is busy with the scheduled run, which no message box may hold up.
    EXPECT_EQ(monitor->PublishNow(PublishTarget::Pachube, false).text,
              "Pachube: Still executing the last request");
    EXPECT_THAT(prompts.asked, IsEmpty());
    EXPECT_FALSE(monitor->IsUpdateTimerEnabled());
  };
  Tick();
  EXPECT_THAT(Successes(), ElementsAre("Twitter: Status updated 11/16/2026 8:10:00 PM",
                                       "Pachube: Updated 11/16/2026 8:10:00 PM"));
  EXPECT_TRUE(monitor->IsUpdateTimerEnabled());
}

TEST_F(MonitorPublishingTest, KeepsOffTheWebWithoutPorts) {
  web = nullptr;
  Enable({"LogToPachube", "LogToTwitter", "AlarmsToTwitter"});
  Start();
  EXPECT_EQ(monitor->Schedule().Destinations().size(), 1U);
  EXPECT_FALSE(monitor->PublishNow(PublishTarget::Pachube, true).success);
  EXPECT_THAT(listener.errors, ElementsAre("This run of the program does not use the web"));
}

struct MonitorTwitterAlarmTest : MonitorPublishingTest {
  MonitorTwitterAlarmTest() {
    PutMeterWithAlarm("Kitchen", 5);
    PutMeterWithAlarm("Office", 6);
    Enable({"AlarmsToTwitter"});
    Put("Settings", "TwitterAlarmMessage", "%N!");
  }
};

TEST_F(MonitorTwitterAlarmTest, PostsEveryAlarmQuietlyEvenOnesThatNoNoticeShows) {
  twitter.answers = {{kTweeted}, {"no"}};
  listener.showsNotices = false;
  Start();
  Use(61, 600, 700);
  ASSERT_EQ(twitter.requests.size(), 2U);
  EXPECT_EQ(twitter.requests[0].body, "status=Kitchen!");
  EXPECT_EQ(twitter.requests[1].body, "status=Office!");
  EXPECT_THAT(Successes(), ElementsAre("Twitter: Status updated 11/16/2026 8:08:31 PM"));
  EXPECT_THAT(listener.errors, ElementsAre("Twitter: Invalid or no response"));
  EXPECT_THAT(prompts.asked, IsEmpty());
  EXPECT_THAT(listener.notices, IsEmpty());

  Put("Settings", "AlarmsToTwitter", "False");
  listener.showsNotices = true;
  Start();
  Use(61, 600, 700);
  EXPECT_EQ(twitter.requests.size(), 2U);
  EXPECT_EQ(listener.notices.size(), 2U);
}

TEST_F(MonitorTwitterAlarmTest, SkipsAMeterThatIsRemovedMeanwhile) {
  Start();
  pump.onRound = [this](int round) {
    if (round > 1) return;
    while (!monitor->Profile().Meters().IsEmpty()) monitor->Profile().Meters().Remove(Meter(0));
  };
  Use(61, 600, 700);
  EXPECT_EQ(twitter.requests.size(), 1U);
}

}  // namespace
}  // namespace wattlark
