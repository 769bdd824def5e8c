#pragma once

#include <chrono>
#include <string>

namespace wattlark {

/// The service manager that started the program, where one did: it is told of the program's state
/// through the socket that NOTIFY_SOCKET names. Without one, telling does nothing.
class ServiceManager {
 public:
  /// Reads the environment once.
  ServiceManager();

  /// Whether there is somebody to tell.
  bool IsPresent() const { return !socket_.empty(); }
  /// How long the manager waits for a sign of life before it restarts the program; 0 when it waits
  /// for none, or for one of another process.
  std::chrono::microseconds WatchdogTime() const { return watchdogTime_; }

  /// The program does its work from now on.
  void TellReady() const { Send("READY=1"); }
  /// The program has begun to end.
  void TellStopping() const { Send("STOPPING=1"); }
  void TellAlive() const { Send("WATCHDOG=1"); }
  /// One line for whoever asks how the program is doing; of more than one, the first.
  void TellStatus(const std::string& text) const;

 private:
  void Send(const std::string& message) const;

  std::string socket_;
  std::chrono::microseconds watchdogTime_{0};
};

}  // namespace wattlark
