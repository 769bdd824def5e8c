#pragma once

#include <QByteArray>
#include <QUrl>
#include <optional>
#include <string>

namespace wattlark {

/// An http or https address without the credentials that stood in its authority part.
struct WebAddress {
  QUrl url;
  QByteArray authorization;  ///< value of a header line for basic credentials, or empty
};

/// Nothing for what is no such address. User name and password are taken as they stand, "@" in
/// either of them included, but for "%25", "%2F", "%3F" and "%23", which stand for "%", "/", "?"
/// and
/// "#". The last three are found in a password as they stand too, unless what stands before them
/// looks like a host and its port.
std::optional<WebAddress> ParseWebAddress(const std::string& address);

}  // namespace wattlark
