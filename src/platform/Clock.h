#pragma once

#include <cstdint>

#include "support/DateTime.h"

namespace wattlark {

/// Where the program learns the time. Nothing in the core asks the system for it.
class Clock {
 public:
  virtual ~Clock() = default;
  /// The present local date-time.
  virtual DateTime Now() const = 0;
  /// A monotonic count of milliseconds that wraps after 2^32.
  virtual std::uint32_t Ticks() const = 0;
};

}  // namespace wattlark
