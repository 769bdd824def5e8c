#include "publish/PublishSchedule.h"

namespace wattlark {

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
    if (!(settings.*destination.enabled) || destination.nextDue > now) continue;
    destination.run(destination.nextDue, true, true);
    destination.nextDue = NextDueTime(destination.unit, settings.*destination.interval, now);
  }
}

}  // namespace wattlark
