#pragma once

#include <cstdint>

namespace wattlark {

/// Watches one meter's power: how long it has been above an upper or below a lower limit, and when
/// the next notice is due. Limits are in watts and in range themselves; times are whole seconds.
class MeterAlarm {
 public:
  bool AlarmActive() const { return active_; }
  /// Ends the out-of-range time. Switching on makes the first notice due as soon as the duration
  /// has passed; switching off clears the time since the last notice.
  void SetAlarmActive(bool active);
  double AlarmUpperLimit() const { return upperLimit_; }
  void SetAlarmUpperLimit(double watts) { upperLimit_ = watts; }
  double AlarmLowerLimit() const { return lowerLimit_; }
  void SetAlarmLowerLimit(double watts) { lowerLimit_ = watts; }
  std::int32_t AlarmDuration() const { return duration_; }
  /// A different value ends the out-of-range time.
  void SetAlarmDuration(std::int32_t seconds);
  std::int32_t AlarmInterval() const { return interval_; }
  /// A different value makes a notice due as soon as it is exceeded.
  void SetAlarmInterval(std::int32_t seconds);

  /// Out of range for longer than the duration.
  bool AlarmTriggered() const { return active_ && outOfRangeSeconds_ > duration_; }
  /// More than the interval has passed since the last notice.
  bool AlarmRepeatDue() const { return active_ && intervalSeconds_ > interval_; }
  void ResetAlarmInterval() { intervalSeconds_ = 0; }

  std::int32_t OutOfRangeSeconds() const { return outOfRangeSeconds_; }
  std::int32_t IntervalSeconds() const { return intervalSeconds_; }

  /// Advances the counters by a reading of `watts`, `seconds` (0 or more) after the previous one.
  void AddReading(double watts, std::int64_t seconds);

 private:
  bool active_ = false;
  double upperLimit_ = 500;
  double lowerLimit_ = 0;
  std::int32_t duration_ = 60;
  std::int32_t interval_ = 600;
  std::int32_t outOfRangeSeconds_ = 0;
  std::int32_t intervalSeconds_ = 600;
};

}  // namespace wattlark
