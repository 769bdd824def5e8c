#include "config/RegistryTokens.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

#include "config/RegistryUtf16.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr std::u16string_view kBlanks = u" \t";

}  // namespace

void SkipBlanks(std::u16string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
}

std::u16string_view Stripped(std::u16string_view line) {
  SkipBlanks(line);
  return line.substr(0, line.find_last_not_of(kBlanks) + 1);
}

bool IsNothing(std::u16string_view rest) {
  SkipBlanks(rest);
  return rest.empty() || rest.front() == u';';
}

bool Take(std::u16string_view& text, std::u16string_view part) {
  if (!text.starts_with(part)) return false;
  text.remove_prefix(part.size());
  return true;
}

bool TakeWord(std::u16string_view& text, std::u16string_view word) {
  if (FoldCase(RegistryBytes(text.substr(0, word.size()))) != RegistryBytes(word)) return false;
  text.remove_prefix(word.size());
  return true;
}

std::optional<std::uint32_t> TakeHex(std::u16string_view& text, std::size_t most) {
  std::array<char, 8> digits{};
  std::size_t count = 0;
  while (count < most && count < text.size() && text[count] < 0x80) {
    digits[count] = static_cast<char>(text[count]);
    ++count;
  }
  std::uint32_t number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + count, number, 16);
  if (result.ec != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(result.ptr - digits.data()));
  return number;
}

}  // namespace wattlark
