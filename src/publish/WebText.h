#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/RegionalSettings.h"

namespace wattlark {

/// A web server's response as an error message quotes it: up to 64 KiB of it, cut at a whole
/// character, with control characters other than CR and LF as blanks, and each of the `secrets` as
/// "****", also where a server gives it back escaped for XML or percent-encoded.
std::string QuoteResponse(std::string_view response, const std::vector<std::string>& secrets = {});

/// The text for the content of an XML element or a quoted attribute value. Control characters that
/// XML cannot hold become blanks.
std::string EscapeXml(std::string_view text);

/// Appends "%" and the byte's two digits: the capital ones, unless `digits` are others.
void AppendPercentEncoded(std::string& text, char byte,
                          std::string_view digits = "0123456789ABCDEF");

/// A number as programs exchange it: up to 15 significant digits, no grouping, the region's decimal
/// separator; "250.5", "1500".
std::string PlainNumberText(const RegionalSettings& regional, double value);
/// `value` rounded to 15 significant decimal digits.
double RoundTo15Digits(double value);

/// Whether the text holds a control character: such a text would break a line of headers.
bool HasControlCharacters(std::string_view text);

}  // namespace wattlark
