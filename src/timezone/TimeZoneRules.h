#pragma once

#include <cstdint>
#include <vector>

#include "support/DateTime.h"
#include "timezone/clsTimeZoneInformation.h"

namespace wattlark {

struct OffsetChange {
  DateTime utc;
  std::int32_t offset = 0;  ///< minutes that local time is ahead of UTC from then on
};

/// What the system's zone data say of a span of years.
struct ZoneOffsets {
  std::int32_t firstOffset = 0;       ///< minutes, in force before the first change
  std::vector<OffsetChange> changes;  ///< in order of time
};

/// A zone's rules in the form of the registry: the standard rule, and one rule a year.
struct TimeZoneRules {
  clsTimeZoneInformation standard;
  std::int32_t firstYear = 0;
  std::vector<clsTimeZoneInformation> years;
};

/// Writes offsets as rules with which `LocalToUTC` is right.
///
/// `LocalToUTC` knows one bias for all years, and for each year one span with another bias. So the
/// words are taken freely: "daylight time" is whatever span of a year differs from the bias for all
/// years, with any difference, and its dates are absolute ones in each year's own rule.
/// - Where daylight time spans the new year, summer time is the bias for all years, and the winter
///   is the span, one hour *behind* it. The same rule serves zones whose winter time is the
///   exception by law.
/// - A year that is wholly at another offset than the bias for all years is one span from new year
///   to new year, so years on either side of a change of the standard offset each have theirs.
/// - A year with more changes than one span can show, or offsets that leave the bias for all years
///   no place, cannot be written whole. The present year comes first: the bias and the span are
///   chosen such that `now` is right, and as much of the present year as possible, and only then of
///   the other years. Rules must therefore be made anew for each conversion, which is then right
///   whatever the zone does.
/// Local times in a repeated hour count as those before the clocks went back, as daylight time does
/// in `LocalToUTC`. Spans that begin or end where the clocks go forward do so a second into the
/// missing hour, so that the tolerance of `IsDaylightTime` reaches no time that exists.
///
/// `firstYear` to `lastYear` (1 to 9998) is not empty; for a `now` (local) outside, the nearest of
/// them counts as the present year.
TimeZoneRules MakeTimeZoneRules(const ZoneOffsets& zone, std::int32_t firstYear,
                                std::int32_t lastYear, DateTime now);

}  // namespace wattlark
