#include "support/modFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "support/NoValue.h"
#include "support/NumberReader.h"

namespace wattlark {

namespace {

constexpr int kMostDecimals = 99;

/// A missing value, or one that no number can be written for.
bool IsMissing(double value) {
  return !std::isfinite(value) || std::fabs(value) == NoValue;
}

int Magnitude(double value) {
  return static_cast<int>(std::nearbyint(std::log10(std::fabs(value))));
}

/// `mostAt` is the magnitude from which on there are no decimals; each one below adds a decimal.
int ChooseDecimals(int decimals, double value, int ofZero, int mostAt) {
  if (decimals < 0) {
    constexpr int kMostAutomatic = 5;
    decimals = value == 0 ? ofZero : std::clamp(mostAt - Magnitude(value), 0, kMostAutomatic);
  }
  return std::clamp(decimals, 0, kMostDecimals);
}

/// The digits of a number rounded to `decimals`, the last `decimals` of them behind the separator
/// and at least one before it.
struct RoundedDigits {
  std::string digits;
  bool isZero = true;
};

/// Rounds the shortest digits that stand for the value, and so what a user would call its digits:
/// 1.005 to 1.01, though the double nearest to it lies below. `power` shifts the value by that many
/// decimal places without an inexact multiplication.
RoundedDigits Round(double value, int decimals, int power = 0) {
  std::array<char, 32> buffer;
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value),
                                     std::chars_format::scientific);
  const std::string_view text(buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data()));
  const std::size_t mark = text.find('e');
  const std::size_t exponentStart = mark + (text[mark + 1] == '+' ? 2 : 1);
  int exponent = 0;
  std::from_chars(text.data() + exponentStart, text.data() + text.size(), exponent);

  RoundedDigits result;
  std::string& digits = result.digits;
  digits = text.substr(0, mark);
  std::erase(digits, '.');
  int whole = value == 0 ? 1 : exponent + 1 + power;
  if (whole < 1) {
    digits.insert(0, static_cast<std::size_t>(1 - whole), '0');
    whole = 1;
  }
  const auto kept = static_cast<std::size_t>(whole + decimals);
  const bool roundsUp = kept < digits.size() && digits[kept] >= '5';
  digits.resize(kept, '0');
  if (roundsUp) {
    auto digit = digits.rbegin();
    for (; digit != digits.rend() && *digit == '9'; ++digit) *digit = '0';
    if (digit == digits.rend()) {
      digits.insert(0, 1, '1');
    } else {
      ++*digit;
    }
  }
  result.isZero = digits.find_first_not_of('0') == std::string::npos;
  return result;
}

std::string Punctuate(const RegionalSettings& regional, const std::string& digits, int decimals,
                      bool grouping) {
  const std::size_t whole = digits.size() - static_cast<std::size_t>(decimals);
  std::string text;
  for (std::size_t i = 0; i < whole; ++i) {
    if (grouping && i > 0 && (whole - i) % 3 == 0) text += regional.groupSeparator;
    text += digits[i];
  }
  if (decimals > 0) {
    text += regional.decimalSeparator;
    text.append(digits, whole);
  }
  return text;
}

/// Fills a currency or percent pattern.
std::string FillPattern(const RegionalSettings& regional, std::string_view pattern,
                        const std::string& number) {
  constexpr std::string_view kSymbol = "¤";
  std::string text;
  while (!pattern.empty()) {
    if (pattern.starts_with(kSymbol)) {
      text += regional.currencySymbol;
      pattern.remove_prefix(kSymbol.size());
      continue;
    }
    if (pattern.front() == '#') {
      text += number;
    } else if (pattern.front() == '-') {
      text += regional.negativeSign;
    } else {
      text += pattern.front();
    }
    pattern.remove_prefix(1);
  }
  return text;
}

struct Unit {
  std::string_view shortName;
  std::string_view longName;
  std::string_view shortKiloName;
  std::string_view longKiloName;
  double shortThreshold;  ///< kilo above it
  double longThreshold;
};

constexpr Unit kPower = {"W", "Watts", "kW", "Kilowatts", 1000, 10000};
constexpr Unit kEnergy = {"Wh", "Watt-hours", "kWh", "Kilowatt-hours", 1000, 1000};

std::string FormatUnit(const RegionalSettings& regional, double value, int decimals, UnitForm form,
                       const Unit& unit) {
  const bool isShort = form == UnitForm::Short;
  // Decided first: a thousandth of a missing value would pass for a number.
  const bool isKilo =
      !IsMissing(value) && value > (isShort ? unit.shortThreshold : unit.longThreshold);
  std::string text = FormatNumberAuto(regional, isKilo ? value / 1000 : value, decimals, "---");
  text += ' ';
  text += isKilo ? (isShort ? unit.shortKiloName : unit.longKiloName)
                 : (isShort ? unit.shortName : unit.longName);
  return text;
}

}  // namespace

std::string FormatNumberAuto(const RegionalSettings& regional, double value, int decimals,
                             const std::string& missingText, bool grouping) {
  if (IsMissing(value)) return missingText;
  decimals = ChooseDecimals(decimals, value, regional.defaultDecimals, 4);
  const RoundedDigits rounded = Round(value, decimals);
  const std::string number = Punctuate(regional, rounded.digits, decimals, grouping);
  return value < 0 && !rounded.isZero ? regional.negativeSign + number : number;
}

std::string FormatCurrencyAuto(const RegionalSettings& regional, double value, int decimals,
                               const std::string& missingText) {
  if (IsMissing(value)) return missingText;
  decimals = ChooseDecimals(decimals, value, regional.currencyDecimals, 4);
  const RoundedDigits rounded = Round(value, decimals);
  const bool isNegative = value < 0 && !rounded.isZero;
  return FillPattern(regional, isNegative ? regional.currencyNegative : regional.currencyPositive,
                     Punctuate(regional, rounded.digits, decimals, true));
}

std::string FormatPercentAuto(const RegionalSettings& regional, double value, int decimals,
                              const std::string& missingText) {
  if (IsMissing(value)) return missingText;
  decimals = ChooseDecimals(decimals, value, regional.defaultDecimals, 1);
  const RoundedDigits rounded = Round(value, decimals, 2);
  const std::string text = FillPattern(regional, regional.percentPattern,
                                       Punctuate(regional, rounded.digits, decimals, true));
  return value < 0 && !rounded.isZero ? regional.negativeSign + text : text;
}

std::string FormatPower(const RegionalSettings& regional, double watts, int decimals,
                        UnitForm form) {
  return FormatUnit(regional, watts, decimals, form, kPower);
}

std::string FormatEnergy(const RegionalSettings& regional, double wattHours, int decimals,
                         UnitForm form) {
  return FormatUnit(regional, wattHours, decimals, form, kEnergy);
}

std::optional<double> ParseNumber(const RegionalSettings& regional, std::string_view text) {
  // The symbol may always be left out, so that the first pattern is that of a bare number too.
  const std::array<std::string_view, 9> patterns = {"¤#",
                                                    "#¤",
                                                    "-¤#",
                                                    "-#¤",
                                                    "¤-#",
                                                    "+¤#",
                                                    "+#¤",
                                                    regional.currencyPositive,
                                                    regional.currencyNegative};
  const NumberReader reader(regional);
  for (const std::string_view pattern : patterns) {
    if (const auto value = reader.Read(text, pattern)) return value;
  }
  return std::nullopt;
}

}  // namespace wattlark
