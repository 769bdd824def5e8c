#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "sim/FrameWriter.h"
#include "sim/MeterModel.h"
#include "sim/Random.h"
#include "sim/Schedule.h"

namespace wattlark {

/// What the receiver's serial line suffers. Rates are probabilities a burst, 0 to 1.
struct LineSettings {
  double garbageRate = 0.0;      ///< garbage bytes in front of the frame
  double badChecksumRate = 0.0;  ///< the frame has a wrong checksum
  double unknownRate = 0.0;      ///< a frame from an address that no meter has comes first
  std::size_t splitMaximum = 0;  ///< frames arrive in pieces of at most so many bytes; 0 = whole
};

/// Bytes that reach the serial port together.
struct Delivery {
  std::int64_t milliseconds = 0;  ///< since the start
  Bytes bytes;
};

/// Everything that the serial line delivers, in order of time, without an end.
/// Deterministic: the same arguments and calls give the same deliveries.
class Simulation {
 public:
  /// `meters` must not be empty, `periodSeconds` must be above 0.
  Simulation(const std::vector<MeterSettings>& meters, const LineSettings& line,
             double periodSeconds, std::uint64_t seed);

  const Delivery& Next();
  void Advance();
  /// Drops what has not been delivered and begins the round of the meters anew at `milliseconds`.
  void Restart(std::int64_t milliseconds);

 private:
  void TakeTurn();
  void Deliver(std::int64_t milliseconds, const Bytes& bytes);

  LineSettings line_;
  Schedule schedule_;
  Random random_;
  std::vector<MeterModel> meters_;
  MeterModel stranger_;
  std::deque<Delivery> waiting_;
  std::int64_t lineFreeAt_ = 0;
};

}  // namespace wattlark
