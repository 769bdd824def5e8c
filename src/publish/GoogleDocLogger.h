#pragma once

#include <string>
#include <vector>

#include "acquisition/MeterCollection.h"
#include "config/AppSettings.h"
#include "config/ServiceEndpoints.h"
#include "platform/Prompts.h"
#include "publish/PublishResult.h"
#include "publish/WebRequestRunner.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// Appends rows to a worksheet of a Google Docs spreadsheet through its list feed.
class GoogleDocLogger {
 public:
  /// All must outlive the logger.
  struct Ports {
    AppSettings& settings;
    const ServiceEndpoints& endpoints;
    const MeterCollection& meters;
    const RegionalSettings& regional;
    WebRequestRunner& runner;
    Prompts& prompts;
  };
  explicit GoogleDocLogger(const Ports& ports) : ports_(ports) {}

  /// Appends one row, after having signed in and looked for the worksheet where that is not known
  /// yet. A row that was not taken forgets both. Meters whose names give no column are left out,
  /// and told of once for every change of the meters, as the result's warning.
  PublishResult LogToGoogleDoc(DateTime timestamp, bool useAverage, bool quiet);
  /// Finds the document `GoogleDocName` and its worksheet `GoogleWorksheetName` and sets the three
  /// feed settings. Throws PublishError, and what the runner throws.
  void OpenGoogleWorksheet();

 private:
  std::string Get(const std::string& url, const std::string& progressText);
  void PostRow(DateTime timestamp, bool useAverage);
  std::string Authorization() const;
  std::string TakeWarning();

  Ports ports_;
  std::vector<std::string> toldNames_;  ///< the meters' names when left-out ones were looked for
};

}  // namespace wattlark
