#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace wattlark {

/// UTF-8 text that does nothing to a terminal but show characters: control characters, line and
/// paragraph separators, marks that change the direction of writing, and bytes that are not UTF-8
/// each become "?".
std::string PrintableText(std::string_view utf8);

/// Columns that a printable text takes on a terminal: two for East Asian wide characters and
/// pictographs, none for combining marks.
std::size_t DisplayWidth(std::string_view utf8);

/// A printable text cut to at most `columns` columns; where something was cut, its last column is
/// "…".
std::string CutToWidth(std::string_view utf8, std::size_t columns);

}  // namespace wattlark
