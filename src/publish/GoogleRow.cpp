#include "publish/GoogleRow.h"

#include <cstdint>

#include "publish/WebText.h"
#include "support/Utf8.h"
#include "support/modFormat.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr const char* kRowNamespace = "http://schemas.google.com/spreadsheets/2006/extended";

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range kNameStart[] = {
    {'A', 'Z'},       {'_', '_'},       {'a', 'z'},       {0xC0, 0xD6},     {0xD8, 0xF6},
    {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F},
    {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};
constexpr Range kNameRest[] = {
    {'-', '-'}, {'.', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040},
};

template <std::size_t N>
bool IsIn(const Range (&ranges)[N], char32_t c) {
  for (const Range& range : ranges) {
    if (c >= range.first && c <= range.last) return true;
  }
  return false;
}

/// Takes the first character off the text; 0, which no name holds, when it is not UTF-8.
char32_t TakeCharacter(std::string_view& text) {
  const Utf8Character character = TakeUtf8Character(text);
  return character.isValid ? character.value : 0;
}

/// Whether the text can stand behind a prefix as the name of an XML element.
bool IsElementName(std::string_view text) {
  if (text.empty() || !IsIn(kNameStart, TakeCharacter(text))) return false;
  while (!text.empty()) {
    const char32_t c = TakeCharacter(text);
    if (!IsIn(kNameStart, c) && !IsIn(kNameRest, c)) return false;
  }
  return true;
}

/// The Latin capitals of Vietnamese, Romanian, Welsh and others, which folding for comparisons
/// leaves alone because stores hold folded names. Each stands right before its small letter.
bool IsRareCapital(char32_t c) {
  const auto between = [c](char32_t first, char32_t last) { return c >= first && c <= last; };
  if (between(0x1CD, 0x1DC)) return c % 2 == 1;
  return c % 2 == 0 && (between(0x1DE, 0x1EF) || between(0x1F8, 0x21F) || between(0x222, 0x233) ||
                        between(0x1E00, 0x1E95) || between(0x1EA0, 0x1EFF));
}

/// Lower case that keeps the final sigma, which folding for comparisons does not.
std::string LowerCase(std::string_view text) {
  constexpr std::string_view kFinalSigma = "ς";
  std::string lower;
  for (;;) {
    const std::size_t sigma = text.find(kFinalSigma);
    lower += FoldCase(text.substr(0, sigma));
    if (sigma == std::string_view::npos) break;
    lower += kFinalSigma;
    text.remove_prefix(sigma + kFinalSigma.size());
  }
  std::string_view rest = lower;
  while (!rest.empty()) {
    const char32_t c = TakeCharacter(rest);
    if (c == 0) break;
    if (IsRareCapital(c)) ++lower[lower.size() - rest.size() - 1];
  }
  return lower;
}

std::string Element(const std::string& name, const std::string& content) {
  return "  <gsx:" + name + " xmlns:gsx='" + kRowNamespace + "'>" + EscapeXml(content) +
         "</gsx:" + name + ">\r\n";
}

}  // namespace

std::string GoogleColumn(std::string_view meterName) {
  std::string column = LowerCase(meterName);
  std::erase(column, ' ');
  return IsElementName(column) ? column : std::string();
}

std::string GoogleRow(const AppSettings& settings, const MeterCollection& meters,
                      const RegionalSettings& regional, DateTime timestamp, bool useAverage) {
  std::string row = "<entry xmlns='http://www.w3.org/2005/Atom'>\r\n" +
                    Element("timestamp", FormatDateAndTime(regional, timestamp));
  for (const auto& meter : meters) {
    const std::string column = GoogleColumn(meter->Name());
    if (column.empty()) continue;
    const double watts =
        useAverage ? meter->AverageDemand(settings.GoogleInterval) : meter->ShownWatts();
    row += Element(column, FormatNumberAuto(regional, watts, AutomaticDecimals, "", false));
  }
  return row + "</entry>";
}

}  // namespace wattlark
