#pragma once

#include <stdexcept>
#include <utility>

#include "platform/SerialPort.h"

namespace wattlark {

/// A serial port whose bytes, failures and disappearance the test decides.
class ScriptedPort final : public SerialPort {
 public:
  std::vector<std::uint8_t> waiting;  ///< what the next read takes
  bool opens = true;
  std::string readFailure;  ///< when set, every read throws it
  int openCalls = 0;
  int lastPortNumber = 0;
  std::string lastSettings;

  bool Open(int portNumber, const std::string& settings) override {
    ++openCalls;
    lastPortNumber = portNumber;
    lastSettings = settings;
    open_ = opens;
    return open_;
  }
  void Close() override { open_ = false; }
  bool IsOpen() const override { return open_; }
  std::vector<std::uint8_t> ReadAll() override {
    if (!readFailure.empty()) throw std::runtime_error(readFailure);
    return std::exchange(waiting, {});
  }
  std::string ErrorText() const override { return open_ ? "" : "The device is not there."; }

  /// The device goes away.
  void Lose() {
    open_ = false;
    if (onLost) onLost();
  }

 private:
  bool open_ = false;
};

}  // namespace wattlark
