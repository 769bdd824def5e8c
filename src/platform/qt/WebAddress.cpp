#include "platform/qt/WebAddress.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace wattlark {

namespace {

bool IsHostAndPort(const std::string& text) {
  const QUrl url(QString::fromStdString("http://" + text + "/"), QUrl::StrictMode);
  return !text.ends_with(':') && url.isValid() && !url.host().isEmpty() &&
         url.userInfo().isEmpty() && url.port() != 0;
}

// Whether the "@" stands behind a user name, a colon and a password, and before a host.
bool EndsCredentials(const std::string& address, std::size_t start, std::size_t at) {
  const std::size_t hostEnd = std::min(address.find_first_of("/?#@", at + 1), address.size());
  const bool isLast = hostEnd == address.size() || address[hostEnd] != '@';
  return isLast && address.find(':', start) < at &&
         IsHostAndPort(address.substr(at + 1, hostEnd - at - 1));
}

// The "@" that ends the credentials; npos without any. A password may hold what ends an authority
// part, and "@" as well: the last one that a host and a path follow counts then.
std::size_t CredentialsEnd(const std::string& address, std::size_t start) {
  const std::size_t authorityEnd = std::min(address.find_first_of("/?#", start), address.size());
  const std::size_t inAuthority = address.rfind('@', authorityEnd);
  const bool isInAuthority = inAuthority != std::string::npos && inAuthority >= start;
  if (!isInAuthority && IsHostAndPort(address.substr(start, authorityEnd - start))) {
    return std::string::npos;
  }
  std::size_t end = isInAuthority ? inAuthority : std::string::npos;
  for (std::size_t at = address.find('@', authorityEnd); at != std::string::npos;
       at = address.find('@', at + 1)) {
    const std::size_t hostEnd = address.find_first_of("/?#", at);
    const bool hasPath = hostEnd != std::string::npos && address[hostEnd] == '/';
    if ((hasPath || end == std::string::npos) && EndsCredentials(address, start, at)) end = at;
  }
  return end;
}

// The codes of "%", "/", "?" and "#" back into the characters that cannot always stand there.
std::string Decoded(const std::string& credentials) {
  static constexpr std::pair<std::string_view, char> kCodes[] = {
      {"%25", '%'}, {"%2F", '/'}, {"%2f", '/'}, {"%3F", '?'}, {"%3f", '?'}, {"%23", '#'}};
  std::string text;
  for (std::size_t i = 0; i < credentials.size(); ++i) {
    char c = credentials[i];
    for (const auto& [code, character] : kCodes) {
      if (std::string_view(credentials).substr(i, code.size()) != code) continue;
      c = character;
      i += code.size() - 1;
      break;
    }
    text += c;
  }
  return text;
}

}  // namespace

std::optional<WebAddress> ParseWebAddress(const std::string& address) {
  const std::size_t schemeEnd = address.find("://");
  if (schemeEnd == std::string::npos) return std::nullopt;
  const std::size_t start = schemeEnd + 3;
  const std::size_t at = CredentialsEnd(address, start);
  WebAddress result;
  std::string plain = address;
  if (at != std::string::npos) {
    const QByteArray credentials =
        QByteArray::fromStdString(Decoded(address.substr(start, at - start)));
    result.authorization = "Basic " + credentials.toBase64();
    plain.erase(start, at + 1 - start);
  }
  result.url = QUrl(QString::fromStdString(plain));
  const QString scheme = result.url.scheme();
  const bool isWeb = scheme == "http" || scheme == "https";
  if (!isWeb || !result.url.isValid() || result.url.host().isEmpty()) return std::nullopt;
  return result;
}

}  // namespace wattlark
