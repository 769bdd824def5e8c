#pragma once

#include <string>

namespace wattlark {

/// What the program needs of the desktop around it.
class Desktop {
 public:
  virtual ~Desktop() = default;
  /// Starts playing a sound file and returns at once; a missing file plays nothing.
  virtual void PlayWave(const std::string& file) = 0;
  /// Opens a web address with the system's default program; false when that is not possible.
  virtual bool OpenURL(const std::string& address) = 0;
};

}  // namespace wattlark
