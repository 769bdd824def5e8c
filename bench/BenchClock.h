#pragma once

#include "platform/Clock.h"

namespace wattlark::bench {

/// A clock that stands still until it is moved.
class BenchClock : public Clock {
 public:
  DateTime Now() const override { return now; }
  std::uint32_t Ticks() const override { return ticks; }
  void Advance(std::int64_t milliseconds) {
    now = now.PlusMilliseconds(milliseconds);
    ticks += static_cast<std::uint32_t>(milliseconds);
  }
  DateTime now = *DateTime::FromIso("2026-11-16T20:10:00");
  std::uint32_t ticks = 1000;
};

}  // namespace wattlark::bench
