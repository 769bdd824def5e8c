#include "WebLoggerTest.h"
#include "publish/GoogleDocLogger.h"
#include "publish/GoogleFeeds.h"
#include "publish/GoogleLogin.h"
#include "publish/GoogleRow.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

struct GoogleLogin : WebLoggerTest {
  GoogleLogin() {
    settings.GoogleUsername = "me@example.org";
    settings.GooglePassword = "s3cret";
  }
  /// The error text; empty when the sign-in succeeded.
  std::string SignIn(bool quiet = false) {
    try {
      GoogleClientLogin(settings, endpoints, runner, prompts, quiet);
    } catch (const PublishError& error) {
      return error.what();
    }
    return {};
  }
};

TEST_F(GoogleLogin, PostsTheCredentialsAndKeepsTheLastToken) {
  http.answers = {{"SID=abc\nLSID=def\nAuth=thetoken\n"}};
  EXPECT_EQ(SignIn(), "");
  EXPECT_EQ(settings.GoogleAuthToken, "thetoken");
  EXPECT_THAT(http.requests,
              ElementsAre(ScriptedHttp::Request{
                  "https://www.google.com/accounts/ClientLogin", "POST",
                  "Email=me@example.org&Passwd=s3cret&source=FennickLabs-Wattlark-v2.0"
                  "&service=wise",
                  "Content-Type:application/x-www-form-urlencoded"}));
  EXPECT_EQ(runner.State().ProgressText, "Authenticating...");
  EXPECT_EQ(ParseAuthToken("Auth=one\nAuth= blanks around \r\n\r\n"), "blanks around");
  for (const char* response : {"Auth=one\nAuth=\n", "Auth=one\r\nSet-Cookie: two", "auth=small"}) {
    EXPECT_EQ(ParseAuthToken(response), std::nullopt) << response;
  }
}

TEST_F(GoogleLogin, TellsAnInvalidResponse) {
  http.answers = {{"<html>\t500</html>"}};
  EXPECT_EQ(SignIn(), "Google: Invalid response >> <html> 500</html>");
  EXPECT_EQ(settings.GoogleAuthToken, "");
  EXPECT_THAT(prompts.signIns, IsEmpty());
  // Nothing is quoted that signs in.
  EXPECT_EQ(QuoteSignInResponse("SID=one\nLSID=two\r\nAuth=\n", "s3cret"),
            "SID=****\nLSID=****\r\nAuth=****\n");
  EXPECT_EQ(QuoteSignInResponse("Passwd=s3cret&SID=last", "s3cret"), "Passwd=****&SID=****");
}

TEST_F(GoogleLogin, AsksForMissingOrRefusedCredentialsUnlessItMustBeQuiet) {
  settings.GooglePassword.clear();
  EXPECT_EQ(SignIn(true), "Google: Bad username or password");
  EXPECT_THAT(prompts.signIns, IsEmpty());
  EXPECT_EQ(SignIn(false), "Google: Bad username or password");
  EXPECT_THAT(prompts.signIns,
              ElementsAre(ScriptedPrompts::SignInAsked{"Google Login", "me@example.org", ""}));
  EXPECT_THAT(http.requests, IsEmpty());
  // A refused password ends it as well.
  settings.GooglePassword = "s3cret";
  http.answers = {{"Error=BadAuthentication\n"}};
  EXPECT_EQ(SignIn(true), "Google: Bad username or password");
  EXPECT_EQ(prompts.signIns.size(), 1U);
  // Else it asks until the credentials are taken.
  settings.GoogleUsername.clear();
  endpoints.ClientLoginURL = "http://127.0.0.1:8080/login";
  http.requests.clear();
  prompts.credentials = {{{"a", "1"}}, {{"b", "2"}}};
  http.answers = {{"Error=BadAuthentication\nAuth=not this\n"}, {"Auth=t"}};
  EXPECT_EQ(SignIn(), "");
  ASSERT_EQ(http.requests.size(), 2U);
  EXPECT_EQ(http.requests[0].url, endpoints.ClientLoginURL);
  EXPECT_THAT(http.requests[0].body, StartsWith("Email=a&Passwd=1&"));
  EXPECT_THAT(http.requests[1].body, StartsWith("Email=b&Passwd=2&"));
  EXPECT_EQ(settings.GoogleUsername, "b");
  EXPECT_EQ(settings.GooglePassword, "2");
  EXPECT_EQ(settings.GoogleAuthToken, "t");
}

std::string Entry(const std::string& title, const std::string& relation, const std::string& href) {
  return "<entry><title type='text'>" + title + "</title><link rel='self' href='http://self/'/>" +
         "<link rel='http://schemas.google.com/spreadsheets/2006#" + relation +
         "' type='application/atom+xml' href='" + href + "'/></entry>";
}

const std::string kSheets = Entry("other", "worksheetsfeed", "http://g/other") +
                            Entry("wattlark", "worksheetsfeed", "http://g/sheets");
const std::string kWorksheets = Entry("Sheet1", "listfeed", "http://g/list");
const char* const kPosted = "<entry><updated>2026-11-16</updated></entry>";

struct GoogleDocLoggerTest : WebLoggerTest {
  GoogleDocLoggerTest() {
    settings.GoogleUsername = "me";
    settings.GooglePassword = "s3cret";
    settings.GoogleDocName = "wattlark";
    settings.GoogleWorksheetName = "Sheet1";
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
  const PublishResult result = Log();
  EXPECT_EQ(result.text, "Google Docs: Updated 11/16/2026 8:10:00 PM");
  EXPECT_TRUE(result.success);
  EXPECT_EQ(result.warning, "");
  EXPECT_EQ(runner.State().ProgressText, "Posting data...");
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
  // What is known is not asked for again; the averages are those over its interval.
  meters[0].Statistics().SetDemandRecent(Hour, std::vector<double>(60, 7.5));
  settings.GoogleInterval = 3600;
  http.answers = {{kPosted}};
  EXPECT_TRUE(Log(true, true).success);
  EXPECT_EQ(http.requests.size(), 5U);
  EXPECT_EQ(http.requests[4].url, "http://g/list");
  EXPECT_THAT(http.requests[4].body, HasSubstr(">7.500</gsx:livingroom>"));
}

TEST_F(GoogleDocLoggerTest, LooksAgainForWhatIsNotKnownOrWasRefused) {
  KnowTheWorksheet();
  settings.GoogleListFeed.clear();
  http.answers = {{kSheets}, {kWorksheets}, {kPosted}};
  EXPECT_TRUE(Log().success);
  EXPECT_EQ(http.requests.back().url, "http://g/list");
  // A row must not go to the worksheet of before when the new one is not there.
  settings.GoogleWorksheetsFeed.clear();
  http.answers = {{kSheets}, {""}, {""}, {kSheets}, {kWorksheets}, {kPosted}};
  EXPECT_EQ(Log().text,
            "Google: The worksheet 'Sheet1' does not exist in the document 'wattlark'.");
  EXPECT_EQ(Log().text, "Google: The document 'wattlark' could not be found");
  EXPECT_TRUE(Log().success);
  EXPECT_EQ(http.requests.size(), 9U);
  KnowTheWorksheet();
  http.answers = {{"Token thetoken expired"}};
  EXPECT_EQ(Log().text, "Google: Invalid response >> Token **** expired");
  http.answers = {{"Auth=new"}, {kSheets}, {kWorksheets}, {kPosted}};
  EXPECT_TRUE(Log().success);
  EXPECT_EQ(http.requests.size(), 14U);
  EXPECT_THAT(http.requests.back().headers, HasSubstr("auth=new"));
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
  EXPECT_THAT(http.requests.back().body, testing::Not(HasSubstr("bob")));
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
       {Row{" TV-Set_2.old ", "tv-set_2.old"}, Row{"_x", "_x"}, Row{"Küche ÄÖÜ ΦΩς", "kücheäöüφως"},
        Row{"Nhà BẾP ỸỲ ẞ ǍǛǜ", "nhàbếpỹỳẞǎǜǜ"}, Row{"台所", "台所"}, Row{"x\xCC\x88", "x\xCC\x88"},
        Row{"😀", "😀"}}) {
    EXPECT_EQ(GoogleColumn(name), column) << name;
  }
  for (const char* noElement :
       {"   ", "1st", "-x", "\xCC\x88x", "a'b", "a<b", "a&b", "a:b", "a×b", "a\xFF"}) {
    EXPECT_EQ(GoogleColumn(noElement), "") << noElement;
  }
}

TEST(GoogleFeeds, FindTheLinkOfTheFirstEntryThatHoldsTheName) {
  const std::string links = "<link rel='x#worksheetsfeed' href='http://a/'/>";
  using Case = std::tuple<std::string, const char*, const char*>;
  for (const auto& [feed, name, found] :
       {Case{kSheets, "wattlark", "http://g/sheets"}, Case{kSheets, "other", "http://g/other"},
        Case{kSheets, "Wattlark", ""},
        // The name inside another entry's text selects that entry.
        Case{Entry("my wattlark copy", "worksheetsfeed", "http://copy/") + kSheets, "wattlark",
             "http://copy/"},
        // The link must follow within the same entry.
        Case{"<entry>doc</entry><entry>" + links + "</entry>", "doc", ""},
        Case{"<entry>" + links + "doc</entry>", "doc", ""},
        Case{"<entry>doc href='http://before/' worksheetsfeed href='http://behind/'</entry>", "doc",
             "http://behind/"}}) {
    EXPECT_EQ(FindWorksheetsFeed(feed, name), found) << feed;
  }
  EXPECT_EQ(FindListFeed(kWorksheets, "Sheet1"), "http://g/list");
  EXPECT_EQ(FindListFeed(kSheets, "wattlark"), "");
}

}  // namespace
}  // namespace wattlark
