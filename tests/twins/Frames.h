#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace wattlark {

using Bytes = std::vector<std::uint8_t>;

/// Frame data between delimiter, length and checksum.
inline Bytes WrapFrame(const Bytes& data, bool wrongChecksum = false) {
  Bytes frame{0x7E, static_cast<std::uint8_t>(data.size() >> 8),
              static_cast<std::uint8_t>(data.size() & 0xFF)};
  unsigned sum = 0;
  for (const std::uint8_t byte : data) {
    frame.push_back(byte);
    sum += byte;
  }
  frame.push_back(static_cast<std::uint8_t>(0xFF - (sum & 0xFF) + (wrongChecksum ? 1 : 0)));
  return frame;
}

struct FrameOptions {
  std::uint16_t mask = 0x2200;  ///< A0 and A4
  std::uint8_t options = 0;
  bool wrongChecksum = false;
};

/// An I/O sample frame of any mask: `words` are the sample words in the order on the wire.
inline Bytes SampleFrame(std::uint16_t address, std::uint8_t sampleCount,
                         const std::vector<std::uint16_t>& words,
                         const FrameOptions& options = {}) {
  Bytes data{0x83};
  const auto word = [&data](std::uint16_t value) {
    data.push_back(static_cast<std::uint8_t>(value >> 8));
    data.push_back(static_cast<std::uint8_t>(value & 0xFF));
  };
  word(address);
  data.push_back(40);  // RSSI
  data.push_back(options.options);
  data.push_back(sampleCount);
  word(options.mask);
  for (const std::uint16_t value : words) word(value);
  return WrapFrame(data, options.wrongChecksum);
}

/// A meter's frame: as many samples of A0 (voltage) as of A4 (current).
inline Bytes MeterFrame(std::uint16_t address, const std::vector<std::uint16_t>& voltage,
                        const std::vector<std::uint16_t>& current,
                        const FrameOptions& options = {}) {
  std::vector<std::uint16_t> words;
  for (std::size_t s = 0; s < voltage.size(); ++s) {
    words.push_back(voltage[s]);
    words.push_back(current[s]);
  }
  return SampleFrame(address, static_cast<std::uint8_t>(voltage.size()), words, options);
}

/// 120 W: two samples of 2 A at 120 V among four.
inline Bytes Frame120W(std::uint16_t address) {
  return MeterFrame(address, {700, 300, 700, 300}, {498, 467, 529, 498});
}

inline Bytes Join(std::initializer_list<Bytes> parts) {
  Bytes whole;
  for (const Bytes& part : parts) whole.insert(whole.end(), part.begin(), part.end());
  return whole;
}

inline Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t to) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
          bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

}  // namespace wattlark
