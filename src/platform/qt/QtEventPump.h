#pragma once

#include <QObject>

#include "platform/HttpClient.h"

namespace wattlark {

/// Runs the events of the application object while the program waits. Waits end for good once the
/// application was told to quit, with `QCoreApplication::quit` or in the ways that come down to it.
class QtEventPump final : public QObject, public EventPump {
  Q_OBJECT

 public:
  /// Needs an application object.
  QtEventPump();
  bool ProcessEvents() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool IsQuitting();

  bool quitAsked_ = false;  ///< perhaps refused since
};

}  // namespace wattlark
