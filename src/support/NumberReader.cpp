#include "support/NumberReader.h"

#include <algorithm>
#include <array>

#include "support/modText.h"

namespace wattlark {

namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::size_t kGroupDigits = 3;

std::string WithPlainBlanks(std::string_view text) {
  constexpr std::array<std::string_view, 4> kBlanks = {"\t", "\u00A0", "\u2009", "\u202F"};
  std::string plain;
  while (!text.empty()) {
    const auto blank = std::ranges::find_if(
        kBlanks, [text](std::string_view candidate) { return text.starts_with(candidate); });
    const bool isBlank = blank != kBlanks.end();
    plain += isBlank ? ' ' : text.front();
    text.remove_prefix(isBlank ? blank->size() : 1);
  }
  return plain;
}

bool AreDigits(std::string_view text) {
  return text.find_first_not_of(kDigits) == std::string_view::npos;
}

bool Take(std::string_view& rest, std::string_view expected) {
  if (expected.empty() || !rest.starts_with(expected)) return false;
  rest.remove_prefix(expected.size());
  return true;
}

void SkipBlanks(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
}

}  // namespace

NumberReader::NumberReader(const RegionalSettings& regional)
    : group_(WithPlainBlanks(regional.groupSeparator)),
      decimal_(regional.decimalSeparator),
      symbol_(WithPlainBlanks(regional.currencySymbol)),
      minus_(WithPlainBlanks(regional.negativeSign)) {}

std::optional<double> NumberReader::Read(std::string_view text, std::string_view pattern) const {
  constexpr std::string_view kSymbol = "¤";
  const std::string plainText = WithPlainBlanks(text);
  const std::string plainPattern = WithPlainBlanks(pattern);
  std::string_view rest = plainText;
  std::string_view pieces = plainPattern;
  std::optional<double> value;
  bool isNegative = false;
  while (!pieces.empty()) {
    SkipBlanks(rest);
    if (Take(pieces, kSymbol)) {
      Take(rest, symbol_);
      continue;
    }
    const std::string_view piece = pieces.substr(0, 1);
    pieces.remove_prefix(1);
    isNegative = isNegative || piece == "-" || piece == "(";
    if (piece == "#") {
      value = ReadDigits(rest);
      if (!value) return std::nullopt;
    } else if (piece != " " && !(piece == "-" ? TakeMinus(rest) : Take(rest, piece))) {
      return std::nullopt;
    }
  }
  SkipBlanks(rest);
  if (!rest.empty() || !value) return std::nullopt;
  return isNegative ? -*value : *value;
}

bool NumberReader::TakeMinus(std::string_view& rest) const {
  return Take(rest, minus_) || Take(rest, "-") || Take(rest, "\u2212");
}

std::optional<double> NumberReader::ReadDigits(std::string_view& rest) const {
  const std::string_view start = rest;
  while (!rest.empty()) {
    // A blank is part of the number only between digits: others stand before a symbol.
    const bool isGroup = !group_.empty() && rest.starts_with(group_) &&
                         rest.size() > group_.size() && AreDigits(rest.substr(group_.size(), 1));
    if (isGroup) {
      rest.remove_prefix(group_.size());
    } else if (AreDigits(rest.substr(0, 1)) || rest.front() == '.') {
      rest.remove_prefix(1);
    } else if (!Take(rest, decimal_)) {
      break;
    }
  }
  const std::string_view digits = start.substr(0, start.size() - rest.size());
  if (const auto plain = Regional(digits)) return TextToDouble(*plain);
  const bool isPlain = digits.find_first_not_of("0123456789.") == std::string_view::npos;
  return isPlain ? TextToDouble(digits) : std::nullopt;
}

/// Without group separators and with "." before the decimals, as other readers want it.
std::optional<std::string> NumberReader::Regional(std::string_view digits) const {
  const std::size_t separator = decimal_.empty() ? std::string_view::npos : digits.find(decimal_);
  std::string_view whole = digits.substr(0, separator);
  std::string plain;
  for (bool isFirst = true;; isFirst = false) {
    const std::size_t end = group_.empty() ? std::string_view::npos : whole.find(group_);
    const std::string_view part = whole.substr(0, end);
    const bool isLast = end == std::string_view::npos;
    // No number is written with zeros before its first group: "0.106" has decimals everywhere.
    const bool leads = !part.empty() && part.size() <= kGroupDigits && part.front() != '0';
    const bool isPlaced = isFirst ? isLast || leads : part.size() == kGroupDigits;
    if (!isPlaced || !AreDigits(part)) return std::nullopt;
    plain += part;
    if (isLast) break;
    whole.remove_prefix(end + group_.size());
  }
  if (separator == std::string_view::npos) return plain;
  const std::string_view fraction = digits.substr(separator + decimal_.size());
  if (!AreDigits(fraction)) return std::nullopt;
  return plain + "." + std::string(fraction);
}

}  // namespace wattlark
