#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "support/RegionalSettings.h"

namespace wattlark {

/// Reads typed numbers by patterns of the form that `RegionalSettings` gives for currency: "¤" is
/// the symbol, which may be missing, "#" the digits, "-" or "(" a negative sign, and all else
/// stands for itself. Blanks between the pieces do not matter.
class NumberReader {
 public:
  explicit NumberReader(const RegionalSettings& regional);

  /// The number, when the whole text follows the pattern. Digits that are not in the region's form,
  /// with groups of three digits, are read with "." as decimal separator.
  std::optional<double> Read(std::string_view text, std::string_view pattern) const;

 private:
  bool TakeMinus(std::string_view& rest) const;
  std::optional<double> ReadDigits(std::string_view& rest) const;
  std::optional<std::string> Regional(std::string_view digits) const;

  std::string group_;
  std::string decimal_;
  std::string symbol_;
  std::string minus_;
};

}  // namespace wattlark
