#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "sim/Random.h"
#include "twins/Frames.h"

namespace wattlark {

inline constexpr std::size_t kSamples = 19;
using Counts = std::array<std::uint16_t, kSamples>;

/// What one frame says: the readings of lines A0 and A4.
struct Message {
  std::uint16_t address = 0;
  Counts voltage{};
  Counts current{};

  bool operator==(const Message&) const = default;
};

/// One frame as sent.
struct SentFrame {
  Message message;
  std::size_t start = 0;  ///< in the stream
  bool isIntact = true;   ///< every byte of it arrived, in a row
};

/// A checksum that a decoder without a check would have taken as right.
struct Bypass {
  std::size_t at = 0;
  std::uint8_t checksum = 0;
};

/// Frames of some meters on a disturbed line, and what became of each.
struct NoisyStream {
  std::vector<std::uint8_t> bytes;
  std::vector<SentFrame> frames;
  std::vector<Bypass> bypasses;  ///< of frames that kept their length
};

inline constexpr std::uint16_t kMeters = 20;

/// `rate` is the share of frames that a disturbance of some kind meets. The current readings of the
/// first two samples hold the frame's number.
inline NoisyStream MakeNoisyStream(std::size_t count, double rate, Random& random) {
  NoisyStream stream;
  stream.bytes.reserve(count * 96);
  const auto noise = [&random] { return static_cast<std::uint8_t>(random.Below(256)); };
  const auto noiseOf = [&](std::uint32_t most) {
    for (std::uint32_t left = 1 + random.Below(most); left > 0; --left) {
      stream.bytes.push_back(noise());
    }
  };
  for (std::size_t number = 0; number < count; ++number) {
    Message message{static_cast<std::uint16_t>(1 + number % kMeters)};
    for (std::size_t s = 0; s < kSamples; ++s) {
      message.voltage[s] = static_cast<std::uint16_t>(300 + random.Below(400));
      message.current[s] = static_cast<std::uint16_t>(random.Below(1024));
    }
    message.current[0] = static_cast<std::uint16_t>(number & 0x3FF);
    message.current[1] = static_cast<std::uint16_t>(number >> 10 & 0x3FF);
    Bytes frame = MeterFrame(message.address, {message.voltage.begin(), message.voltage.end()},
                             {message.current.begin(), message.current.end()});
    const Bytes sent = frame;
    const auto somewhere = [&] {
      return static_cast<std::ptrdiff_t>(random.Below(static_cast<std::uint32_t>(frame.size())));
    };
    if (random.Chance(rate)) {
      switch (random.Below(7)) {
        case 0:  // one bit
          frame[static_cast<std::size_t>(somewhere())] ^=
              static_cast<std::uint8_t>(1U << random.Below(8));
          break;
        case 1:  // some bytes
          for (std::uint32_t n = 1 + random.Below(8); n > 0; --n) {
            frame[static_cast<std::size_t>(somewhere())] = noise();
          }
          break;
        case 2: {  // bytes lost
          const auto first = frame.begin() + somewhere();
          const auto most = static_cast<std::uint32_t>(frame.end() - first);
          frame.erase(first, first + 1 + random.Below(most));
          break;
        }
        case 3:  // bytes too many
          for (std::uint32_t n = 1 + random.Below(4); n > 0; --n) {
            frame.insert(frame.begin() + somewhere(), noise());
          }
          break;
        case 4:  // a burst over the rest of the frame
          for (auto byte = frame.begin() + somewhere(); byte != frame.end(); ++byte) {
            *byte = noise();
          }
          break;
        case 5:  // between two frames
          noiseOf(32);
          break;
        default: {  // a beginning that ends: the sender was interrupted and starts again
          const auto end = frame.begin() + somewhere();
          stream.bytes.insert(stream.bytes.end(), frame.begin(), end);
          break;
        }
      }
    }
    stream.frames.push_back({message, stream.bytes.size(), frame == sent});
    if (frame != sent && frame.size() == sent.size() &&
        std::equal(frame.begin(), frame.begin() + 3, sent.begin())) {
      unsigned sum = 0;
      for (std::size_t i = 3; i + 1 < frame.size(); ++i) sum += frame[i];
      stream.bypasses.push_back(
          {stream.bytes.size() + frame.size() - 1, static_cast<std::uint8_t>(0xFF - (sum & 0xFF))});
    }
    stream.bytes.insert(stream.bytes.end(), frame.begin(), frame.end());
  }
  return stream;
}

}  // namespace wattlark
