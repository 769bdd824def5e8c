#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "config/AppSettings.h"
#include "config/ServiceEndpoints.h"
#include "platform/Prompts.h"
#include "publish/WebRequestRunner.h"

namespace wattlark {

/// The token of a sign-in response: the text behind its last "Auth=", without blanks and line ends
/// around it. Nothing when there is none that can stand in a header line.
std::optional<std::string> ParseAuthToken(std::string_view response);
/// The response of a failed sign-in for an error message, without what signs anybody in.
std::string QuoteSignInResponse(std::string_view response, const std::string& password);

/// Asks for `GoogleUsername` and `GooglePassword`; `Cancel` at once when `quiet`.
PromptAnswer PromptGoogleLogin(AppSettings& settings, Prompts& prompts, bool quiet);

/// Signs in for the spreadsheets service and sets `GoogleAuthToken`. Missing and refused
/// credentials are asked for again until the user cancels, unless `quiet`. Throws PublishError with
/// the whole error text when that failed, and what the runner throws.
void GoogleClientLogin(AppSettings& settings, const ServiceEndpoints& endpoints,
                       WebRequestRunner& runner, Prompts& prompts, bool quiet);

}  // namespace wattlark
