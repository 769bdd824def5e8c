#pragma once

#include <vector>

#include "platform/Desktop.h"

namespace wattlark {

/// Remembers what the program asked of the desktop.
class RecordingDesktop final : public Desktop {
 public:
  std::vector<std::string> waves;
  std::vector<std::string> addresses;
  bool opensAddresses = true;

  void PlayWave(const std::string& file) override { waves.push_back(file); }
  bool OpenURL(const std::string& address) override {
    addresses.push_back(address);
    return opensAddresses;
  }
};

}  // namespace wattlark
