#pragma once

#include <string>
#include <string_view>

namespace wattlark {

struct Utf8Character {
  std::string_view bytes;
  char32_t value = 0;
  bool isValid = false;
};

/// Takes the next character off a text that is not empty; one byte, not valid, where it is not
/// UTF-8.
Utf8Character TakeUtf8Character(std::string_view& text);

/// Appends the bytes of a character up to U+10FFFF. One that is no character, a surrogate, gets the
/// three bytes of its number; `TakeUtf8Character` does not take them for a character.
void AppendUtf8(std::string& text, char32_t character);

}  // namespace wattlark
