#include "sim/Schedule.h"

#include <algorithm>
#include <cmath>

namespace wattlark {

Schedule::Schedule(std::size_t meterCount, double periodSeconds)
    : meterCount_(meterCount),
      period_(periodSeconds),
      spacing_(std::min(periodSeconds / static_cast<double>(meterCount), 0.25)) {}

Schedule::Turn Schedule::Next() const {
  const double seconds =
      static_cast<double>(round_) * period_ + static_cast<double>(meter_) * spacing_;
  return {meter_, start_ + std::llround(seconds * 1000.0)};
}

void Schedule::Advance() {
  if (++meter_ < meterCount_) return;
  meter_ = 0;
  ++round_;
}

void Schedule::Restart(std::int64_t milliseconds) {
  start_ = milliseconds;
  meter_ = 0;
  round_ = 0;
}

}  // namespace wattlark
