#pragma once

#include <QObject>

#include "platform/HttpClient.h"

namespace wattlark {

/// Runs the events of the application object while the program waits. Waits end for good once the
/// application was told to quit, with `QCoreApplication::quit` or in another way that was noted.
class QtEventPump final : public QObject, public EventPump {
  Q_OBJECT

 public:
  /// Needs an application object.
  QtEventPump();
  bool ProcessEvents() override;
  /// Makes known that the application was told to quit with `QCoreApplication::exit`, which nothing
  /// else shows.
  void NoteExit() { quitAsked_ = true; }
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool IsQuitting();

  bool quitAsked_ = false;  ///< perhaps refused since
};

}  // namespace wattlark
