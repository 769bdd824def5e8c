#include "publish/TwitterLogger.h"

#include <stdexcept>
#include <utility>

#include "publish/LoginPrompt.h"
#include "publish/WebText.h"
#include "support/NoValue.h"
#include "support/modFormat.h"

namespace wattlark {

namespace {

void ReplaceAll(std::string& text, std::string_view code, const std::string& replacement) {
  std::size_t position = text.find(code);
  while (position != std::string::npos) {
    text.replace(position, code.size(), replacement);
    position = text.find(code, position + replacement.size());
  }
}

bool Contains(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

std::string TwitterMessageText(const std::string& messageTemplate, const clsKillAWatt& meter,
                               const RegionalSettings& regional, DateTime timestamp) {
  const MeterStatistics& statistics = meter.Statistics();
  const double peak = statistics.PeakTime(Today).IsNever() ? NoValue : statistics.Peak(Today);
  const std::pair<const char*, std::string> codes[] = {
      {"%T", FormatDateAndTime(regional, timestamp)},
      {"%W", FormatPower(regional, meter.ShownWatts())},
      {"%Y", FormatEnergy(regional, statistics.Usage(Yesterday))},
      {"%D", FormatEnergy(regional, statistics.Usage(Today))},
      {"%P", FormatPower(regional, peak)},
      {"%N", meter.Name()},
  };
  std::string message = messageTemplate;
  for (const auto& [code, replacement] : codes) ReplaceAll(message, code, replacement);
  return message;
}

std::string TwitterBody(std::string_view message) {
  std::string body = "status=";
  for (const char c : message) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || std::string_view("%&+=").find(c) != std::string_view::npos) {
      AppendPercentEncoded(body, c);
    } else {
      body += c;
    }
  }
  return body;
}

namespace {

// What would end the authority part of an address, or be taken for such a code, is written as one.
std::string ForAuthority(const std::string& credential) {
  std::string text;
  for (const char c : credential) {
    if (std::string_view("%/?#").find(c) != std::string_view::npos) {
      AppendPercentEncoded(text, c);
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

std::string TwitterAddress(const std::string& updateURL, const std::string& userName,
                           const std::string& password) {
  const std::size_t schemeEnd = updateURL.find("://");
  if (schemeEnd == std::string::npos) return updateURL;
  const std::size_t authority = schemeEnd + 3;
  return updateURL.substr(0, authority) + ForAuthority(userName) + ":" + ForAuthority(password) +
         "@" + updateURL.substr(authority);
}

PromptAnswer PromptTwitterLogin(AppSettings& settings, Prompts& prompts, bool quiet) {
  return PromptLogin(prompts, "Twitter Login", quiet, settings.TwitterUsername,
                     settings.TwitterPassword);
}

PublishResult TwitterLogger::PostTwitterStatus(DateTime timestamp, const Subject& subject,
                                               const std::string& messageTemplate, bool quiet) {
  return RunPublisher("Twitter", [&] {
    AppSettings& settings = ports_.settings;
    if ((settings.TwitterUsername.empty() || settings.TwitterPassword.empty()) &&
        PromptTwitterLogin(settings, ports_.prompts, quiet) != PromptAnswer::OK) {
      throw PublishStopped();
    }
    for (;;) {
      const WebRequestState state = Post(timestamp, subject, messageTemplate);
      if (Contains(state.Response, "<created_at>")) break;
      if (!Contains(state.Response, "authenticate")) {
        throw std::runtime_error("Invalid or no response");
      }
      if (PromptTwitterLogin(settings, ports_.prompts, quiet) != PromptAnswer::OK) {
        throw std::runtime_error("Bad username or password");
      }
    }
    return "Twitter: Status updated " + FormatDateAndTime(ports_.regional, timestamp);
  });
}

WebRequestState TwitterLogger::Post(DateTime timestamp, const Subject& subject,
                                    const std::string& messageTemplate) {
  const clsKillAWatt* meter = subject();
  if (meter == nullptr) throw std::runtime_error("There is no meter to tell of");
  const AppSettings& settings = ports_.settings;
  return ports_.runner.ExecuteAndWait(
      {TwitterAddress(ports_.endpoints.TwitterUpdateURL, settings.TwitterUsername,
                      settings.TwitterPassword),
       "POST", TwitterBody(TwitterMessageText(messageTemplate, *meter, ports_.regional, timestamp)),
       "Content-Type: application/x-www-form-URLencoded"});
}

}  // namespace wattlark
