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
/// either of them and "/", "?" and "#" in the password included.
std::optional<WebAddress> ParseWebAddress(const std::string& address);

}  // namespace wattlark
