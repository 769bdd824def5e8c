// Sign-in responses and authentication infos of any form: a token or path that is taken can stand
// in a header line, and an error quotes nothing that signs in. The input serves as both.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "publish/GoogleLogin.h"
#include "publish/PowerMeterLogger.h"
#include "publish/WebText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace wattlark;
  const std::string_view text = TextOf(data, size);

  if (const auto token = ParseAuthToken(text)) {
    Require(!token->empty() && !HasControlCharacters(*token));
    Require(text.find("Auth=") != std::string_view::npos);
  }
  const std::string password = "password";
  const std::string quote = QuoteSignInResponse(text, password);
  Require(quote.find(password) == std::string::npos);
  for (std::size_t at = quote.find("Auth="); at != std::string::npos;
       at = quote.find("Auth=", at + 1)) {
    Require(quote.compare(at, 9, "Auth=****") == 0 || at + 9 > 64UL * 1024);
  }

  if (const auto authorization = ParsePowerMeterAuthInfo(text)) {
    Require(!authorization->token.empty() && !HasControlCharacters(authorization->token));
    Require(authorization->token.find('"') == std::string::npos);
    Require(authorization->variablePath.size() > 3);
    Require(authorization->variablePath.ends_with(".d1"));
    Require(!HasControlCharacters(authorization->variablePath));
  }
  return 0;
}
