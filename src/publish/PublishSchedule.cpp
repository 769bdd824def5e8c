#include "publish/PublishSchedule.h"

#include <algorithm>

namespace wattlark {

namespace {

/// No schedule that is set at `now` has a later due time, with any interval that is offered.
DateTime LatestDueTime(DueUnit unit, std::int32_t interval, DateTime now) {
  return unit == DueUnit::Seconds ? now.PlusSeconds(std::max(interval, 3600))
                                  : now.PlusHours(std::max(interval, 24));
}

}  // namespace

DateTime NextDueTime(DueUnit unit, std::int32_t interval, DateTime now) {
  if (interval <= 0) return now;
  if (unit == DueUnit::Seconds) {
    const DateTime base = now.StartOfHour();
    return base.PlusSeconds((base.SecondsTo(now) / interval + 1) * interval);
  }
  const DateTime base = now.StartOfDay();
  return base.PlusHours((base.HoursTo(now) / interval + 1) * interval);
}

void PublishSchedule::Start(const AppSettings& settings, DateTime now) {
  for (auto& destination : destinations_) {
    destination.nextDue = NextDueTime(destination.unit, settings.*destination.interval, now);
  }
}

void PublishSchedule::RunPublishers(const AppSettings& settings, DateTime now) {
  for (auto& destination : destinations_) {
    const std::int32_t interval = settings.*destination.interval;
    if (destination.nextDue > LatestDueTime(destination.unit, interval, now)) {
      destination.nextDue = NextDueTime(destination.unit, interval, now);
    }
    if (!(settings.*destination.enabled) || destination.nextDue > now) continue;
    destination.run(destination.nextDue, true, true);
    destination.nextDue = NextDueTime(destination.unit, interval, now);
  }
}

}  // namespace wattlark
