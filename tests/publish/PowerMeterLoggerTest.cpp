#include "WebLoggerTest.h"
#include "publish/PowerMeterLogger.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
