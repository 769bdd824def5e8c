#pragma once

#include <span>
#include <utility>

#include "platform/Clock.h"
#include "platform/SerialPort.h"

namespace wattlark {

/// A serial port that delivers the reads of a capture, each as one read.
class CapturePort final : public SerialPort {
 public:
  void Deliver(std::span<const std::uint8_t> bytes) { waiting_.assign(bytes.begin(), bytes.end()); }

  bool Open(int /*portNumber*/, const std::string& /*settings*/) override {
    isOpen_ = true;
    return true;
  }
  void Close() override { isOpen_ = false; }
  bool IsOpen() const override { return isOpen_; }
  std::vector<std::uint8_t> ReadAll() override { return std::exchange(waiting_, {}); }
  std::string ErrorText() const override { return {}; }

 private:
  std::vector<std::uint8_t> waiting_;
  bool isOpen_ = false;
};

/// The clock of a capture: it shows the moment of the present line.
class CaptureClock final : public Clock {
 public:
  void Set(DateTime now, std::uint32_t ticks) {
    now_ = now;
    ticks_ = ticks;
  }
  DateTime Now() const override { return now_; }
  std::uint32_t Ticks() const override { return ticks_; }

 private:
  DateTime now_;
  std::uint32_t ticks_ = 0;
};

}  // namespace wattlark
