#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "acquisition/HeardMeters.h"
#include "acquisition/clsXBee.h"
#include "app/ErrorList.h"
#include "app/ProfileData.h"
#include "app/StatusViews.h"
#include "config/modRegistry.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/Prompts.h"
#include "platform/RandomSource.h"
#include "platform/SerialPort.h"
#include "publish/PublishSchedule.h"

namespace wattlark {

class CaptureWriter;
class SoftwareUpdate;
class WebPublishers;
enum class PublishTarget;
struct PublishResult;
struct WebPorts;

/// Picture of the status bar's "COMM" panel.
enum class CommImage { Receiving, Idle };

struct AlarmNotice {
  DateTime time;
  std::string meter;
  std::string line;  ///< "Kitchen: Using 612.4 Watts"
  std::string text;  ///< the lines of this tick so far, each with CR LF
};

/// Hears of what changes in a `Monitor`; every face of the program is one. All calls come on the
/// one thread, from within the monitor's operations. The default does nothing.
class MonitorListener {
 public:
  virtual ~MonitorListener() = default;
  /// New text of the status bar's "INFO" panel.
  virtual void OnInfoText(const std::string& /*text*/) {}
  virtual void OnCommImage(CommImage /*image*/) {}
  /// A failure of background work, after it was added to the error list.
  virtual void OnError(const std::string& /*text*/, DateTime /*moment*/) {}
  /// Whether an alarm notice, or news of an update, may come up now: no other window of the program
  /// is open.
  virtual bool CanShowNotice() { return true; }
  virtual void OnAlarmNotice(const AlarmNotice& /*notice*/) {}
  /// A meter has taken a reading from the radio.
  virtual void OnReading(const clsKillAWatt& /*meter*/, DateTime /*time*/) {}
  /// Everything on screen, the tray icon included, is to be refreshed.
  virtual void OnUpdateStatus() {}
  /// `tmrUpdate` is to run, 1000 ms from now, or to stop.
  virtual void OnUpdateTimer(bool /*enabled*/) {}
  /// The user downloads a newer version: the program is to end, so that it can be replaced.
  virtual void OnExitApplication() {}
  /// Everything is being saved: what a face keeps of its own goes into the same transaction. False
  /// fails the whole save.
  virtual bool OnSave(modRegistry& /*store*/) { return true; }
};

/// Text of the status bar's "INFO" panel while there are errors to read.
inline constexpr const char* ErrorsInvitation = "Click here to view errors...";

/// How many frames the receive routine has seen.
struct FrameCounts {
  std::uint64_t completed = 0;
  std::uint64_t decoded = 0;
  std::uint64_t delivered = 0;
};

/// The program without a face: the profile's settings, meters and Total, the frame decoder, the
/// publishing schedule, the error list, the receive routine and the update cycle. Single-threaded;
/// the busy flag keeps serial bytes in the port while a tick runs or a meter processes a frame.
class Monitor {
 public:
  /// What the monitor needs of the outside; all of it must outlive the monitor.
  struct Ports {
    Clock& clock;
    SerialPort& serial;
    Registry& registry;
    RandomSource& random;
    Desktop& desktop;
    Prompts& prompts;
    const WebPorts* web = nullptr;  ///< null keeps this run off the web
  };
  struct Options {
    std::string csvFilenameDefault;
    std::string noticeSoundFile;  ///< played with an alarm notice
    std::int32_t checkpointSeconds = 300;
    std::optional<bool> demoMode = {};    ///< for this run, whatever the stored setting says
    std::string versionFileAddress = {};  ///< unless the store names another one; empty for none
  };

  Monitor(const Ports& ports, const RegionalSettings& regional, Options options,
          MonitorListener& listener);
  ~Monitor();
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  /// Migrates older settings, then loads settings, meters and the Total. What could not be read is
  /// told through `Prompts`; loading goes on. False when the store itself could not be read: the
  /// program must end then, because a later save would write defaults over it.
  bool Load();
  /// Opens the port, sets the first due times, enables the update timer.
  void StartRunning();
  /// One tick of the update timer.
  void UpdateCycle();
  /// The port's receive event: takes every waiting byte, unless busy.
  void ReceiveXBeeData();
  /// Disables the timer for good and closes the port; nothing is saved.
  void StopRunning();
  /// Disables the timer, saves everything in one transaction and closes the port. False when saving
  /// failed; the store then holds what it held before.
  bool Unload();
  /// Saves everything in one transaction; a failure is reported once until saving works again.
  /// Nothing is saved over a store that could not be loaded.
  bool SaveEverything();
  /// Does the same while the program runs, where the store can write less of the meters.
  bool SaveProgress();

  /// Appends one line to the CSV log, stamped with `timestamp`; the status bar, or the error list,
  /// says how that went. True when the line was written.
  bool WriteCSVLog(DateTime timestamp, bool useAverage, bool quiet);
  /// Whether the destinations on the web can be reached at all in this run.
  bool UsesWeb() const { return web_ != nullptr; }
  /// Publishes the current loads to one destination now, whatever the schedule says. Pending events
  /// run while a web server is waited for; only when not `quiet` is the user asked for missing
  /// credentials, and shown an error in a message box.
  PublishResult PublishNow(PublishTarget target, bool quiet);

  /// Looks for a newer version of the program and tells the user; the quiet check at the start when
  /// `AutoUpdate` is on, or, with `showUpToDate`, one that the user asked for. Pending events run
  /// while the server is waited for. The face hears when the program is to end.
  void CheckForUpdates(bool showUpToDate);

  /// Opens the port with the present settings unless demo mode is on; a failure leaves it closed.
  void OpenPort();
  void ClosePort();
  /// Takes up what has changed of the port.
  void RestartPort();
  bool IsDemoMode() const { return options_.demoMode.value_or(profile_.Settings().DemoMode); }
  /// Demo mode was given for this run, whatever the setting says.
  bool IsDemoModeGiven() const { return options_.demoMode.has_value(); }
  bool IsFlowing() const { return ports_.serial.IsOpen() || IsDemoMode(); }

  /// Adds a line to the error list. A `moment` of "never" means now. The status bar then invites a
  /// look; without `toStatusBar` a message box shows the text as well.
  void ReportError(const std::string& text, DateTime moment = DateTime(), bool toStatusBar = true);
  void SetInfoText(const std::string& text);
  /// The user has looked at the error list, or clicked it away.
  void ClearErrors();
  const ErrorList& Errors() const { return errors_; }

  /// Records reads and ticks from now on; null ends it. `writer` must outlive its use here.
  void RecordTo(CaptureWriter* writer) { recorder_ = writer; }
  /// Sets the CSV destination's first due time from `now`, for a replay that does not start
  /// running.
  void StartSchedule(DateTime now) { schedule_.Start(profile_.Settings(), now); }

  ProfileData& Profile() { return profile_; }
  const ProfileData& Profile() const { return profile_; }
  const RegionalSettings& Regional() const { return regional_; }
  const PublishSchedule& Schedule() const { return schedule_; }
  FrameCounts Frames() const;
  /// The addresses without a meter that were heard since the port was opened.
  const HeardMeters& Heard() const { return heard_; }
  /// Why the port is not open, in words; empty when nothing is wrong with it.
  std::string PortProblem() const { return ports_.serial.ErrorText(); }
  bool IsUpdateTimerEnabled() const { return timerEnabled_; }
  DateTime Now() const { return ports_.clock.Now(); }

  std::string MainAreaText() const { return MainAreaMessage(profile_, IsFlowing()); }
  TrayView Tray() const { return TrayIconView(profile_, regional_, IsFlowing(), Now()); }

 private:
  // The moment of the present read: frames are stamped with it, and a recording shows the same.
  class ReadClock : public Clock {
   public:
    DateTime Now() const override { return now; }
    std::uint32_t Ticks() const override { return ticks; }
    DateTime now;
    std::uint32_t ticks = 0;
  };

  bool Save(const std::function<bool()>& work);
  void RunTick(DateTime now, std::uint32_t ticks);
  void Record(const std::function<void(CaptureWriter&)>& write);
  void ReopenLostPort(std::uint32_t ticks);
  void ShowAlarmNotices(DateTime now);
  void RaiseAlarmNotice(clsKillAWatt& meter, DateTime now, std::string& text);
  void AddDestinations();
  PublishResult PublishTo(PublishTarget target, DateTime timestamp, bool useAverage, bool quiet);
  void PostAlarm(const clsKillAWatt& meter, DateTime now);
  PublishResult Publish(const std::function<PublishResult()>& run, bool quiet);
  std::string VersionFileAddress() const;
  void TellUpdate();
  void ShowUpdateProgress(const std::string& text);
  void SetUpdateTimer(bool enabled);
  void TellLoadProblems();
  void Tell(const std::string& text, const std::string& caption);

  Ports ports_;
  const RegionalSettings regional_;
  const Options options_;
  MonitorListener& listener_;
  modRegistry store_;
  ProfileData profile_;
  ReadClock readClock_;
  clsXBee decoder_;
  HeardMeters heard_;
  PublishSchedule schedule_;
  std::unique_ptr<WebPublishers> web_;
  std::unique_ptr<SoftwareUpdate> update_;
  ErrorList errors_;
  CaptureWriter* recorder_ = nullptr;
  std::uint64_t deliveredFrames_ = 0;
  std::uint32_t lastOpenTicks_ = 0;
  std::uint32_t lastSaveTicks_ = 0;
  bool busy_ = false;
  bool timerEnabled_ = false;
  bool saveFailed_ = false;
  bool loaded_ = false;
  bool ended_ = false;
};

}  // namespace wattlark
