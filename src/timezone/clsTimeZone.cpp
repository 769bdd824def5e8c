#include "timezone/clsTimeZone.h"

namespace wattlark {

clsTimeZoneInformation& clsTimeZone::AddDynamicTZI(std::int32_t year) {
  return DynamicTZI[std::to_string(year)] = clsTimeZoneInformation();
}

const clsTimeZoneInformation& clsTimeZone::RuleOf(std::int32_t year) const {
  if (DynamicTZI.empty() || year == 0) return StandardRule;
  std::int32_t key = year;
  if (year <= FirstTZI) {
    key = FirstTZI;
  } else if (year >= LastTZI) {
    key = LastTZI;
  }
  const auto found = DynamicTZI.find(std::to_string(key));
  return found == DynamicTZI.end() ? StandardRule : found->second;
}

}  // namespace wattlark
