#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace wattlark {

/// A path of more than `longest` characters in at most that many: its start and its file name, with
/// "..." for the folders between them. A name that leaves no room for its folder is cut at its end.
/// Characters are UTF-8 code points; `longest` is at least 8.
std::string CompactPath(std::string_view path, std::size_t longest);
/// Number of characters as `CompactPath` counts them.
std::size_t CountCharacters(std::string_view utf8);

}  // namespace wattlark
