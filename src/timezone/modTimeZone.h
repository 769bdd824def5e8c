#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "config/modRegistry.h"
#include "platform/TimeZoneSource.h"
#include "support/DateTime.h"
#include "timezone/clsTimeZone.h"

namespace wattlark {

/// The key of a zone below the hive `LocalMachine`; blanks around the name do not count.
std::string TimeZoneKeyPath(const std::string& name);

/// The zone as the registry has it. A missing name gives a zone of empty texts and zero rules, with
/// which local time counts as UTC. A rule that is missing or of a wrong length ends the reading,
/// and what was read before it stands; missing texts are no obstacle.
clsTimeZone GetTimeZoneByName(const modRegistry& registry, const std::string& name);
/// The zone in force now; nothing when the system does not say.
std::optional<clsTimeZone> GetCurrentTimeZone(TimeZoneSource& source);

/// The local time at which a rule's date takes effect in `year`; "never" when the rule has none or
/// one that does not exist.
DateTime TransitionDate(std::int32_t year, const clsSystemTime& rule);
/// Whether a local time counts as daylight time. Daylight time that spans the new year is not seen.
bool IsDaylightTime(DateTime local, const clsTimeZone& zone, bool repeatedHourIsStandard);
/// Times in the repeated hour count as daylight time; "never" stays "never".
DateTime LocalToUTC(DateTime local, const clsTimeZone& zone);

}  // namespace wattlark
