#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "timezone/clsTimeZoneInformation.h"

namespace wattlark {

/// A time zone of the system: a standard rule, and rules of single years where there are any.
struct clsTimeZone {
  std::string DisplayName;
  std::string StandardName;
  std::string DaylightName;
  std::string MapID;
  std::int32_t Index = 0;
  clsTimeZoneInformation StandardRule;
  std::map<std::string, clsTimeZoneInformation> DynamicTZI;  ///< by the year as decimal text
  std::int32_t FirstTZI = 0;  ///< first year that has a rule of its own
  std::int32_t LastTZI = 0;   ///< last one

  /// Adds an empty rule for `year`, or empties the one that is there; valid as long as the zone.
  clsTimeZoneInformation& AddDynamicTZI(std::int32_t year);

  /// The value of the year's rule. Years outside `FirstTZI` to `LastTZI` have the rule of the
  /// nearer end. The standard rule answers for year 0, and where there is no other.
  std::int32_t Bias(std::int32_t year) const { return RuleOf(year).Bias; }
  std::int32_t StandardBias(std::int32_t year) const { return RuleOf(year).StandardBias; }
  std::int32_t DaylightBias(std::int32_t year) const { return RuleOf(year).DaylightBias; }
  const clsSystemTime& StandardDate(std::int32_t year) const { return RuleOf(year).StandardDate; }
  const clsSystemTime& DaylightDate(std::int32_t year) const { return RuleOf(year).DaylightDate; }

  /// Whether the standard rule knows daylight time at all; without it no year has any.
  bool ObserveDST() const { return StandardRule.DaylightDate.wMonth != 0; }

 private:
  const clsTimeZoneInformation& RuleOf(std::int32_t year) const;
};

}  // namespace wattlark
