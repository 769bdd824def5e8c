#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "support/RegionalSettings.h"

namespace wattlark {

/// Number of decimals that lets a format choose them by the magnitude of the value.
inline constexpr int AutomaticDecimals = -1;

/// Numbers as the user reads them. `value` equal to `NoValue` or its negative, or not finite, gives
/// `missingText`. More than 99 decimals are written as 99; every negative number of them means
/// automatic. Automatic decimals: with n = log10(|value|) rounded to the nearest integer (halves to
/// even), 0 for n > 3, 1 for 3, 2 for 2, 3 for 1, 4 for 0, 5 below; the value 0 takes the regional
/// default. Rounding is half away from zero on the shortest decimal digits that read back as the
/// value (1.005 gives 1.01 with two decimals, though the double lies slightly below); digits behind
/// those are 0. A result that rounds to zero carries no sign.
std::string FormatNumberAuto(const RegionalSettings& regional, double value,
                             int decimals = AutomaticDecimals, const std::string& missingText = "",
                             bool grouping = true);
std::string FormatCurrencyAuto(const RegionalSettings& regional, double value,
                               int decimals = AutomaticDecimals,
                               const std::string& missingText = "");
/// `value` is a fraction (0.5 is 50 %); automatic decimals: 0 for n > 0, 1 for 0, 2 for -1, 3 for
/// -2, 4 for -3, 5 below.
std::string FormatPercentAuto(const RegionalSettings& regional, double value,
                              int decimals = AutomaticDecimals,
                              const std::string& missingText = "");

enum class UnitForm { Short, Long };

/// `watts` as "450.0 W" or "1.5000 kW" (short; kilowatts above 1000 W) or "9,500 Watts" or
/// "12.000 Kilowatts" (long; kilowatts above 10000 W); "--- W" or "--- Watts" without a value.
std::string FormatPower(const RegionalSettings& regional, double watts,
                        int decimals = AutomaticDecimals, UnitForm form = UnitForm::Short);
/// `wattHours` as "450.0 Wh" or "1.5000 kWh" ("Watt-hours", "Kilowatt-hours" in the long form;
/// kilo above 1000 Wh in both); "--- Wh" or "--- Watt-hours" without a value.
std::string FormatEnergy(const RegionalSettings& regional, double wattHours,
                         int decimals = AutomaticDecimals, UnitForm form = UnitForm::Short);

/// Reads a number as a user types it or as `FormatNumberAuto` and `FormatCurrencyAuto` write it:
/// group separators only between groups of three digits, the currency symbol and blanks around the
/// digits ignored, every kind of blank alike. Digits that have another form than the region's are
/// read with "." as their decimal separator: where the comma separates decimals, "1.234" is 1234
/// but "12.5" is 12.5. Nothing for any other text, exponents included, and for numbers that no
/// double can hold.
std::optional<double> ParseNumber(const RegionalSettings& regional, std::string_view text);

}  // namespace wattlark
