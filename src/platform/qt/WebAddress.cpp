#include "platform/qt/WebAddress.h"

#include <algorithm>

namespace wattlark {

namespace {

bool IsHostAndPort(const std::string& text) {
  const QUrl url(QString::fromStdString("http://" + text + "/"), QUrl::StrictMode);
  return !text.ends_with(':') && url.isValid() && !url.host().isEmpty() &&
         url.userInfo().isEmpty() && url.port() != 0;
}

// The "@" that ends the credentials; npos without any. A password may hold what ends an authority
// part. Such a part is then no host and port, and the credentials go on to an "@" before one.
std::size_t CredentialsEnd(const std::string& address, std::size_t start) {
  const std::size_t authorityEnd = std::min(address.find_first_of("/?#", start), address.size());
  const std::size_t at = address.rfind('@', authorityEnd);
  if (at != std::string::npos && at >= start && at < authorityEnd) return at;
  if (IsHostAndPort(address.substr(start, authorityEnd - start))) return std::string::npos;
  for (std::size_t next = address.find('@', authorityEnd); next != std::string::npos;
       next = address.find('@', next + 1)) {
    const std::size_t hostEnd = std::min(address.find_first_of("/?#@", next + 1), address.size());
    const bool isLast = hostEnd == address.size() || address[hostEnd] != '@';
    if (isLast && IsHostAndPort(address.substr(next + 1, hostEnd - next - 1))) return next;
  }
  return std::string::npos;
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
    const QByteArray credentials = QByteArray::fromStdString(address.substr(start, at - start));
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
