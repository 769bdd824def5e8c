#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace wattlark {

/// One serial port, opened by its COM number. All calls and events happen on the one thread.
class SerialPort {
 public:
  virtual ~SerialPort() = default;
  /// Opens the port; `settings` is baud rate, parity (E, M, N, O or S), data bits and stop bits
  /// joined by "," ("9600,N,8,1"). False leaves it closed, with the reason in `ErrorText`.
  virtual bool Open(int portNumber, const std::string& settings) = 0;
  virtual void Close() = 0;
  virtual bool IsOpen() const = 0;
  /// Every byte that waits; empty when none does. Throws std::runtime_error when the read fails.
  virtual std::vector<std::uint8_t> ReadAll() = 0;
  /// Why the last `Open` failed or the device was lost, in words that say what to do; empty when
  /// nothing is wrong.
  virtual std::string ErrorText() const = 0;

  /// Raised when bytes have arrived.
  std::function<void()> onReceive;
  /// Raised after an open port has closed itself because its device went away.
  std::function<void()> onLost;
};

}  // namespace wattlark
