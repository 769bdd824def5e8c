#include "acquisition/MeterAlarm.h"

#include <algorithm>
#include <limits>

namespace wattlark {

namespace {

// A counter that has run for 68 years stays at its end instead of turning negative.
std::int32_t Advanced(std::int32_t counter, std::int64_t seconds) {
  return static_cast<std::int32_t>(
      std::min<std::int64_t>(std::numeric_limits<std::int32_t>::max(), counter + seconds));
}

}  // namespace

void MeterAlarm::SetAlarmActive(bool active) {
  outOfRangeSeconds_ = 0;
  if (!active) {
    intervalSeconds_ = 0;
  } else if (!active_) {
    intervalSeconds_ = interval_;
  }
  active_ = active;
}

void MeterAlarm::SetAlarmDuration(std::int32_t seconds) {
  if (seconds == duration_) return;
  duration_ = seconds;
  outOfRangeSeconds_ = 0;
}

void MeterAlarm::SetAlarmInterval(std::int32_t seconds) {
  if (seconds == interval_) return;
  interval_ = seconds;
  intervalSeconds_ = seconds;
}

void MeterAlarm::AddReading(double watts, std::int64_t seconds) {
  if (active_) {
    const bool outOfRange = watts > upperLimit_ || watts < lowerLimit_;
    outOfRangeSeconds_ = outOfRange ? Advanced(outOfRangeSeconds_, seconds) : 0;
  }
  intervalSeconds_ = Advanced(intervalSeconds_, seconds);
}

}  // namespace wattlark
