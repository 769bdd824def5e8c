#include "WebLoggerTest.h"
#include "publish/PowerMeterLogger.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

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

TEST_F(PowerMeterLogger, WritesQuantitiesWithFifteenDigits) {
  const auto quantity = [this](double wattHours, const RegionalSettings& regional) {
    const std::string entry = PowerMeterEntry(timestamp, 600, wattHours, regional);
    const std::size_t start = entry.find("'kW h'>") + 7;
    return entry.substr(start, entry.find("</meter:quantity>") - start);
  };
  EXPECT_EQ(quantity(0, region), "0");
  EXPECT_EQ(quantity(1, region), "0.001");
  EXPECT_EQ(quantity(200.0 / 3, region), "0.0666666666666667");
  EXPECT_EQ(quantity(1234567, region), "1234.567");
  EXPECT_EQ(quantity(-250, region), "-0.25");
  RegionalSettings german = region;
  german.decimalSeparator = ",";
  EXPECT_EQ(quantity(200, german), "0,2");
}

TEST_F(PowerMeterLogger, ReadsTheAuthenticationInfo) {
  struct Case {
    const char* info;
    const char* token;  ///< null when the info is invalid
    const char* path;
  };
  const Case cases[] = {
      {kInfo, "TOKENVALUE", "/user/123/456/device.serial.d1"},
      {"token=a&path=/p", "a", "/p.d1"},
      {"path=/p&token=a&", "a", "/p&token=a&.d1"},
      {"token=a&token=b&path= /p \r\n", "a", "/p.d1"},
      {"\r\ntoken=a&b\r\npath=/p\r\n", "a", "/p.d1"},
      {"", nullptr, nullptr},
      {"token=a&", nullptr, nullptr},
      {"token=a&path=", nullptr, nullptr},
      {"token=a&path= \r\n ", nullptr, nullptr},
      {"token=&path=/p", nullptr, nullptr},
      {"path=/p&token=a", nullptr, nullptr},
      {"Token=a&Path=/p", nullptr, nullptr},
      {"token=a\r\nHost: b&path=/p", nullptr, nullptr},
      {"token=a\"b&path=/p", nullptr, nullptr},
      {"token=a&path=/p\r\nq", nullptr, nullptr},
      {"Your complete Google PowerMeter Authentication Info should be pasted here...", nullptr,
       nullptr},
  };
  for (const Case& c : cases) {
    const auto authorization = ParsePowerMeterAuthInfo(c.info);
    ASSERT_EQ(authorization.has_value(), c.token != nullptr) << c.info;
    if (!authorization) continue;
    EXPECT_EQ(authorization->token, c.token) << c.info;
    EXPECT_EQ(authorization->variablePath, c.path) << c.info;
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
  http.answers = {{"Token TOKENVALUE is invalid\r\n"}, {"", 5, "Cut", HttpState::Error}};
  EXPECT_EQ(Log().text, "Google: Error Returned - Token **** is invalid\r\n");
  EXPECT_EQ(Log().text, "Google: Error Returned - ");
  http.Execute("http://host/", "GET", "", "");
  EXPECT_EQ(Log().text, "Google: Still executing the last request");
}

TEST_F(PowerMeterLogger, LeavesTheSpreadsheetsTokenAlone) {
  UseWatts(1);
  settings.GoogleAuthToken = "other";
  http.answers = {{"no"}};
  Log();
  EXPECT_EQ(settings.GoogleAuthToken, "other");
}

}  // namespace
}  // namespace wattlark
