#include "support/Utf8.h"

#include <array>
#include <cstddef>

namespace wattlark {

Utf8Character TakeUtf8Character(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t length = first < 0x80             ? 1
                             : (first & 0xE0) == 0xC0 ? 2
                             : (first & 0xF0) == 0xE0 ? 3
                             : (first & 0xF8) == 0xF0 ? 4
                                                      : 0;
  Utf8Character character{text.substr(0, 1), first, length == 1};
  if (length > 1 && length <= text.size()) {
    constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    char32_t value = first & (0x7Fu >> length);
    bool continues = true;
    for (std::size_t i = 1; i < length; ++i) {
      const auto byte = static_cast<unsigned char>(text[i]);
      continues = continues && (byte & 0xC0) == 0x80;
      value = value << 6 | (byte & 0x3F);
    }
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    if (continues && value >= kSmallest[length] && value <= 0x10FFFF && !isSurrogate) {
      character = {text.substr(0, length), value, true};
    }
  }
  text.remove_prefix(character.bytes.size());
  return character;
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto tail = [character](int shift) {
    return static_cast<char>(0x80 | (character >> shift & 0x3F));
  };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += {static_cast<char>(0xC0 | character >> 6), tail(0)};
  } else if (character < 0x10000) {
    text += {static_cast<char>(0xE0 | character >> 12), tail(6), tail(0)};
  } else {
    text += {static_cast<char>(0xF0 | (character >> 18 & 7)), tail(12), tail(6), tail(0)};
  }
}

}  // namespace wattlark
