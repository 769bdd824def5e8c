#include "WebLoggerTest.h"
#include "publish/PachubeLogger.h"
#include "support/RegionalForms.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct PachubeLogger : WebLoggerTest {
  PachubeLogger() {
    settings.PachubeFeedURL = "http://api.pachube.com/api/feeds/1234.xml";
    settings.PachubeAPIKey = "thekey";
    settings.PachubeInterval = 60;
  }
  PublishResult Log(bool useAverage = false) {
    return LogToPachubeFeed(settings, meters, region, runner, timestamp, useAverage);
  }
};

const char* const kStart =
    "<?xml version='1.0' encoding='UTF-8' ?> \r\n"
    "<eeml xmlns='http://www.eeml.org/xsd/005'"
    " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"
    " xsi:schemaLocation='http://www.eeml.org/xsd/005 http://www.eeml.org/xsd/005/005.xsd'>\r\n"
    "<environment>\r\n";
const char* const kEnd = "</environment>\r\n</eeml>\r\n";

std::string Data(const char* id, const char* value) {
  return std::string("<data id='") + id +
         "'>\r\n<tag>demand</tag>\r\n<value minValue='0' maxValue='1500'>" + value +
         "</value>\r\n<unit symbol='W' type='derivedSI'>Watts</unit>\r\n</data>\r\n";
}

TEST_F(PachubeLogger, PutsOneStreamForEveryMeter) {
  AddWithReading("A", 1, 100);
  AddWithReading("B", 2, 250.5);
  http.answers = {{" "}};
  const PublishResult result = Log();
  EXPECT_TRUE(result.success);
  EXPECT_EQ(result.text, "Pachube: Updated 11/16/2026 8:10:00 PM");
  EXPECT_THAT(http.requests, ElementsAre(ScriptedHttp::Request{
                                 "http://api.pachube.com/api/feeds/1234.xml?key=thekey", "PUT",
                                 kStart + Data("1", "100") + Data("2", "250.5") + kEnd,
                                 "Content-Type: application/atom+xml"}));
  EXPECT_EQ(runner.State().ProgressText, "Posting data...");
}

TEST_F(PachubeLogger, SendsAveragesOverItsInterval) {
  clsKillAWatt& meter = AddWithReading("A", 7, 1);
  meter.Statistics().SetDemandRecent(Minute, Entries(60, 10));
  meter.Statistics().SetDemandRecent(Hour, Entries(60, 200.25));
  EXPECT_EQ(PachubeDocument(settings, meters, region, true), kStart + Data("7", "10") + kEnd);
  settings.PachubeInterval = 300;
  EXPECT_EQ(PachubeDocument(settings, meters, region, true), kStart + Data("7", "200.25") + kEnd);
}

TEST_F(PachubeLogger, LeavesOutMetersWithoutAValue) {
  EXPECT_EQ(PachubeDocument(settings, meters, region, false), std::string(kStart) + kEnd);
  Add("silent", 3);
  AddWithReading("B", 2, 0);
  EXPECT_EQ(PachubeDocument(settings, meters, region, false), kStart + Data("2", "0") + kEnd);
  AddWithReading("A", 4, 1250.5);
  EXPECT_EQ(PachubeDocument(settings, meters, Germany(), false),
            kStart + Data("2", "0") + Data("4", "1250,5") + kEnd);
}

TEST_F(PachubeLogger, NamesTheFirstInvalidSetting) {
  settings.PachubeAPIKey = "  ";
  EXPECT_EQ(Log().text, "Wattlark: Invalid Pachube API Key");
  settings.PachubeFeedURL = "   ";
  EXPECT_EQ(Log().text, "Wattlark: Invalid Pachube feed");
  EXPECT_THAT(http.requests, IsEmpty());
}

TEST_F(PachubeLogger, TakesOneBlankForSuccessAndNothingElse) {
  using Row = std::pair<ScriptedAnswer, const char*>;
  for (const auto& [answer, quote] :
       {Row{{""}, ""}, Row{{"  "}, "  "}, Row{{"<error>401\tno</error>"}, "<error>401 no</error>"},
        Row{{"", 6, "Connection refused", HttpState::Error}, ""},
        Row{{" ", 2, "", HttpState::Error}, " "}, Row{{"\xEF\xBB\xBF "}, "\xEF\xBB\xBF "},
        Row{{"no feed for 1234.xml?key=thekey"}, "no feed for 1234.xml?key=****"}}) {
    http.answers = {answer};
    const PublishResult result = Log();
    EXPECT_FALSE(result.success);
    EXPECT_EQ(result.text, std::string("Pachube: Error Returned >> ") + quote);
  }
  EXPECT_THAT(shown, ElementsAre("Connection refused"));
}

}  // namespace
}  // namespace wattlark
