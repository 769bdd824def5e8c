#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <string>

#include "platform/linux/ServiceManager.h"

namespace wattlark {

/// Keeps the service manager informed of a run: that it is ready, how it is doing, and that it is
/// alive. A sign of life means that the tick has run, or that the present one waits in an event
/// loop that works, for a web server say; neither a loop that hangs nor a tick that is not called
/// any more gives one.
class ServiceReport {
 public:
  /// Needs an application object.
  ServiceReport();
  ServiceReport(const ServiceReport&) = delete;
  ServiceReport& operator=(const ServiceReport&) = delete;

  void OnReady() { manager_.TellReady(); }
  void OnStopping() { manager_.TellStopping(); }
  void OnTickBegins() { isInTick_ = true; }
  void OnTickEnds();
  /// Tells the state when it differs from the last one told.
  void ShowStatus(const std::string& text);

 private:
  void TellAlive();

  const ServiceManager manager_;
  QTimer tmrWait_;
  QElapsedTimer sinceSign_;
  bool isInTick_ = false;
  std::string toldStatus_;
};

}  // namespace wattlark
