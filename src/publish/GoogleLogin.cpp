#include "publish/GoogleLogin.h"

#include "publish/LoginPrompt.h"
#include "publish/PublishResult.h"
#include "publish/WebText.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr const char* kSource = "FennickLabs-Wattlark-v2.0";
constexpr std::string_view kTokenMarker = "Auth=";

PublishError BadCredentials() {
  return PublishError("Google: Bad username or password");
}

bool Contains(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

std::optional<std::string> ParseAuthToken(std::string_view response) {
  const std::size_t marker = response.rfind(kTokenMarker);
  if (marker == std::string_view::npos) return std::nullopt;
  const std::string_view token = Trim(response.substr(marker + kTokenMarker.size()));
  if (token.empty() || HasControlCharacters(token)) return std::nullopt;
  return std::string(token);
}

std::string QuoteSignInResponse(std::string_view response, const std::string& password) {
  std::string quote(response);
  // The session identifiers in a response sign in as well as its token does.
  for (std::string_view marker : {std::string_view("SID="), kTokenMarker}) {
    std::size_t start = quote.find(marker);
    while (start != std::string::npos) {
      start += marker.size();
      const std::size_t end = quote.find_first_of("\r\n", start);
      quote.replace(start, end == std::string::npos ? end : end - start, "****");
      start = quote.find(marker, start);
    }
  }
  return QuoteResponse(quote, {password});
}

PromptAnswer PromptGoogleLogin(AppSettings& settings, Prompts& prompts, bool quiet) {
  return PromptLogin(prompts, "Google Login", quiet, settings.GoogleUsername,
                     settings.GooglePassword);
}

void GoogleClientLogin(AppSettings& settings, const ServiceEndpoints& endpoints,
                       WebRequestRunner& runner, Prompts& prompts, bool quiet) {
  if ((settings.GoogleUsername.empty() || settings.GooglePassword.empty()) &&
      PromptGoogleLogin(settings, prompts, quiet) != PromptAnswer::OK) {
    throw BadCredentials();
  }
  for (;;) {
    const std::string userName = settings.GoogleUsername;
    const std::string password = settings.GooglePassword;
    const WebRequestState state = runner.ExecuteAndWait(
        {endpoints.ClientLoginURL, "POST",
         "Email=" + userName + "&Passwd=" + password + "&source=" + kSource + "&service=wise",
         "Content-Type:application/x-www-form-urlencoded", "Authenticating..."});
    // The user may have entered another account meanwhile: the answer is not about that one.
    if (settings.GoogleUsername != userName || settings.GooglePassword != password) {
      throw PublishStopped();
    }
    if (Contains(state.Response, "BadAuthentication")) {
      if (PromptGoogleLogin(settings, prompts, quiet) != PromptAnswer::OK) throw BadCredentials();
      continue;
    }
    const std::optional<std::string> token = ParseAuthToken(state.Response);
    if (!token) {
      throw PublishError("Google: Invalid response >> " +
                         QuoteSignInResponse(state.Response, password));
    }
    settings.GoogleAuthToken = *token;
    return;
  }
}

}  // namespace wattlark
