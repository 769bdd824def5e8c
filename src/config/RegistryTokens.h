#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace wattlark {

/// The small parts of a line of a registry text. What is taken comes off the front of `text`; when
/// it is not there, `text` stays as it is.

void SkipBlanks(std::u16string_view& text);
/// The line without the blanks around it.
std::u16string_view Stripped(std::u16string_view line);
/// Whether only blanks or a comment follow.
bool IsNothing(std::u16string_view rest);
bool Take(std::u16string_view& text, std::u16string_view part);
/// Takes a word of ASCII letters in any case.
bool TakeWord(std::u16string_view& text, std::u16string_view word);
/// Takes one to `most` hexadecimal digits, 8 at most.
std::optional<std::uint32_t> TakeHex(std::u16string_view& text, std::size_t most);

}  // namespace wattlark
