#pragma once

#include "platform/Clock.h"

namespace wattlark {

/// The system's wall clock and a tick count that also runs while the computer sleeps.
class SystemClock : public Clock {
 public:
  /// Cheap: the zone's offset is asked once for every minute of UTC time, so a changed zone shows
  /// within a minute, and a change to or from daylight time at its very moment.
  DateTime Now() const override;
  std::uint32_t Ticks() const override;

 private:
  mutable std::int64_t offsetMinute_ = INT64_MIN;
  mutable std::int64_t offsetMilliseconds_ = 0;
};

}  // namespace wattlark
