#include "WebLoggerTest.h"
#include "platform/TemporaryFolder.h"
#include "publish/CSVLogger.h"
#include "publish/PachubeLogger.h"
#include "publish/PowerMeterLogger.h"
#include "support/RegionalForms.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CSVLogger : WebLoggerTest {
  CSVLogger() {
    settings.CSVFilename = folder.File("wattlark.csv");
    settings.CSVInterval = 60;
  }

  PublishResult Log(const char* time = "2026-11-16T20:10:00", bool useAverage = false) {
    return LogToCSVFile(settings, meters, region, At(time), useAverage);
  }
  std::string File() const { return FileBytes(settings.CSVFilename); }

  TemporaryFolder folder;
};

TEST_F(CSVLogger, WritesAHeaderAndOneLineARun) {
  EXPECT_TRUE(Log().success) << "without meters";
  EXPECT_EQ(File(), "Timestamp\r\n11/16/2026 8:10:00 PM\r\n");
  WriteFile(settings.CSVFilename, "");  // emptied, it gets a header again
  AddWithReading("A", 5, 123.456);
  AddWithReading("B", 6, 12345);
  Add("silent", 7);
  const PublishResult result = Log();
  EXPECT_TRUE(result.success);
  EXPECT_EQ(result.text, "CSV file: Updated 11/16/2026 8:10:00 PM");
  EXPECT_EQ(File(), "Timestamp, A, B, silent\r\n11/16/2026 8:10:00 PM, 123.46, 12345, \r\n");
  Log("2026-11-17T00:05:00");
  EXPECT_EQ(File(),
            "Timestamp, A, B, silent\r\n11/16/2026 8:10:00 PM, 123.46, 12345, \r\n"
            "11/17/2026 12:05:00 AM, 123.46, 12345, \r\n");
}

TEST_F(CSVLogger, WritesAveragesOverItsIntervalInTheFormsOfTheRegion) {
  region = Germany();
  Add("Küche", 5).Statistics().SetDemandRecent(Hour, Entries(60, 1234.5));
  Add("no history", 6);
  settings.CSVInterval = 300;
  EXPECT_EQ(Log("2026-11-16T20:15:00", true).text, "CSV file: Updated 16.11.2026 20:15:00");
  EXPECT_EQ(File(), "Timestamp, Küche, no history\r\n16.11.2026 20:15:00, 1234,5, \r\n");
}

TEST_F(CSVLogger, WritesANewHeaderWhenTheMetersChanged) {
  WriteFile(settings.CSVFilename, "earlier\r\n");
  AddWithReading("A, \"x\"", 5, 100);
  Log();
  EXPECT_EQ(File(), "earlier\r\n11/16/2026 8:10:00 PM, 100.00\r\n") << "a restart goes on";
  settings.CSVFileChanged = true;
  Log();
  EXPECT_FALSE(settings.CSVFileChanged);
  Log();
  EXPECT_EQ(File(),
            "earlier\r\n11/16/2026 8:10:00 PM, 100.00\r\n"
            "Timestamp, A, \"x\"\r\n11/16/2026 8:10:00 PM, 100.00\r\n"
            "11/16/2026 8:10:00 PM, 100.00\r\n");
}

TEST_F(CSVLogger, TellsWhyItCannotOpenTheFile) {
  for (const std::string& file : {folder.File("none/x.csv"), folder.Path(), std::string()}) {
    settings.CSVFilename = file;
    settings.CSVFileChanged = true;
    const PublishResult result = Log();
    EXPECT_FALSE(result.success) << file;
    EXPECT_THAT(result.text, testing::StartsWith("Error Writing Log File - "));
    EXPECT_GT(result.text.size(), 30U) << "and the reason: " << result.text;
    EXPECT_TRUE(settings.CSVFileChanged) << "the header is still to be written";
  }
}

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

TEST_F(PachubeLogger, LeavesOutMetersWithoutAValueOrAnAverageOverItsInterval) {
  EXPECT_EQ(PachubeDocument(settings, meters, region, false), std::string(kStart) + kEnd);
  Add("silent", 3);
  AddWithReading("B", 2, 0);
  EXPECT_EQ(PachubeDocument(settings, meters, region, false), kStart + Data("2", "0") + kEnd);
  AddWithReading("A", 4, 1250.5).Statistics().SetDemandRecent(Hour, Entries(60, 200.25));
  EXPECT_EQ(PachubeDocument(settings, meters, Germany(), false),
            kStart + Data("2", "0") + Data("4", "1250,5") + kEnd);
  settings.PachubeInterval = 300;
  EXPECT_EQ(PachubeDocument(settings, meters, region, true), kStart + Data("4", "200.25") + kEnd);
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

const char* const kInfo = "https://host/?mac=1&token=TOKENVALUE&path=/user/123/456/device.serial";

struct PowerMeterLogger : WebLoggerTest {
  PowerMeterLogger() {
    settings.PowerMeterAuthInfo = kInfo;
    settings.PowerMeterInterval = 600;
  }
  PublishResult Log() {
    return LogToGooglePowerMeter(
        settings, endpoints, total, region, [](DateTime local) { return local.PlusHours(5); },
        runner, timestamp);
  }
  void UseWatts(double watts) { total.Statistics().SetDemandRecent(Hour, Entries(60, watts)); }

  clsKillAWatt total;
};

TEST_F(PowerMeterLogger, PostsTheEnergyOfTheInterval) {
  UseWatts(1200);
  http.answers = {{"<entry><updated>2026</updated></entry>"}};
  const PublishResult result = Log();
  EXPECT_TRUE(result.success);
  EXPECT_EQ(result.text, "Google PowerMeter: Updated 11/16/2026 8:10:00 PM");
  EXPECT_THAT(
      http.requests,
      ElementsAre(ScriptedHttp::Request{
          "https://www.google.com/powermeter/feeds/user/123/456/device.serial.d1/durMeasurement",
          "POST",
          "<?xml version='1.0' encoding='UTF-8'?>\r\n"
          "<entry xmlns='http://www.w3.org/2005/Atom'"
          " xmlns:meter='http://schemas.google.com/meter/2008'>\r\n"
          "  <meter:startTime meter:uncertainty='1.0'>2026-11-17T01:00:00.000Z"
          "</meter:startTime>\r\n"
          "  <meter:endTime meter:uncertainty='1.0'>2026-11-17T01:10:00.000Z</meter:endTime>\r\n"
          "  <meter:quantity meter:uncertainty='0.001' meter:unit='kW h'>0.2</meter:quantity>\r\n"
          "</entry>\r\n",
          "Authorization: AuthSub token=\"TOKENVALUE\"\r\nContent-Type: application/atom+xml"}));
  EXPECT_EQ(runner.State().ProgressText, "Posting data...");
}

TEST_F(PowerMeterLogger, ReadsTheAuthenticationInfo) {
  const std::pair<const char*, const char*> cases[] = {{"path=/p&token=a&", "/p&token=a&.d1"},
                                                       {"token=a&token=b&path= /p \r\n", "/p.d1"},
                                                       {"\r\ntoken=a&b\r\npath=/p\r\n", "/p.d1"}};
  for (const auto& [info, path] : cases) {
    const auto authorization = ParsePowerMeterAuthInfo(info);
    ASSERT_TRUE(authorization) << info;
    EXPECT_EQ(authorization->token, "a") << info;
    EXPECT_EQ(authorization->variablePath, path) << info;
  }
  for (const char* info : {"", "token=a&", "token=a&path=", "token=a&path= \r\n ", "token=&path=/p",
                           "path=/p&token=a", "Token=a&Path=/p", "token=a\r\nHost: b&path=/p",
                           "token=a\"b&path=/p", "token=a&path=/p\r\nq"}) {
    EXPECT_FALSE(ParsePowerMeterAuthInfo(info)) << info;
  }
}

TEST_F(PowerMeterLogger, SendsNothingWithoutAuthorizationOrUsage) {
  EXPECT_EQ(Log().text, "Wattlark: No usage data for the interval");
  settings.PowerMeterAuthInfo = "token=a";
  EXPECT_EQ(Log().text, "Wattlark: Invalid Google PowerMeter authentication info");
  EXPECT_THAT(http.requests, IsEmpty());
}

TEST_F(PowerMeterLogger, TellsWhatWasReturned) {
  UseWatts(1);
  settings.GoogleAuthToken = "other";
  http.answers = {{"Token TOKENVALUE is invalid\r\n"}, {"", 5, "Cut", HttpState::Error}};
  EXPECT_EQ(Log().text, "Google: Error Returned - Token **** is invalid\r\n");
  EXPECT_EQ(Log().text, "Google: Error Returned - ");
  EXPECT_EQ(settings.GoogleAuthToken, "other") << "the one of the spreadsheets";
}

}  // namespace
}  // namespace wattlark
