#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Clock.h"
#include "platform/TimeZoneSource.h"
#include "timezone/TimeZoneRegistry.h"

class QTimeZone;

namespace wattlark {

/// The zone that the system is set to (`TZ`, or the system's own setting), under the name of the
/// IANA zone, as a key of a registry in memory. `MakeTimeZoneRules` says how its rules are written.
class SystemTimeZone final : public TimeZoneSource {
 public:
  /// `clock` gives the present local time and must outlive this object.
  explicit SystemTimeZone(const Clock& clock) : clock_(clock) {}

  /// Writes the rules of ten years before and after the clock's present one. Where the zone data
  /// are missing or contradict the offset that the system's local time has, that offset alone is
  /// served, under a name such as "UTC+05:30". Always answers.
  std::optional<std::string> CurrentZone() override;
  Registry& Zones() override { return registry_; }

 private:
  const Clock& clock_;
  TimeZoneRegistry registry_;
};

/// The zone's offsets during the years (UTC), rounded to minutes.
ZoneOffsets OffsetsOf(const QTimeZone& zone, std::int32_t firstYear, std::int32_t lastYear);

}  // namespace wattlark
