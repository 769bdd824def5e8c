#include "config/RegistryUtf16.h"

#include <cstddef>

#include "support/Utf8.h"

namespace wattlark {

namespace {

constexpr bool IsHigh(char16_t unit) {
  return (unit & 0xFC00) == 0xD800;
}
constexpr bool IsLow(char16_t unit) {
  return (unit & 0xFC00) == 0xDC00;
}

}  // namespace

std::u16string RegistryUtf16(std::string_view bytes) {
  std::u16string utf16;
  utf16.reserve(bytes.size());
  while (!bytes.empty()) {
    const Utf8Character character = TakeUtf8Character(bytes);
    if (!character.isValid) {
      utf16 += EscapedByte(character.bytes.front());
    } else if (character.value < 0x10000) {
      utf16 += static_cast<char16_t>(character.value);
    } else {
      const char32_t offset = character.value - 0x10000;
      utf16 += static_cast<char16_t>(0xD800 | offset >> 10);
      utf16 += static_cast<char16_t>(0xDC00 | (offset & 0x3FF));
    }
  }
  return utf16;
}

std::string RegistryBytes(std::u16string_view utf16) {
  std::string bytes;
  bytes.reserve(utf16.size());
  for (std::size_t i = 0; i < utf16.size(); ++i) {
    const char16_t unit = utf16[i];
    if (IsHigh(unit) && i + 1 < utf16.size() && IsLow(utf16[i + 1])) {
      const char32_t high = unit & 0x3FFu;
      AppendUtf8(bytes, 0x10000 + (high << 10 | (utf16[++i] & 0x3FFu)));
    } else if (unit >= 0xDC00 && unit <= 0xDCFF) {
      bytes += static_cast<char>(unit & 0xFF);
    } else {
      AppendUtf8(bytes, unit);
    }
  }
  return bytes;
}

}  // namespace wattlark
