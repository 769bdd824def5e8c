#include "support/CompactPath.h"

#include <algorithm>

namespace wattlark {

namespace {

constexpr std::string_view kEllipsis = "...";
constexpr std::string_view kSeparators = "/\\";

bool StartsCharacter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

std::string_view FirstCharacters(std::string_view utf8, std::size_t count) {
  std::size_t end = 0;
  for (; end < utf8.size(); ++end) {
    if (StartsCharacter(utf8[end]) && count-- == 0) break;
  }
  return utf8.substr(0, end);
}

}  // namespace

std::size_t CountCharacters(std::string_view utf8) {
  return static_cast<std::size_t>(std::ranges::count_if(utf8, StartsCharacter));
}

std::string CompactPath(std::string_view path, std::size_t longest) {
  if (CountCharacters(path) <= longest) return std::string(path);
  const std::size_t separator = path.find_last_of(kSeparators);
  const std::string_view name = separator == std::string_view::npos ? path : path.substr(separator);
  const std::size_t needed = CountCharacters(name) + kEllipsis.size();
  std::string compact;
  if (needed > longest) {
    if (separator != std::string_view::npos) compact = kEllipsis;
    compact += FirstCharacters(name, longest - kEllipsis.size() - compact.size());
    return compact.append(kEllipsis);
  }
  std::string_view start = FirstCharacters(path, longest - needed);
  // Whole folders, unless not even the first of them fits.
  const std::size_t end = start.find_last_of(kSeparators);
  if (end != std::string_view::npos && end > 0) start = start.substr(0, end + 1);
  compact = start;
  return compact.append(kEllipsis).append(name);
}

}  // namespace wattlark
