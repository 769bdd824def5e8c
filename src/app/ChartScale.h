#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/RegionalSettings.h"

namespace wattlark {

/// A value axis of round numbers: labels at `lower`, `lower + step` .. `upper`.
struct ValueScale {
  double lower;
  double upper;
  double step;
};

/// The axis that covers 0 and `minimum` to `maximum` in about `steps` (1 or more) steps; 0 to 1
/// where there is nothing to cover. Values that are not finite count as 0.
ValueScale MakeValueScale(double minimum, double maximum, int steps);

/// The axis for values on both sides of 0 with 0 in its middle, covering `largest` either way.
ValueScale MakeCentredScale(double largest, int stepsEachWay);

/// What the axis says at `value`: only the decimals that the step needs, and from a million on the
/// prefixes M, G and T instead of more digits ("750", "0.025", "1.5M").
std::string ValueLabel(const RegionalSettings& regional, const ValueScale& scale, double value);

/// Where the recent chart's time axis of an interval (0..5) has its labels, oldest first: at most
/// `most` (1 or more) of the slots `first` to `last`, on full quarters of a minute, even hours and
/// the like; days are counted back from the last one.
std::vector<std::int64_t> TimeTicks(int interval, std::int64_t first, std::int64_t last, int most);

}  // namespace wattlark
