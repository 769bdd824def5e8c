#pragma once

#include <string>
#include <string_view>

namespace wattlark {

/// Names and texts of the store are bytes, meant to be UTF-8; in a registry text they are UTF-16.
/// These two lose nothing on the way there and back: a byte that is not UTF-8 becomes the surrogate
/// U+DC00 plus that byte, which never stands alone in UTF-16 that is sound.

std::u16string RegistryUtf16(std::string_view bytes);
/// Surrogates without a partner from U+DC00 to U+DCFF become the byte they stand for, others the
/// three bytes of their number.
std::string RegistryBytes(std::u16string_view utf16);

/// The surrogate that stands for a byte.
constexpr char16_t EscapedByte(char byte) {
  return static_cast<char16_t>(0xDC00 | static_cast<unsigned char>(byte));
}

}  // namespace wattlark
