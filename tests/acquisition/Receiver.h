#pragma once

#include "acquisition/clsXBee.h"
#include "twins/Frames.h"
#include "twins/HandClock.h"

namespace wattlark {

/// A decoder with a clock of its own.
struct Receiver {
  HandClock clock;
  clsXBee decoder{clock};

  bool Read(const Bytes& bytes) { return decoder.ParseBytes(bytes); }
  void ReadEachByte(const Bytes& bytes) {
    for (const std::uint8_t byte : bytes) Read({byte});
  }
  std::uint64_t Completed() const { return decoder.CompletedFrames(); }
  std::uint64_t Decoded() const { return decoder.DecodedFrames(); }
  std::uint64_t Dropped() const { return decoder.DroppedFrames(); }
};

/// Two samples, no byte of which is a delimiter.
inline Bytes TwoSampleFrame(std::uint16_t address) {
  return MeterFrame(address, {700, 300}, {498, 529});
}

inline Bytes Repeated(const Bytes& part, std::size_t times) {
  Bytes whole;
  for (std::size_t i = 0; i < times; ++i) whole.insert(whole.end(), part.begin(), part.end());
  return whole;
}

inline Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t to) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
          bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

}  // namespace wattlark
