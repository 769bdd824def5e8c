#pragma once

#include <QTimer>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "app/Monitor.h"
#include "cli/Console.h"
#include "cli/ServiceReport.h"

namespace wattlark {

/// The face of a run without a window: readings on standard output, states, errors and alarm
/// notices on standard error, each once. Drives the update timer.
class HeadlessFace : public MonitorListener {
 public:
  /// `profileFolder` is for the advice that is given.
  HeadlessFace(Console& console, ServiceReport& service, const SerialPort& serial,
               std::string profileFolder);

  /// To be called before the monitor runs; it must outlive the event loop.
  void Attach(Monitor& monitor);
  /// The program is ending: what was shown last stays, and the closing of the port is no event.
  void EndUpdates() {
    isEnding_ = true;
    service_.OnStopping();
  }

  void OnError(const std::string& text, DateTime moment) override;
  void OnAlarmNotice(const AlarmNotice& notice) override;
  void OnReading(const clsKillAWatt& meter, DateTime time) override;
  void OnUpdateStatus() override;
  void OnUpdateTimer(bool enabled) override;

 private:
  enum class State { Receiving, NoPort, NoMeters };

  void TellState();
  std::string StateText(State state) const;
  void TellHeard();
  void PrintFirstReading(const clsKillAWatt& meter, DateTime time);
  std::string StatusText(DateTime now) const;
  void PrintLine(const clsKillAWatt& meter, DateTime now);
  void PrintDueLines(DateTime now);

  Console& console_;
  ServiceReport& service_;
  const SerialPort& serial_;
  std::string profileFolder_;
  Monitor* monitor_ = nullptr;
  QTimer tmrUpdate_;
  bool isEnding_ = false;
  State toldState_ = State::Receiving;
  std::string toldText_;
  std::set<std::int16_t> toldAddresses_;
  std::set<const clsKillAWatt*> printedMeters_;
  std::optional<std::int64_t> printedMinute_;
};

}  // namespace wattlark
