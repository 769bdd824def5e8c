#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/DateTime.h"

namespace wattlark {

/// An address that sends frames.
struct HeardMeter {
  std::int16_t address = 0;
  std::uint64_t frames = 0;
  DateTime lastHeard;

  friend bool operator==(const HeardMeter&, const HeardMeter&) = default;
};

/// The addresses that were heard, at most `Most`. Where there are more, the one with the fewest
/// frames goes, and among several the one that was silent longest: noise displaces noise, not a
/// meter.
class HeardMeters {
 public:
  static constexpr std::size_t Most = 64;

  /// A frame with a correct checksum came from `address`.
  void Note(std::int16_t address, DateTime time);
  void Clear() { heard_.clear(); }
  /// By address.
  std::vector<HeardMeter> All() const;

 private:
  // The longest silent one first: clocks are set back, this order is not.
  std::vector<HeardMeter> heard_;
};

}  // namespace wattlark
