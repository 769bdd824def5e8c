#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "app/CaptureReader.h"
#include "app/Monitor.h"
#include "cli/CapturePort.h"

namespace wattlark {

/// A monitor that lives through a capture: the lines are its clock and its serial port. Demo mode,
/// publishing over the web and the update check stay out, whatever the profile says; CSV rows go to
/// the given file alone.
class ReplaySession final : private MonitorListener {
 public:
  /// `registry` must outlive this object. What goes wrong with the profile is told in `messages`.
  ReplaySession(Registry& registry, const RegionalSettings& regional, const Capture& capture,
                const std::string& csvFilenameDefault, std::ostream& messages);
  ~ReplaySession() override;

  /// Loads the profile at the time of the first line; false when its store could not be read.
  bool Load() { return monitor_.Load(); }
  /// Replays the whole capture. `csvFile` is appended to at the profile's interval; empty for none.
  void Run(const Capture& capture, const std::string& csvFile);
  /// Saves everything as a clean exit does; false, with the reason in `Errors`, when that failed.
  bool Save() { return monitor_.Unload(); }

  const ProfileData& Profile() const { return monitor_.Profile(); }
  const RegionalSettings& Regional() const { return monitor_.Regional(); }
  FrameCounts Frames() const { return monitor_.Frames(); }
  /// The present line's time; "never" before the first one and without any.
  DateTime Now() const { return clock_.Now(); }
  const std::vector<std::string>& Errors() const { return errors_; }
  const std::vector<AlarmNotice>& Notices() const { return notices_; }

 private:
  class Outside;

  void OnError(const std::string& text, DateTime moment) override;
  void OnAlarmNotice(const AlarmNotice& notice) override;

  CaptureClock clock_;
  CapturePort port_;
  std::unique_ptr<Outside> outside_;
  std::vector<std::string> errors_;
  std::vector<AlarmNotice> notices_;
  Monitor monitor_;
};

}  // namespace wattlark
