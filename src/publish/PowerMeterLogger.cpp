#include "publish/PowerMeterLogger.h"

#include "config/modRegistry.h"
#include "publish/WebText.h"
#include "support/NoValue.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr const char* kTimePattern = "yyyy-MM-dd'T'HH:mm:ss.'000Z'";
constexpr std::string_view kPathMarker = "path=";

PublishError Failure(const std::string& description) {
  return PublishError(std::string(ApplicationTitle) + ": " + description);
}

}  // namespace

std::optional<PowerMeterAuthorization> ParsePowerMeterAuthInfo(std::string_view info) {
  const std::string token = GetTextBetween(info, "token=", "&");
  const std::size_t marker = info.find(kPathMarker);
  if (token.empty() || marker == std::string_view::npos) return std::nullopt;
  const std::string path(Trim(info.substr(marker + kPathMarker.size())));
  const bool isUsable = !path.empty() && !HasControlCharacters(path) &&
                        !HasControlCharacters(token) && token.find('"') == std::string::npos;
  if (!isUsable) return std::nullopt;
  return PowerMeterAuthorization{token, path + ".d1"};
}

std::string PowerMeterEntry(DateTime endUTC, std::int32_t seconds, double wattHours,
                            const RegionalSettings& regional) {
  const auto time = [&](DateTime moment) { return FormatDateTime(regional, moment, kTimePattern); };
  return "<?xml version='1.0' encoding='UTF-8'?>\r\n"
         "<entry xmlns='http://www.w3.org/2005/Atom'"
         " xmlns:meter='http://schemas.google.com/meter/2008'>\r\n"
         "  <meter:startTime meter:uncertainty='1.0'>" +
         time(endUTC.PlusSeconds(-seconds)) +
         "</meter:startTime>\r\n"
         "  <meter:endTime meter:uncertainty='1.0'>" +
         time(endUTC) +
         "</meter:endTime>\r\n"
         "  <meter:quantity meter:uncertainty='0.001' meter:unit='kW h'>" +
         EscapeXml(PlainNumberText(regional, RoundTo15Digits(wattHours) / 1000)) +
         "</meter:quantity>\r\n"
         "</entry>\r\n";
}

PublishResult LogToGooglePowerMeter(const AppSettings& settings, const ServiceEndpoints& endpoints,
                                    const clsKillAWatt& total, const RegionalSettings& regional,
                                    const std::function<DateTime(DateTime)>& localToUTC,
                                    WebRequestRunner& runner, DateTime timestamp) {
  return RunPublisher("Google", [&] {
    const auto authorization = ParsePowerMeterAuthInfo(settings.PowerMeterAuthInfo);
    if (!authorization) throw Failure("Invalid Google PowerMeter authentication info");
    const std::int32_t seconds = settings.PowerMeterInterval;
    const double watts = total.AverageDemand(seconds);
    if (!HasValue(watts)) throw Failure("No usage data for the interval");
    const WebRequestState state = runner.ExecuteAndWait(
        {endpoints.PowerMeterFeedsURL + authorization->variablePath + "/durMeasurement", "POST",
         PowerMeterEntry(localToUTC(timestamp), seconds, watts * seconds / 3600, regional),
         "Authorization: AuthSub token=\"" + authorization->token +
             "\"\r\nContent-Type: application/atom+xml",
         "Posting data..."});
    if (state.Response.find("<updated>") == std::string::npos) {
      throw PublishError("Google: Error Returned - " +
                         QuoteResponse(state.Response, {authorization->token}));
    }
    return "Google PowerMeter: Updated " + FormatDateAndTime(regional, timestamp);
  });
}

}  // namespace wattlark
