#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "acquisition/clsKillAWatt.h"
#include "config/AppSettings.h"
#include "config/ServiceEndpoints.h"
#include "platform/Prompts.h"
#include "publish/PublishResult.h"
#include "publish/WebRequestRunner.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// The template with its codes replaced, one after another: %T time, %W present power, %Y usage
/// yesterday, %D usage today, %P peak today, %N name of the meter.
std::string TwitterMessageText(const std::string& messageTemplate, const clsKillAWatt& meter,
                               const RegionalSettings& regional, DateTime timestamp);
/// The form body of a status update. What a reader of forms would take for something else ("%",
/// "&", "+", "=", control characters) is percent-encoded, and nothing else.
std::string TwitterBody(std::string_view message);
/// The address with user name and password, as they are, in its authority part.
std::string TwitterAddress(const std::string& updateURL, const std::string& userName,
                           const std::string& password);

/// Asks for `TwitterUsername` and `TwitterPassword`; `Cancel` at once when `quiet`.
PromptAnswer PromptTwitterLogin(AppSettings& settings, Prompts& prompts, bool quiet);

/// Posts status messages to a Twitter account.
class TwitterLogger {
 public:
  /// All must outlive the logger.
  struct Ports {
    AppSettings& settings;
    const ServiceEndpoints& endpoints;
    const RegionalSettings& regional;
    WebRequestRunner& runner;
    Prompts& prompts;
  };
  /// The meter that a message tells of, or null. Asked again for every attempt: a meter may be
  /// removed while an answer or the user is waited for.
  using Subject = std::function<const clsKillAWatt*()>;

  explicit TwitterLogger(const Ports& ports) : ports_(ports) {}

  /// Missing and refused credentials are asked for, unless `quiet`; a run that ends for the want of
  /// any tells nothing.
  PublishResult PostTwitterStatus(DateTime timestamp, const Subject& subject,
                                  const std::string& messageTemplate, bool quiet);

 private:
  WebRequestState Post(DateTime timestamp, const Subject& subject,
                       const std::string& messageTemplate);

  Ports ports_;
};

}  // namespace wattlark
