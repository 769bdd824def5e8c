#include "publish/GoogleDocLogger.h"

#include "publish/GoogleFeeds.h"
#include "publish/GoogleLogin.h"
#include "publish/GoogleRow.h"
#include "publish/WebText.h"

namespace wattlark {

PublishResult GoogleDocLogger::LogToGoogleDoc(DateTime timestamp, bool useAverage, bool quiet) {
  PublishResult result = RunPublisher("Google", [&] {
    AppSettings& settings = ports_.settings;
    if (settings.GoogleAuthToken.empty()) {
      GoogleClientLogin(settings, ports_.endpoints, ports_.runner, ports_.prompts, quiet);
    }
    if (settings.GoogleWorksheetsFeed.empty()) OpenGoogleWorksheet();
    if (settings.GoogleListFeed.empty()) OpenGoogleWorksheet();
    PostRow(timestamp, useAverage);
    return "Google Docs: Updated " + FormatDateAndTime(ports_.regional, timestamp);
  });
  result.warning = TakeWarning();
  return result;
}

void GoogleDocLogger::OpenGoogleWorksheet() {
  AppSettings& settings = ports_.settings;
  settings.GoogleSpreadsheetsFeed = ports_.endpoints.SpreadsheetsFeedURL;
  // What is known may be of another document: rows must not go there when this one is not found.
  settings.GoogleWorksheetsFeed.clear();
  settings.GoogleListFeed.clear();
  const std::string document = settings.GoogleDocName;
  const std::string worksheet = settings.GoogleWorksheetName;
  // The user may choose another document meanwhile: what is found here is not that one's.
  const auto endIfChanged = [&] {
    if (settings.GoogleDocName != document || settings.GoogleWorksheetName != worksheet) {
      throw PublishStopped();
    }
  };
  const std::string worksheetsFeed =
      FindWorksheetsFeed(Get(settings.GoogleSpreadsheetsFeed, "Opening document..."), document);
  endIfChanged();
  if (worksheetsFeed.empty()) {
    throw PublishError("Google: The document '" + document + "' could not be found");
  }
  settings.GoogleWorksheetsFeed = worksheetsFeed;
  const std::string listFeed = FindListFeed(Get(worksheetsFeed, "Opening worksheet..."), worksheet);
  endIfChanged();
  if (listFeed.empty()) {
    throw PublishError("Google: The worksheet '" + worksheet +
                       "' does not exist in the document '" + document + "'.");
  }
  settings.GoogleListFeed = listFeed;
}

std::string GoogleDocLogger::Get(const std::string& url, const std::string& progressText) {
  return ports_.runner
      .ExecuteAndWait({url, "GET", "",
                       Authorization() + "\r\nContent-Type:application/x-www-form-urlencoded",
                       progressText})
      .Response;
}

void GoogleDocLogger::PostRow(DateTime timestamp, bool useAverage) {
  AppSettings& settings = ports_.settings;
  const std::string token = settings.GoogleAuthToken;
  const WebRequestState state = ports_.runner.ExecuteAndWait(
      {settings.GoogleListFeed, "POST",
       GoogleRow(settings, ports_.meters, ports_.regional, timestamp, useAverage),
       Authorization() + "\r\nContent-Type: application/atom+xml", "Posting data..."});
  if (state.Response.find("<updated>") != std::string::npos) return;
  settings.GoogleAuthToken.clear();
  settings.GoogleWorksheetsFeed.clear();
  settings.GoogleListFeed.clear();
  throw PublishError("Google: Invalid response >> " +
                     QuoteResponse(state.Response, {token, settings.GooglePassword}));
}

std::string GoogleDocLogger::Authorization() const {
  return "Authorization: GoogleLogin auth=" + ports_.settings.GoogleAuthToken;
}

std::string GoogleDocLogger::TakeWarning() {
  std::vector<std::string> names;
  std::string leftOut;
  for (const auto& meter : ports_.meters) {
    names.push_back(meter->Name());
    if (!GoogleColumn(meter->Name()).empty()) continue;
    leftOut += (leftOut.empty() ? "'" : ", '") + meter->Name() + "'";
  }
  if (names == toldNames_) return {};
  toldNames_ = std::move(names);
  if (leftOut.empty()) return {};
  return "Google: Meters whose names make no column name are left out of the row: " + leftOut;
}

}  // namespace wattlark
