#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace wattlark {

/// Turns the signals that ask a process to end (SIGINT, SIGTERM, SIGHUP) into one call from the
/// event loop, and lets writing to a closed pipe fail instead of ending the process. A SIGHUP that
/// was ignored at the start ("nohup") stays ignored. At most one object at a time; its end restores
/// what was in force before.
class UnixSignals {
 public:
  /// Needs an application object. Throws std::runtime_error when the system refuses. A signal that
  /// comes before the event loop runs is not lost.
  explicit UnixSignals(std::function<void()> onQuit);
  ~UnixSignals();
  UnixSignals(const UnixSignals&) = delete;
  UnixSignals& operator=(const UnixSignals&) = delete;

 private:
  struct Handlers;

  void Drain();

  std::function<void()> onQuit_;
  std::unique_ptr<Handlers> handlers_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace wattlark
