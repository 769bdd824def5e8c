#include "WebLoggerTest.h"
#include "platform/TemporaryFolder.h"
#include "publish/CSVLogger.h"
#include "publish/PachubeLogger.h"
#include "publish/PowerMeterLogger.h"
#include "support/RegionalForms.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

struct CSVLogger : WebLoggerTest {
  CSVLogger() { settings.CSVFilename = folder.File("wattlark.csv"); }

  PublishResult Log(const char* time = "2026-11-16T20:10:00", bool useAverage = false) {
    return LogToCSVFile(settings, meters, region, At(time), useAverage);
  }
  std::string File() const { return FileBytes(settings.CSVFilename); }

  TemporaryFolder folder;
};

TEST_F(CSVLogger, WritesAHeaderToAnEmptyFileAndWhenTheMetersChanged) {
  EXPECT_TRUE(Log().success) << "without meters";
  EXPECT_EQ(File(), "Timestamp\r\n11/16/2026 8:10:00 PM\r\n");
  WriteFile(settings.CSVFilename, "");
  AddWithReading("A, \"x\"", 5, 123.456);
  AddWithReading("B", 6, 12345);
  Add("silent", 7);
  EXPECT_EQ(Log().text, "CSV file: Updated 11/16/2026 8:10:00 PM");
  Log("2026-11-17T00:05:00");
  const std::string header = "Timestamp, A, \"x\", B, silent\r\n";
  const std::string rows =
      "11/16/2026 8:10:00 PM, 123.46, 12345, \r\n11/17/2026 12:05:00 AM, 123.46, 12345, \r\n";
  EXPECT_EQ(File(), header + rows);
  settings.CSVFileChanged = true;
  Log();
  EXPECT_FALSE(settings.CSVFileChanged);
  Log("2026-11-17T00:05:00");
  EXPECT_EQ(File(), header + rows + header + rows);
  settings.CSVFilename = folder.File("none/x.csv");
  settings.CSVFileChanged = true;
  EXPECT_EQ(Log().text, "Error Writing Log File - No such file or directory");
  EXPECT_TRUE(settings.CSVFileChanged) << "the header is still to be written";
}

TEST_F(CSVLogger, WritesAveragesOverItsIntervalInTheFormsOfTheRegion) {
  region = Germany();
  Add("Küche", 5).Statistics().SetDemandRecent(Hour, std::vector<double>(60, 1234.5));
  Add("no history", 6);
  settings.CSVInterval = 300;
  EXPECT_EQ(Log("2026-11-16T20:15:00", true).text, "CSV file: Updated 16.11.2026 20:15:00");
  EXPECT_EQ(File(), "Timestamp, Küche, no history\r\n16.11.2026 20:15:00, 1234,5, \r\n");
}

struct PachubeLogger : WebLoggerTest {
  PachubeLogger() {
    settings.PachubeFeedURL = "http://api.pachube.com/api/feeds/1234.xml";
    settings.PachubeAPIKey = "thekey";
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
  AddWithReading("B", 2, 200.0 / 3);
  http.answers = {{" "}};
  const PublishResult result = Log();
  EXPECT_TRUE(result.success);
  EXPECT_EQ(result.text, "Pachube: Updated 11/16/2026 8:10:00 PM");
  EXPECT_THAT(http.requests, ElementsAre(ScriptedHttp::Request{
                                 "http://api.pachube.com/api/feeds/1234.xml?key=thekey", "PUT",
                                 kStart + Data("1", "100") + Data("2", "66.6666666666667") + kEnd,
                                 "Content-Type: application/atom+xml"}));
  EXPECT_EQ(runner.State().ProgressText, "Posting data...");
}

TEST_F(PachubeLogger, LeavesOutMetersWithoutAValueOrAnAverageOverItsInterval) {
  Add("silent", 3);
  AddWithReading("B", 2, 0);
  AddWithReading("A", 4, 1250.5)
      .Statistics()
      .SetDemandRecent(Hour, std::vector<double>(60, 200.25));
  EXPECT_EQ(PachubeDocument(settings, meters, Germany(), false),
            kStart + Data("2", "0") + Data("4", "1250,5") + kEnd);
  settings.PachubeInterval = 300;
  EXPECT_EQ(PachubeDocument(settings, meters, region, true), kStart + Data("4", "200.25") + kEnd);
}

TEST_F(PachubeLogger, TakesOneBlankForSuccessAndSendsNothingWithoutItsSettings) {
  http.answers = {{"  "},
                  {" ", 6, "Connection refused", HttpState::Error},
                  {"no feed for 1234.xml?key=thekey"}};
  for (const std::string quote : {"  ", " ", "no feed for 1234.xml?key=****"}) {
    EXPECT_EQ(Log().text, "Pachube: Error Returned >> " + quote);
  }
  EXPECT_THAT(shown, ElementsAre("Connection refused"));
  settings.PachubeAPIKey = "  ";
  EXPECT_EQ(Log().text, "Wattlark: Invalid Pachube API Key");
  settings.PachubeFeedURL = "   ";
  EXPECT_EQ(Log().text, "Wattlark: Invalid Pachube feed");
  EXPECT_EQ(http.requests.size(), 3U);
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
  void UseWatts(double watts) {
    total.Statistics().SetDemandRecent(Hour, std::vector<double>(60, watts));
  }

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
}

TEST_F(PowerMeterLogger, ReadsTheAuthenticationInfo) {
  const auto authorization = ParsePowerMeterAuthInfo("\r\ntoken=a&token=b\r\n&path= /p \r\n");
  ASSERT_TRUE(authorization);
  EXPECT_EQ(authorization->token, "a");
  EXPECT_EQ(authorization->variablePath, "/p.d1");
  for (const char* info :
       {"token=a&", "token=a&path= \r\n ", "token=&path=/p", "path=/p&token=a",
        "token=a\r\nHost: b&path=/p", "token=a\"b&path=/p", "token=a&path=/p\r\nq"}) {
    EXPECT_FALSE(ParsePowerMeterAuthInfo(info)) << info;
  }
}

TEST_F(PowerMeterLogger, TellsWhatIsMissingOrWasReturned) {
  EXPECT_EQ(Log().text, "Wattlark: No usage data for the interval");
  settings.PowerMeterAuthInfo = "token=a";
  EXPECT_EQ(Log().text, "Wattlark: Invalid Google PowerMeter authentication info");
  EXPECT_THAT(http.requests, IsEmpty());
  settings.PowerMeterAuthInfo = kInfo;
  UseWatts(1);
  settings.GoogleAuthToken = "other";
  http.answers = {{"Token TOKENVALUE is invalid\r\n"}, {"", 5, "Cut", HttpState::Error}};
  EXPECT_EQ(Log().text, "Google: Error Returned - Token **** is invalid\r\n");
  EXPECT_EQ(Log().text, "Google: Error Returned - ");
  EXPECT_EQ(settings.GoogleAuthToken, "other") << "the one of the spreadsheets";
}

}  // namespace
}  // namespace wattlark
