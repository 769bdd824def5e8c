#include "publish/WebText.h"

#include <algorithm>
#include <charconv>

#include "support/modText.h"

namespace wattlark {

namespace {

constexpr std::size_t kLongestQuote = std::size_t{64} * 1024;
constexpr std::string_view kMask = "****";

bool IsControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

std::string Mask(std::string text, const std::string& secret) {
  if (secret.empty()) return text;
  std::string masked;
  std::size_t position = 0;
  for (;;) {
    const std::size_t found = text.find(secret, position);
    if (found == std::string::npos) break;
    masked.append(text, position, found - position).append(kMask);
    position = found + secret.size();
  }
  return position == 0 ? text : masked.append(text, position);
}

std::string PercentEncode(std::string_view text, std::string_view digits, std::string_view blank) {
  std::string encoded;
  for (const char c : text) {
    const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
                         (c >= 'a' && c <= 'z') || c == '-' || c == '.' || c == '_' || c == '~';
    if (isPlain) {
      encoded += c;
    } else if (c == ' ') {
      encoded += blank;
    } else {
      AppendPercentEncoded(encoded, c, digits);
    }
  }
  return encoded;
}

/// The longest first: the plain form may be a piece of the others.
std::string MaskEveryForm(std::string text, const std::string& secret) {
  std::vector<std::string> forms{secret, EscapeXml(secret)};
  for (const std::string_view digits : {"0123456789ABCDEF", "0123456789abcdef"}) {
    for (const std::string_view blank : {"%20", "+"}) {
      forms.push_back(PercentEncode(secret, digits, blank));
    }
  }
  std::ranges::sort(forms, [](const std::string& a, const std::string& b) {
    return a.size() != b.size() ? a.size() > b.size() : a < b;
  });
  forms.erase(std::unique(forms.begin(), forms.end()), forms.end());
  for (const std::string& form : forms) text = Mask(std::move(text), form);
  return text;
}

}  // namespace

std::string QuoteResponse(std::string_view response, const std::vector<std::string>& secrets) {
  std::string quote(response);
  for (const std::string& secret : secrets) quote = MaskEveryForm(std::move(quote), secret);
  if (quote.size() > kLongestQuote) {
    std::size_t end = kLongestQuote;
    // A character has at most four bytes; longer runs are no text anyway.
    for (int i = 0; i < 3 && IsContinuation(quote[end]); ++i) --end;
    quote.resize(end);
  }
  std::string shown;
  shown.reserve(quote.size());
  for (std::size_t i = 0; i < quote.size(); ++i) {
    const bool isLineEnd = quote[i] == '\r' || quote[i] == '\n';
    const bool isLatinControl = quote[i] == '\xC2' && i + 1 < quote.size() &&
                                (static_cast<unsigned char>(quote[i + 1]) & 0xE0) == 0x80;
    shown += isLatinControl || (IsControl(quote[i]) && !isLineEnd) ? ' ' : quote[i];
    if (isLatinControl) ++i;
  }
  return shown;
}

std::string EscapeXml(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '\'':
        escaped += "&apos;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += IsControl(c) && c != '\t' && c != '\r' && c != '\n' ? ' ' : c;
    }
  }
  return escaped;
}

void AppendPercentEncoded(std::string& text, char byte, std::string_view digits) {
  const auto value = static_cast<unsigned char>(byte);
  text.append({'%', digits[value >> 4], digits[value & 0xF]});
}

double RoundTo15Digits(double value) {
  char digits[40];
  const auto written =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific, 14);
  double rounded = value;
  std::from_chars(digits, written.ptr, rounded);
  return rounded;
}

std::string PlainNumberText(const RegionalSettings& regional, double value) {
  std::string text = DoubleToText(RoundTo15Digits(value));
  const std::size_t point = text.find('.');
  if (point != std::string::npos) text.replace(point, 1, regional.decimalSeparator);
  return text;
}

bool HasControlCharacters(std::string_view text) {
  return std::any_of(text.begin(), text.end(), IsControl);
}

}  // namespace wattlark
