#include "platform/qt/QtEventPump.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>

namespace wattlark {

QtEventPump::QtEventPump() {
  QCoreApplication::instance()->installEventFilter(this);
}

bool QtEventPump::ProcessEvents() {
  if (IsQuitting()) return false;
  QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return !IsQuitting();
}

bool QtEventPump::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Quit) quitAsked_ = true;
  return QObject::eventFilter(watched, event);
}

// A window may have refused to close, which keeps the application running. Qt does not say so, but
// it starts no event loop once it quits.
bool QtEventPump::IsQuitting() {
  if (!quitAsked_) return false;
  QEventLoop probe;
  QMetaObject::invokeMethod(&probe, &QEventLoop::quit, Qt::QueuedConnection);
  quitAsked_ = probe.exec() != 0;
  return quitAsked_;
}

}  // namespace wattlark
