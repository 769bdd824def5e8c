#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wattlark {

/// Removes blanks and leading and trailing CR and LF.
std::string_view Trim(std::string_view text);
/// Splits at every `separator`; an empty text gives one empty part.
std::vector<std::string_view> Split(std::string_view text, char separator);
/// The text between the first `startMarker` at or behind `startPosition` and the next `endMarker`
/// behind it, with both markers when `includeMarkers`. Empty when either is missing before `limit`,
/// a position in `text` that neither marker may reach across. An empty start marker stands for
/// `startPosition`, an empty end marker for `limit`. Positions count bytes from 0, and case
/// matters.
std::string GetTextBetween(std::string_view text, std::string_view startMarker,
                           std::string_view endMarker, std::size_t startPosition = 0,
                           bool includeMarkers = false, std::size_t limit = std::string_view::npos);
/// Text for comparing names without case: ASCII, Latin (Latin-1 and Latin Extended-A), Greek and
/// Cyrillic capitals become small, and the final sigma the common one; bytes that are not UTF-8
/// stay as they are.
std::string FoldCase(std::string_view utf8);

/// The fewest decimal digits that read back as the same double, with "." and without grouping:
/// plain from 0.0001 to below 1E+15 ("0.1", "500000"), with an exponent otherwise ("1E+308"); both
/// zeros are "0". `value` is finite.
std::string DoubleToText(double value);
/// Appends what `DoubleToText` gives.
void AppendDouble(std::string& text, double value);
/// Reads a finite decimal number with "." or "," as its decimal separator, an optional sign and
/// exponent, white space around it, and nothing else; thousands separators are not accepted. A
/// number too small for a double reads as 0, one too large as nothing.
std::optional<double> TextToDouble(std::string_view text);
/// Reads a decimal integer that lies in [minimum, maximum].
std::optional<std::int64_t> TextToInteger(std::string_view text, std::int64_t minimum,
                                          std::int64_t maximum);
/// "True" or "False" in any letter case, or a number (0 is false); nothing for any other text.
std::optional<bool> TextToBoolean(std::string_view text);

}  // namespace wattlark
