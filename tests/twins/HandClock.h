#pragma once

#include <stdexcept>
#include <string_view>

#include "platform/Clock.h"

namespace wattlark {

/// The moment of an ISO text in a test's own table: a wrong one is the test's fault.
inline DateTime At(std::string_view iso) {
  const auto moment = DateTime::FromIso(iso);
  if (!moment) throw std::invalid_argument("no date-time: " + std::string(iso));
  return *moment;
}

/// A clock that stands still until the test moves it.
class HandClock final : public Clock {
 public:
  DateTime now = At("2026-11-16T20:10:00");
  std::uint32_t ticks = 1000;

  DateTime Now() const override { return now; }
  std::uint32_t Ticks() const override { return ticks; }
  /// Both readings go on.
  void Advance(std::int64_t milliseconds) {
    now = now.PlusMilliseconds(milliseconds);
    ticks += static_cast<std::uint32_t>(milliseconds);
  }
};

}  // namespace wattlark
