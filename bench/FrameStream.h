#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace wattlark::bench {

inline constexpr int kAddresses = 100;
inline constexpr int kSamples = 19;
inline constexpr std::size_t kFrameSize = 88;  // mask 0x2200: lines A0 and A4

/// `count` intact frames of 19 samples, from the addresses 1 to `addresses` in turn.
inline std::vector<std::uint8_t> FrameStream(int count, int addresses = kAddresses) {
  std::vector<std::uint8_t> stream;
  stream.reserve(static_cast<std::size_t>(count) * kFrameSize);
  const auto word = [&](int value) {
    stream.push_back(static_cast<std::uint8_t>(value >> 8));
    stream.push_back(static_cast<std::uint8_t>(value));
  };
  for (int i = 0; i < count; ++i) {
    stream.push_back(0x7E);
    word(static_cast<int>(kFrameSize) - 4);
    const std::size_t data = stream.size();
    stream.push_back(0x83);
    word(1 + i % addresses);
    stream.insert(stream.end(), {0x28, 0x00, kSamples});
    word(0x2200);
    for (int s = 0; s < kSamples; ++s) {
      const double phase = 2 * std::numbers::pi * 60 * s / 1000;
      word(512 + static_cast<int>(283 * std::sin(phase)));
      word(498 + static_cast<int>((20 + i % 50) * std::sin(phase)));
    }
    std::uint8_t sum = 0;
    for (std::size_t k = data; k < stream.size(); ++k) {
      sum = static_cast<std::uint8_t>(sum + stream[k]);
    }
    stream.push_back(static_cast<std::uint8_t>(0xFF - sum));
  }
  return stream;
}

}  // namespace wattlark::bench
