#include "publish/PachubeLogger.h"

#include "config/modRegistry.h"
#include "publish/WebText.h"
#include "support/NoValue.h"

namespace wattlark {

namespace {

constexpr const char* kDocumentStart =
    "<?xml version='1.0' encoding='UTF-8' ?> \r\n"
    "<eeml xmlns='http://www.eeml.org/xsd/005'"
    " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"
    " xsi:schemaLocation='http://www.eeml.org/xsd/005 http://www.eeml.org/xsd/005/005.xsd'>\r\n"
    "<environment>\r\n";

bool IsBlank(const std::string& text) {
  return text.find_first_not_of(' ') == std::string::npos;
}

PublishError Invalid(const std::string& description) {
  return PublishError(std::string(ApplicationTitle) + ": " + description);
}

}  // namespace

std::string PachubeDocument(const AppSettings& settings, const MeterCollection& meters,
                            const RegionalSettings& regional, bool useAverage) {
  std::string document = kDocumentStart;
  for (const auto& meter : meters) {
    const double watts =
        useAverage ? meter->AverageDemand(settings.PachubeInterval) : meter->ShownWatts();
    if (!HasValue(watts)) continue;
    document += "<data id='" + std::to_string(meter->XBeeAddress()) +
                "'>\r\n"
                "<tag>demand</tag>\r\n"
                "<value minValue='0' maxValue='1500'>" +
                EscapeXml(PlainNumberText(regional, watts)) +
                "</value>\r\n"
                "<unit symbol='W' type='derivedSI'>Watts</unit>\r\n"
                "</data>\r\n";
  }
  return document + "</environment>\r\n</eeml>\r\n";
}

PublishResult LogToPachubeFeed(const AppSettings& settings, const MeterCollection& meters,
                               const RegionalSettings& regional, WebRequestRunner& runner,
                               DateTime timestamp, bool useAverage) {
  return RunPublisher("Pachube", [&] {
    if (IsBlank(settings.PachubeFeedURL)) throw Invalid("Invalid Pachube feed");
    if (IsBlank(settings.PachubeAPIKey)) throw Invalid("Invalid Pachube API Key");
    const std::string key = settings.PachubeAPIKey;
    const WebRequestState state =
        runner.ExecuteAndWait({settings.PachubeFeedURL + "?key=" + key, "PUT",
                               PachubeDocument(settings, meters, regional, useAverage),
                               "Content-Type: application/atom+xml", "Posting data..."});
    if (state.Response != " " || state.ResponseCode != 0) {
      throw PublishError("Pachube: Error Returned >> " + QuoteResponse(state.Response, {key}));
    }
    return "Pachube: Updated " + FormatDateAndTime(regional, timestamp);
  });
}

}  // namespace wattlark
