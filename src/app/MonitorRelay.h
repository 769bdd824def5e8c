#pragma once

#include "app/Monitor.h"

namespace wattlark {

/// Hands everything on to a listener that comes later than the monitor and goes before it; without
/// one it does nothing.
class MonitorRelay final : public MonitorListener {
 public:
  /// Null for none; `listener` must live until it is replaced.
  void SendTo(MonitorListener* listener) { to_ = listener == nullptr ? &nobody_ : listener; }

  void OnInfoText(const std::string& text) override { to_->OnInfoText(text); }
  void OnCommImage(CommImage image) override { to_->OnCommImage(image); }
  void OnError(const std::string& text, DateTime moment) override { to_->OnError(text, moment); }
  bool CanShowNotice() override { return to_->CanShowNotice(); }
  void OnAlarmNotice(const AlarmNotice& notice) override { to_->OnAlarmNotice(notice); }
  void OnReading(const clsKillAWatt& meter, DateTime time) override { to_->OnReading(meter, time); }
  void OnUpdateStatus() override { to_->OnUpdateStatus(); }
  void OnUpdateTimer(bool enabled) override { to_->OnUpdateTimer(enabled); }
  void OnExitApplication() override { to_->OnExitApplication(); }
  bool OnSave(modRegistry& store) override { return to_->OnSave(store); }

 private:
  MonitorListener nobody_;
  MonitorListener* to_ = &nobody_;
};

}  // namespace wattlark
