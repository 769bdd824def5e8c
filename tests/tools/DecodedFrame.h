#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace wattlark {

/// A frame taken apart by the layout of the radio's frames and read by the meter's formulas,
/// independently of the program's own decoder.
struct DecodedFrame {
  bool isWellFormed = false;  ///< delimiter, length, header and checksum of a 19-sample frame
  int address = 0;
  int rssi = 0;
  std::vector<int> voltage;
  std::vector<int> current;

  explicit DecodedFrame(const std::vector<std::uint8_t>& bytes) {
    if (bytes.size() != 88) return;
    unsigned sum = 0;
    for (std::size_t i = 3; i < bytes.size(); ++i) sum += bytes[i];
    isWellFormed = bytes[0] == 0x7E && bytes[1] == 0 && bytes[2] == 84 && bytes[3] == 0x83 &&
                   bytes[8] == 19 && bytes[9] == 0x22 && bytes[10] == 0x00 && (sum & 0xFF) == 0xFF;
    address = bytes[4] * 256 + bytes[5];
    rssi = bytes[6];
    for (std::size_t i = 11; i + 4 < bytes.size(); i += 4) {
      voltage.push_back(bytes[i] * 256 + bytes[i + 1]);
      current.push_back(bytes[i + 2] * 256 + bytes[i + 3]);
    }
  }

  double Volts(double voltsPerCount) const {
    const auto [low, high] = std::minmax_element(voltage.begin(), voltage.end());
    return (*high - *low) * voltsPerCount / 2.82842712474619;
  }

  double Watts(double voltsPerCount) const {
    const auto [low, high] = std::minmax_element(voltage.begin(), voltage.end());
    const int offset = (*high + *low) / 2;
    double sum = 0.0;
    for (std::size_t s = 1; s + 1 < voltage.size(); ++s)
      sum += (voltage[s] - offset) * voltsPerCount * (current[s] - 498) / 15.5;
    return std::max(sum / static_cast<double>(voltage.size()), 0.0);
  }
};

}  // namespace wattlark
