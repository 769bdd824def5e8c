#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "config/AppSettings.h"
#include "support/DateTime.h"

namespace wattlark {

enum class DueUnit { Seconds, Hours };

/// The next moment strictly after `now` that is a whole multiple of `interval` units, counted from
/// the top of the hour (seconds) or from midnight (hours). An interval of 0 or less gives `now`.
DateTime NextDueTime(DueUnit unit, std::int32_t interval, DateTime now);

/// One destination that readings are published to on a schedule of its own.
struct PublishDestination {
  bool AppSettings::*enabled;
  std::int32_t AppSettings::*interval;
  DueUnit unit;
  /// Publishes once, stamped with `timestamp`; reports its own success and errors.
  std::function<bool(DateTime timestamp, bool useAverage, bool quiet)> run;
  DateTime nextDue;  ///< "never" until the schedule starts
};

/// Decides when each destination is due. Destinations run in the order in which they were added.
/// Nothing of it is stored.
class PublishSchedule {
 public:
  void Add(PublishDestination destination) { destinations_.push_back(std::move(destination)); }
  /// Sets every due time, of disabled destinations too.
  void Start(const AppSettings& settings, DateTime now);
  /// Runs every enabled destination that is due, stamped with the slot that fell due, with averages
  /// and quiet errors, and then sets its next slot after `now`. Missed slots are not replayed; the
  /// due time of a disabled destination stays. One that lies further ahead than the schedule sets
  /// any (an hour or a day, or a longer interval) was set by a clock that has been set back since,
  /// and is set anew: publishing would else wait until the clock is there again.
  void RunPublishers(const AppSettings& settings, DateTime now);

  const std::vector<PublishDestination>& Destinations() const { return destinations_; }

 private:
  std::vector<PublishDestination> destinations_;
};

}  // namespace wattlark
