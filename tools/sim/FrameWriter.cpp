#include "sim/FrameWriter.h"

#include <algorithm>
#include <numeric>

namespace wattlark {
namespace {

constexpr std::uint8_t kStartDelimiter = 0x7E;
constexpr std::uint8_t kIoSamplesFrom16BitAddress = 0x83;
constexpr std::uint16_t kLinesA0AndA4 = 0x2200;
constexpr std::size_t kHeaderLength = 3;

void AppendWord(Bytes& bytes, std::uint16_t word) {
  bytes.push_back(static_cast<std::uint8_t>(word >> 8));
  bytes.push_back(static_cast<std::uint8_t>(word & 0xFF));
}

}  // namespace

Bytes EncodeFrame(const Burst& burst) {
  Bytes data;
  data.push_back(kIoSamplesFrom16BitAddress);
  AppendWord(data, burst.address);
  data.push_back(burst.rssi);
  data.push_back(0);
  data.push_back(static_cast<std::uint8_t>(burst.samples.size()));
  AppendWord(data, kLinesA0AndA4);
  for (const Sample& sample : burst.samples) {
    AppendWord(data, sample.voltage);
    AppendWord(data, sample.current);
  }

  Bytes frame;
  frame.reserve(kHeaderLength + data.size() + 1);
  frame.push_back(kStartDelimiter);
  AppendWord(frame, static_cast<std::uint16_t>(data.size()));
  frame.insert(frame.end(), data.begin(), data.end());
  const unsigned sum = std::accumulate(data.begin(), data.end(), 0U);
  frame.push_back(static_cast<std::uint8_t>(0xFF - (sum & 0xFF)));
  return frame;
}

void SpoilChecksum(Bytes& frame, Random& random) {
  frame.back() = static_cast<std::uint8_t>(frame.back() + 1 + random.Below(255));
}

Bytes MakeGarbage(Random& random) {
  Bytes garbage(1 + random.Below(32));
  for (std::uint8_t& byte : garbage) {
    const std::uint32_t value = random.Below(255);
    byte = static_cast<std::uint8_t>(value < kStartDelimiter ? value : value + 1);
  }
  return garbage;
}

std::vector<Bytes> Split(const Bytes& bytes, std::size_t maximum, Random& random) {
  if (maximum == 0) return {bytes};
  std::vector<Bytes> pieces;
  for (std::size_t begin = 0; begin < bytes.size();) {
    const std::size_t left = bytes.size() - begin;
    const std::size_t length =
        std::min<std::size_t>(left, 1 + random.Below(static_cast<std::uint32_t>(maximum)));
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(begin);
    pieces.emplace_back(first, first + static_cast<std::ptrdiff_t>(length));
    begin += length;
  }
  return pieces;
}

}  // namespace wattlark
