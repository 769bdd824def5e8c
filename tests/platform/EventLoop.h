#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <functional>

namespace wattlark {

/// Turns the event loop until the condition holds; false when it does not within 10 seconds.
inline bool WaitUntil(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(10000);
  QTimer wake;  // for conditions that no event of this process brings about
  wake.start(10);
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

/// Handles what has happened up to now.
inline void TurnEventLoop() {
  QCoreApplication::processEvents();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace wattlark
