#include <gmock/gmock.h>

#include "config/modRegistry.h"
#include "twins/HandClock.h"
#include "twins/MemoryRegistry.h"
#include "twins/RecordingDesktop.h"
#include "twins/ScriptedHttp.h"
#include "twins/ScriptedPrompts.h"
#include "update/SoftwareUpdate.h"

namespace wattlark {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;

constexpr const char* kAddress = "http://maker.example/version.txt";
constexpr const char* kDownload = "https://maker.example/setup.exe";

std::string File(const std::string& version, const std::string& notes = "") {
  return version + "\r\n27 August 2010\r\n" + kDownload + "\r\n" + notes;
}

struct SoftwareUpdateTest : testing::Test {
  SoftwareUpdateTest() { settings.AutoUpdate = true; }

  void Skip(const char* version) { store.SaveAppSetting("", "Settings", "SkipVersion", version); }
  std::string Skipped() const {
    return store.GetAppSetting("", "Settings", "SkipVersion", "(none)");
  }
  /// A check of a server that answers by script; whether a download was chosen.
  bool Check(const std::vector<ScriptedAnswer>& answers, bool showUpToDate = false) {
    http.answers.assign(answers.begin(), answers.end());
    update.Find(kAddress, false, showUpToDate);
    return update.Tell();
  }
  bool Check(const std::string& file, bool showUpToDate = false) {
    return Check(std::vector<ScriptedAnswer>{{file}}, showUpToDate);
  }
  bool IsSilent() const { return prompts.offers.empty() && prompts.asked.empty(); }

  ScriptedHttp http;
  ScriptedPump pump{{&http}};
  MemoryRegistry registry;
  modRegistry store{registry};
  AppSettings settings;
  ScriptedPrompts prompts;
  RecordingDesktop desktop;
  std::vector<std::string> progress;
  SoftwareUpdate update{{http, pump, store, settings, prompts, desktop,
                         [this](const std::string& text) { progress.push_back(text); }},
                        "2.0"};
};

TEST_F(SoftwareUpdateTest, OffersANewerVersionWithItsNotes) {
  EXPECT_FALSE(Check({{File("2.1", "http://maker.example/notes.txt")}, {"- Faster\r\n"}}));
  EXPECT_THAT(http.requests,
              ElementsAre(ScriptedHttp::Request{kAddress, "GET", "", ""},
                          ScriptedHttp::Request{"http://maker.example/notes.txt", "GET", "", ""}));
  EXPECT_THAT(prompts.offers,
              ElementsAre(FieldsAre("A new version of Wattlark is available!",
                                    "Wattlark 2.1 is now available - you have 2.0. Would you like "
                                    "to download the new version now?",
                                    "- Faster\r\n", "2.1", kDownload)));
  EXPECT_THAT(desktop.addresses, IsEmpty());
  EXPECT_EQ(Skipped(), "(none)");
  EXPECT_THAT(progress, IsEmpty()) << "nobody asked for the check";
}

TEST_F(SoftwareUpdateTest, OffersWithoutNotesThatCannotBeHad) {
  const std::string file = File("2.1", "http://maker.example/notes.txt");
  for (const ScriptedAnswer& notes : {ScriptedAnswer{""}, ScriptedAnswer{"<h1>Not Found</h1>"},
                                      ScriptedAnswer{"half", HttpTimedOut, "", HttpState::Error},
                                      ScriptedAnswer{std::string(LongestResponse + 1, 'x')}}) {
    Check({{file}, notes});
    EXPECT_EQ(prompts.offers.back().releaseNotes, "");
  }
  EXPECT_EQ(prompts.offers.size(), 4U);
  EXPECT_THAT(prompts.asked, IsEmpty());
}

TEST_F(SoftwareUpdateTest, DownloadOpensTheAddressAndEndsTheProgramOnceThatWorked) {
  prompts.updateAnswers = {UpdateAnswer::Download, UpdateAnswer::Download};
  EXPECT_TRUE(Check(File("2.1")));
  EXPECT_THAT(desktop.addresses, ElementsAre(kDownload));
  desktop.opensAddresses = false;
  EXPECT_FALSE(Check(File("2.1")));
  ASSERT_EQ(prompts.asked.size(), 1U);
  EXPECT_THAT(prompts.asked[0].text, testing::HasSubstr(kDownload));
}

TEST_F(SoftwareUpdateTest, ASkippedVersionStaysSkippedUntilANewerOneOrTheProgramOvertakesIt) {
  prompts.updateAnswers = {UpdateAnswer::SkipThisVersion};
  Check(File("2.1"));
  EXPECT_EQ(Skipped(), "2.1");
  prompts.offers.clear();
  Check(File("2.1"));
  Check(File("2.1b9"));
  EXPECT_THAT(prompts.offers, IsEmpty());
  Check(File("2.1.1"));
  Check(File("2.2"));
  EXPECT_EQ(prompts.offers.size(), 2U);
  EXPECT_EQ(Skipped(), "2.1");

  for (const char* version : {"1.9", "nonsense"}) {
    Skip(version);
    Check(File("2.0"));
    EXPECT_EQ(Skipped(), "(none)") << version;
  }
  Skip("1.9");
  Check("no release information");
  EXPECT_EQ(Skipped(), "1.9");
}

TEST_F(SoftwareUpdateTest, SaysThatItIsUpToDateOnlyWhenAsked) {
  Check(File("2.0"));
  Check(File("2.0b5"));
  EXPECT_TRUE(IsSilent());
  http.answers = {{File("2.0"), 0, "", HttpState::ResponseCompleted, {HttpState::Connecting}}};
  update.Find(kAddress, false, true);
  update.Tell();
  EXPECT_THAT(prompts.asked,
              ElementsAre(FieldsAre("Wattlark 2.0 is currently the newest version available",
                                    "You're up to date!", _, _, _)));
  EXPECT_THAT(progress, ElementsAre("Software Update: Connecting...", ""));
  EXPECT_FALSE(update.HasNews()) << "told once";
}

TEST_F(SoftwareUpdateTest, FailuresAreSilentEvenWhenAsked) {
  const ScriptedAnswer answers[] = {{"<html>\r\nNot Found\r\n</html>"},
                                    {"garbage"},
                                    {std::string(LongestResponse + 1, '2')},
                                    {File("2.1"), 3, "Host not found", HttpState::Error}};
  for (const ScriptedAnswer& answer : answers) Check({answer}, true);
  pump.isEnding = true;
  Check(File("2.1"), true);
  EXPECT_TRUE(IsSilent());
  EXPECT_EQ(http.cancellations, 1);
}

TEST_F(SoftwareUpdateTest, ATimeOutAsksWhetherToStop) {
  const ScriptedAnswer timeOut{"", HttpTimedOut, "No answer", HttpState::Error};
  settings.AutoUpdate = false;
  Check({timeOut}, true);
  EXPECT_THAT(prompts.asked,
              ElementsAre(FieldsAre("Unable to contact version control server. Would you like to "
                                    "stop checking for updates?",
                                    _, _, PromptButtons::YesNo, PromptAnswer::No)));
  EXPECT_TRUE(settings.AutoUpdate);
  prompts.answers = {PromptAnswer::Yes};
  Check({timeOut});
  EXPECT_FALSE(settings.AutoUpdate);
}

TEST_F(SoftwareUpdateTest, TellsNothingThatNobodyAskedForOnceAlertsAreOff) {
  http.answers = {{"", HttpTimedOut, "No answer", HttpState::Error}, {File("2.1")}};
  update.Find(kAddress, false, false);
  settings.AutoUpdate = false;
  EXPECT_FALSE(update.HasNews());
  EXPECT_FALSE(update.Tell());
  EXPECT_TRUE(IsSilent());
  update.Find(kAddress, false, true);
  update.Tell();
  EXPECT_EQ(prompts.offers.size(), 1U);
}

TEST_F(SoftwareUpdateTest, WithoutAnAddressOnlyTheUserWhoAskedIsTold) {
  for (const bool isAskedFor : {false, true}) {
    update.Find("", false, isAskedFor);
    EXPECT_FALSE(update.Tell());
    ASSERT_EQ(prompts.asked.size(), isAskedFor ? 1U : 0U);
  }
  EXPECT_EQ(prompts.asked[0].text, "No address is configured.");
  EXPECT_THAT(http.requests, IsEmpty());
}

TEST_F(SoftwareUpdateTest, AskingDuringACheckJoinsIt) {
  pump.onRound = [this](int) { update.Find(kAddress, false, true); };
  Check(File("2.0"));
  EXPECT_EQ(http.requests.size(), 1U);
  EXPECT_EQ(prompts.asked.size(), 1U);
}

}  // namespace
}  // namespace wattlark
