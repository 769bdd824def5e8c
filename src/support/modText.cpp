#include "support/modText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "support/Utf8.h"

namespace wattlark {

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";

std::string_view Strip(std::string_view text, std::string_view characters) {
  const std::size_t first = text.find_first_not_of(characters);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(characters) - first + 1);
}

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::size_t CountDigits(std::string_view text) {
  const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
  return static_cast<std::size_t>(end - text.begin());
}

/// An unsigned decimal number in its parts; all but `isNumber` are views into the text read.
struct Decimal {
  bool isNumber = false;
  std::string_view whole;
  std::string_view fraction;
  std::string_view exponent;  ///< digits only
  bool negativeExponent = false;
  std::size_t separator = std::string_view::npos;  ///< position in the text
};

Decimal ReadDecimal(std::string_view text) {
  Decimal number;
  std::size_t position = CountDigits(text);
  number.whole = text.substr(0, position);
  if (position < text.size() && (text[position] == '.' || text[position] == ',')) {
    number.separator = position++;
    number.fraction = text.substr(position, CountDigits(text.substr(position)));
    position += number.fraction.size();
  }
  number.isNumber = !number.whole.empty() || !number.fraction.empty();
  if (position < text.size() && (text[position] == 'e' || text[position] == 'E')) {
    ++position;
    if (position < text.size() && (text[position] == '+' || text[position] == '-')) {
      number.negativeExponent = text[position++] == '-';
    }
    number.exponent = text.substr(position, CountDigits(text.substr(position)));
    position += number.exponent.size();
    number.isNumber = number.isNumber && !number.exponent.empty();
  }
  number.isNumber = number.isNumber && position == text.size();
  return number;
}

/// Whether a number that no double can hold lies below the smallest one instead of above the
/// largest.
bool IsTooSmall(const Decimal& number) {
  // An exponent of more digits than this outweighs any number of digits before it.
  constexpr std::int64_t kHugeExponent = 1'000'000'000'000;
  std::int64_t exponent = kHugeExponent;
  std::from_chars(number.exponent.data(), number.exponent.data() + number.exponent.size(),
                  exponent);
  exponent = number.exponent.empty() ? 0 : std::min(exponent, kHugeExponent);
  if (number.negativeExponent) exponent = -exponent;

  const std::size_t inWhole = number.whole.find_first_not_of('0');
  if (inWhole != std::string_view::npos) {
    return exponent + static_cast<std::int64_t>(number.whole.size() - inWhole) <= 0;
  }
  const std::size_t inFraction = number.fraction.find_first_not_of('0');
  return inFraction == std::string_view::npos ||
         exponent - static_cast<std::int64_t>(inFraction) <= 0;
}

/// The small letter of a code point of two UTF-8 bytes.
char32_t SmallLetter(char32_t c) {
  const auto between = [c](char32_t first, char32_t last) { return c >= first && c <= last; };
  const bool isEven = c % 2 == 0;
  if (between(0xC0, 0xDE)) return c == 0xD7 ? c : c + 0x20;
  if (c == 0x130) return U'i';
  if (c == 0x178) return 0xFF;
  if (between(0x100, 0x137) || between(0x14A, 0x177)) return isEven ? c + 1 : c;
  if (between(0x139, 0x148) || between(0x179, 0x17E)) return isEven ? c : c + 1;
  if (c == 0x386) return 0x3AC;
  if (between(0x388, 0x38A)) return c + 0x25;
  if (c == 0x38C) return 0x3CC;
  if (between(0x38E, 0x38F)) return c + 0x3F;
  if (between(0x391, 0x3AB)) return c == 0x3A2 ? c : c + 0x20;
  if (c == 0x3C2) return 0x3C3;
  if (between(0x400, 0x40F)) return c + 0x50;
  if (between(0x410, 0x42F)) return c + 0x20;
  if (c == 0x4C0) return 0x4CF;
  if (between(0x4C1, 0x4CE)) return isEven ? c : c + 1;
  if (between(0x460, 0x481) || between(0x48A, 0x4BF) || between(0x4D0, 0x52F)) {
    return isEven ? c + 1 : c;
  }
  return c;
}

constexpr unsigned char Byte(char c) {
  return static_cast<unsigned char>(c);
}

}  // namespace

std::string_view Trim(std::string_view text) {
  return Strip(text, " \r\n");
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::string GetTextBetween(std::string_view text, std::string_view startMarker,
                           std::string_view endMarker, std::size_t startPosition,
                           bool includeMarkers, std::size_t limit) {
  const std::string_view searched = text.substr(0, limit);
  if (startPosition > searched.size()) return {};
  const std::size_t start = searched.find(startMarker, startPosition);
  if (start == std::string_view::npos) return {};
  const std::size_t first = start + startMarker.size();
  const std::size_t end = endMarker.empty() ? searched.size() : searched.find(endMarker, first);
  if (end == std::string_view::npos) return {};
  if (includeMarkers) return std::string(searched.substr(start, end + endMarker.size() - start));
  return std::string(searched.substr(first, end - first));
}

std::string FoldCase(std::string_view utf8) {
  std::string folded;
  folded.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const unsigned char first = Byte(utf8[i]);
    const bool isPair =
        first >= 0xC2 && first <= 0xDF && i + 1 < utf8.size() && (Byte(utf8[i + 1]) & 0xC0) == 0x80;
    if (isPair) {
      const char32_t c = (char32_t{first} & 0x1F) << 6 | (char32_t{Byte(utf8[i + 1])} & 0x3F);
      AppendUtf8(folded, SmallLetter(c));
      ++i;
    } else if (first >= 'A' && first <= 'Z') {
      folded += static_cast<char>(first + ('a' - 'A'));
    } else {
      folded += utf8[i];
    }
  }
  return folded;
}

void AppendDouble(std::string& text, double value) {
  if (value == 0) {
    text += '0';
    return;
  }
  char digits[32];
  const double magnitude = std::fabs(value);
  const auto format = magnitude >= 1E-4 && magnitude < 1E+15 ? std::chars_format::fixed
                                                             : std::chars_format::scientific;
  char* end = std::to_chars(digits, digits + sizeof digits, value, format).ptr;
  std::replace(digits, end, 'e', 'E');
  text.append(digits, end);
}

std::string DoubleToText(double value) {
  std::string text;
  AppendDouble(text, value);
  return text;
}

std::optional<double> TextToDouble(std::string_view text) {
  text = Strip(text, kWhiteSpace);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const Decimal number = ReadDecimal(text);
  if (!number.isNumber) return std::nullopt;

  std::string withPoint;
  if (number.separator != std::string_view::npos && text[number.separator] == ',') {
    withPoint = text;
    withPoint[number.separator] = '.';
    text = withPoint;
  }
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    if (!IsTooSmall(number)) return std::nullopt;
    value = 0;
  }
  if (!std::isfinite(value)) return std::nullopt;
  return negative ? -value : value;
}

std::optional<std::int64_t> TextToInteger(std::string_view text, std::int64_t minimum,
                                          std::int64_t maximum) {
  text = Strip(text, kWhiteSpace);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  std::int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  if (value < minimum || value > maximum) return std::nullopt;
  return value;
}

std::optional<bool> TextToBoolean(std::string_view text) {
  const std::string word = FoldCase(Strip(text, kWhiteSpace));
  if (word == "true") return true;
  if (word == "false") return false;
  const std::optional<double> number = TextToDouble(word);
  if (!number) return std::nullopt;
  return *number != 0;
}

}  // namespace wattlark
