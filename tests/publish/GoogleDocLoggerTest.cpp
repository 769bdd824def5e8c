#include "WebLoggerTest.h"
#include "publish/GoogleDocLogger.h"
#include "publish/GoogleFeeds.h"
#include "publish/GoogleRow.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string Entry(const std::string& title, const std::string& relation, const std::string& href) {
  return "<entry><title type='text'>" + title + "</title><link rel='self' href='http://self/'/>" +
         "<link rel='http://schemas.google.com/spreadsheets/2006#" + relation +
         "' type='application/atom+xml' href='" + href + "'/></entry>";
}
std::string Feed(const std::string& entries) {
  return "<feed>" + entries + "</feed>";
}

const std::string kSheets = Feed(Entry("other", "worksheetsfeed", "http://g/other") +
                                 Entry("wattlark", "worksheetsfeed", "http://g/sheets"));
const std::string kWorksheets = Feed(Entry("Sheet1", "listfeed", "http://g/list"));
const char* const kPosted = "<entry><updated>2026-11-16</updated></entry>";

struct GoogleDocLoggerTest : WebLoggerTest {
  GoogleDocLoggerTest() {
    settings.GoogleUsername = "me";
    settings.GooglePassword = "s3cret";
    settings.GoogleDocName = "wattlark";
    settings.GoogleWorksheetName = "Sheet1";
    settings.GoogleInterval = 60;
  }
  PublishResult Log(bool quiet = true, bool useAverage = false) {
    return logger.LogToGoogleDoc(timestamp, useAverage, quiet);
  }
  void KnowTheWorksheet() {
    settings.GoogleAuthToken = "thetoken";
    settings.GoogleWorksheetsFeed = "http://g/sheets";
    settings.GoogleListFeed = "http://g/list";
  }

  GoogleDocLogger logger{{settings, endpoints, meters, region, runner, prompts}};
};

TEST_F(GoogleDocLoggerTest, SignsInFindsTheWorksheetAndPosts) {
  AddWithReading("Living Room", 1, 450);
  Add("B", 2);
  http.answers = {{"Auth=thetoken\n"}, {kSheets}, {kWorksheets}, {kPosted}};
  std::vector<std::string> progress;
  pump.onRound = [&](int) { progress.push_back(runner.State().ProgressText); };
  const PublishResult result = Log();
  EXPECT_EQ(result.text, "Google Docs: Updated 11/16/2026 8:10:00 PM");
  EXPECT_TRUE(result.success);
  EXPECT_EQ(result.warning, "");
  EXPECT_THAT(progress, ElementsAre("Authenticating...", "Opening document...",
                                    "Opening worksheet...", "Posting data..."));
  ASSERT_EQ(http.requests.size(), 4U);
  const std::string feedHeaders =
      "Authorization: GoogleLogin auth=thetoken\r\n"
      "Content-Type:application/x-www-form-urlencoded";
  const auto cell = [](const std::string& column, const char* value) {
    return "  <gsx:" + column +
           " xmlns:gsx='http://schemas.google.com/spreadsheets/2006/extended'>" + value +
           "</gsx:" + column + ">\r\n";
  };
  using Request = ScriptedHttp::Request;
  EXPECT_EQ(http.requests[1],
            (Request{"http://spreadsheets.google.com/feeds/spreadsheets/private/full", "GET", "",
                     feedHeaders}));
  EXPECT_EQ(http.requests[2], (Request{"http://g/sheets", "GET", "", feedHeaders}));
  EXPECT_EQ(http.requests[3], (Request{"http://g/list", "POST",
                                       "<entry xmlns='http://www.w3.org/2005/Atom'>\r\n" +
                                           cell("timestamp", "11/16/2026 8:10:00 PM") +
                                           cell("livingroom", "450.0") + cell("b", "") + "</entry>",
                                       "Authorization: GoogleLogin auth=thetoken\r\n"
                                       "Content-Type: application/atom+xml"}));
  EXPECT_EQ(settings.GoogleSpreadsheetsFeed, endpoints.SpreadsheetsFeedURL);
  // What is known is not asked for again.
  http.answers = {{kPosted}};
  EXPECT_TRUE(Log().success);
  EXPECT_EQ(http.requests.size(), 5U);
  EXPECT_EQ(http.requests[4].url, "http://g/list");
}

TEST_F(GoogleDocLoggerTest, LooksAgainForWhatIsNotKnown) {
  for (std::string AppSettings::*unknown :
       {&AppSettings::GoogleListFeed, &AppSettings::GoogleWorksheetsFeed}) {
    KnowTheWorksheet();
    settings.GoogleListFeed = "http://stale/";
    (settings.*unknown).clear();
    http.answers = {{kSheets}, {kWorksheets}, {kPosted}};
    EXPECT_TRUE(Log().success);
    EXPECT_EQ(http.requests.back().url, "http://g/list");
  }
  // A row must not go to the worksheet of before when the new one is not there.
  settings.GoogleWorksheetsFeed.clear();
  http.answers = {{kSheets}, {"<feed/>"}, {kSheets}, {kWorksheets}, {kPosted}};
  EXPECT_FALSE(Log().success);
  EXPECT_TRUE(Log().success);
  EXPECT_EQ(http.requests.size(), 11U);
}

TEST_F(GoogleDocLoggerTest, ForgetsWhatARefusedRowWasSentWith) {
  KnowTheWorksheet();
  http.answers = {{"Token thetoken expired"}};
  EXPECT_EQ(Log().text, "Google: Invalid response >> Token **** expired");
  http.answers = {{"Auth=new"}, {kSheets}, {kWorksheets}, {kPosted}};
  EXPECT_TRUE(Log().success);
  EXPECT_EQ(http.requests.size(), 5U);
  EXPECT_THAT(http.requests.back().headers, HasSubstr("auth=new"));
}

TEST_F(GoogleDocLoggerTest, TellsWhatCouldNotBeFound) {
  settings.GoogleAuthToken = "thetoken";
  const std::string noDocument = "Google: The document 'wattlark' could not be found";
  const std::string noWorksheet =
      "Google: The worksheet 'Sheet1' does not exist in the document 'wattlark'.";
  http.answers = {{""}};
  EXPECT_EQ(Log().text, noDocument);
  http.answers = {{"", 4, "Timeout", HttpState::Error}};
  EXPECT_EQ(Log().text, noDocument);
  EXPECT_EQ(settings.GoogleWorksheetsFeed, "");
  http.answers = {{kSheets}, {Feed("")}};
  EXPECT_EQ(Log().text, noWorksheet);
  EXPECT_EQ(settings.GoogleListFeed, "");
  EXPECT_EQ(settings.GoogleAuthToken, "thetoken");
}

TEST_F(GoogleDocLoggerTest, PostsAveragesOverItsInterval) {
  KnowTheWorksheet();
  clsKillAWatt& meter = AddWithReading("A", 1, 5);
  meter.Statistics().SetDemandRecent(Minute, Entries(60, 12345));
  meter.Statistics().SetDemandRecent(Hour, Entries(60, 7.5));
  http.answers = {{kPosted}, {kPosted}};
  Log(true, true);
  EXPECT_THAT(http.requests.back().body, HasSubstr(">12345</gsx:a>"));
  settings.GoogleInterval = 3600;
  Log(true, true);
  EXPECT_THAT(http.requests.back().body, HasSubstr(">7.500</gsx:a>"));
}

TEST_F(GoogleDocLoggerTest, LeavesOutNamesThatMakeNoColumn) {
  KnowTheWorksheet();
  AddWithReading("1st floor", 1, 5);
  AddWithReading("Hall", 2, 5);
  AddWithReading("Bob's", 3, 5);
  http.answers = {{kPosted}, {kPosted}, {"no"}};
  const std::string warning =
      "Google: Meters whose names make no column name are left out of the row: '1st floor', "
      "'Bob's'";
  EXPECT_EQ(Log().warning, warning);
  EXPECT_EQ(http.requests.back().body.find("1st"), std::string::npos);
  EXPECT_EQ(http.requests.back().body.find("bob"), std::string::npos);
  EXPECT_THAT(http.requests.back().body, HasSubstr("<gsx:hall "));
  // Once for every change of the meters, whatever becomes of the row.
  EXPECT_EQ(Log().warning, "");
  meters[2].SetName("Bob");
  EXPECT_EQ(Log().warning,
            "Google: Meters whose names make no column name are left out of the row: '1st floor'");
  meters[2].SetName("Bob's");
  EXPECT_EQ(Log().warning, warning);
}

TEST(GoogleColumn, IsTheNameInLowerCaseWithoutBlanks) {
  using Row = std::pair<const char*, const char*>;
  for (const auto& [name, column] :
       {Row{"Living Room", "livingroom"}, Row{" A  B ", "ab"}, Row{"TV-Set_2.old", "tv-set_2.old"},
        Row{"_x", "_x"}, Row{"Küche ÄÖÜ ΦΩς", "kücheäöüφως"},
        Row{"Încălzire ȘȚ șț", "încălzireșțșț"}, Row{"Nhà BẾP ỸỲ ẞ ǍǛǜ", "nhàbếpỹỳẞǎǜǜ"},
        Row{"台所", "台所"}, Row{"𠀀", "𠀀"}, Row{"x\xCC\x88", "x\xCC\x88"}, Row{"😀", "😀"}}) {
    EXPECT_EQ(GoogleColumn(name), column) << name;
  }
  for (const char* noElement :
       {"", "   ", "1st", "-x", "\xCC\x88x", "a'b", "a<b", "a&b", "a:b", "a/b", "a\tb", "a×b",
        "a\xFF", "a\xC3", "a\xE2\x82", "a\xC0\xAF", "a\xED\xA0\x80", "a\xF4\x90\x80\x80"}) {
    EXPECT_EQ(GoogleColumn(noElement), "") << noElement;
  }
}

TEST(GoogleFeeds, FindTheLinkOfTheFirstEntryThatHoldsTheName) {
  const std::string links = "<link rel='x#worksheetsfeed' href='http://a/'/>";
  struct Case {
    std::string feed;
    const char *name, *found;
  };
  for (const Case& c :
       {Case{kSheets, "wattlark", "http://g/sheets"}, Case{kSheets, "other", "http://g/other"},
        Case{kSheets, "Wattlark", ""}, Case{kSheets, "", "http://g/other"},
        // The name inside another entry's text selects that entry.
        Case{Feed(Entry("my wattlark copy", "worksheetsfeed", "http://copy/") +
                  Entry("wattlark", "worksheetsfeed", "http://g/")),
             "wattlark", "http://copy/"},
        // The link must follow within the same entry.
        Case{"<entry>doc</entry><entry>" + links + "</entry>", "doc", ""},
        Case{"<entry>" + links + "doc</entry>", "doc", ""}, Case{"<entry>doc" + links, "doc", ""},
        Case{"<entry>doc worksheetsfeed</entry><link href='http://outside/'/></entry>", "doc", ""},
        Case{"<entry>doc worksheetsfeed href='http://cut</entry>'", "doc", ""},
        Case{"<entry>doc worksheetsfeed href=\"http://quoted/\"</entry>", "doc", ""},
        Case{"<entry>doc worksheetsfeed href=''</entry>", "doc", ""},
        Case{"<entry>doc href='http://before/' worksheetsfeed href='http://behind/'</entry>", "doc",
             "http://behind/"}}) {
    EXPECT_EQ(FindWorksheetsFeed(c.feed, c.name), c.found) << c.feed;
  }
  EXPECT_EQ(FindListFeed(kWorksheets, "Sheet1"), "http://g/list");
  EXPECT_EQ(FindListFeed(kSheets, "wattlark"), "");
}

}  // namespace
}  // namespace wattlark
