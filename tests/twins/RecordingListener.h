#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/Monitor.h"

namespace wattlark {

/// Remembers what a monitor told its face.
class RecordingListener final : public MonitorListener {
 public:
  std::vector<std::string> infoTexts;
  std::vector<CommImage> commImages;
  std::vector<std::string> errors;
  std::vector<AlarmNotice> notices;
  std::vector<std::string> readings;  ///< names of the meters
  std::vector<bool> timerChanges;
  bool showsNotices = true;
  std::function<void()> duringStatusUpdate;
  std::function<void()> duringReading;

  void OnInfoText(const std::string& text) override { infoTexts.push_back(text); }
  void OnCommImage(CommImage image) override { commImages.push_back(image); }
  void OnError(const std::string& text, DateTime /*moment*/) override { errors.push_back(text); }
  bool CanShowNotice() override { return showsNotices; }
  void OnAlarmNotice(const AlarmNotice& notice) override { notices.push_back(notice); }
  void OnReading(const clsKillAWatt& meter, DateTime /*time*/) override {
    readings.push_back(meter.Name());
    if (duringReading) duringReading();
  }
  void OnUpdateStatus() override {
    if (duringStatusUpdate) duringStatusUpdate();
  }
  int exits = 0;
  void OnExitApplication() override { ++exits; }
  void OnUpdateTimer(bool enabled) override { timerChanges.push_back(enabled); }
};

}  // namespace wattlark
