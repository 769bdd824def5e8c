#include "support/DisplayText.h"

#include <algorithm>
#include <array>

#include "support/Utf8.h"

namespace wattlark {

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr std::array kUnprintable = {
    Range{0x0000, 0x001F}, Range{0x007F, 0x009F}, Range{0x061C, 0x061C}, Range{0x200E, 0x200F},
    Range{0x2028, 0x202E}, Range{0x2066, 0x2069}, Range{0xFEFF, 0xFEFF},
};
constexpr std::array kCombining = {
    Range{0x0300, 0x036F}, Range{0x0483, 0x0489}, Range{0x0591, 0x05BD}, Range{0x064B, 0x065F},
    Range{0x093C, 0x093C}, Range{0x0941, 0x0948}, Range{0x094D, 0x094D}, Range{0x0E31, 0x0E31},
    Range{0x0E34, 0x0E3A}, Range{0x0E47, 0x0E4E}, Range{0x1AB0, 0x1AFF}, Range{0x1DC0, 0x1DFF},
    Range{0x200B, 0x200D}, Range{0x20D0, 0x20FF}, Range{0xFE00, 0xFE0F}, Range{0xFE20, 0xFE2F},
};
constexpr std::array kWide = {
    Range{0x1100, 0x115F},   Range{0x231A, 0x231B},   Range{0x23E9, 0x23EC},
    Range{0x2614, 0x2615},   Range{0x26A1, 0x26A1},   Range{0x2E80, 0x303E},
    Range{0x3041, 0x33FF},   Range{0x3400, 0x4DBF},   Range{0x4E00, 0x9FFF},
    Range{0xA000, 0xA4CF},   Range{0xAC00, 0xD7A3},   Range{0xF900, 0xFAFF},
    Range{0xFE30, 0xFE4F},   Range{0xFF00, 0xFF60},   Range{0xFFE0, 0xFFE6},
    Range{0x1F300, 0x1F64F}, Range{0x1F680, 0x1F6FF}, Range{0x1F900, 0x1F9FF},
    Range{0x20000, 0x3FFFD},
};

template <std::size_t N>
bool IsIn(const std::array<Range, N>& ranges, char32_t character) {
  return std::any_of(ranges.begin(), ranges.end(), [character](const Range& range) {
    return range.first <= character && character <= range.last;
  });
}

std::size_t WidthOf(const Utf8Character& character) {
  if (IsIn(kCombining, character.value)) return 0;
  return IsIn(kWide, character.value) ? 2 : 1;
}

}  // namespace

std::string PrintableText(std::string_view utf8) {
  std::string text;
  while (!utf8.empty()) {
    const Utf8Character character = TakeUtf8Character(utf8);
    if (character.isValid && !IsIn(kUnprintable, character.value)) {
      text += character.bytes;
    } else {
      text += '?';
    }
  }
  return text;
}

std::size_t DisplayWidth(std::string_view utf8) {
  std::size_t width = 0;
  while (!utf8.empty()) width += WidthOf(TakeUtf8Character(utf8));
  return width;
}

std::string CutToWidth(std::string_view utf8, std::size_t columns) {
  if (DisplayWidth(utf8) <= columns) return std::string(utf8);
  if (columns == 0) return {};
  std::string text;
  std::size_t width = 0;
  while (!utf8.empty()) {
    const Utf8Character character = TakeUtf8Character(utf8);
    width += WidthOf(character);
    if (width > columns - 1) break;
    text += character.bytes;
  }
  return text + "…";
}

}  // namespace wattlark
