#include "app/Monitor.h"

#include <algorithm>
#include <exception>

#include "app/CaptureWriter.h"
#include "app/WebPublishers.h"
#include "support/FlagScope.h"
#include "update/SoftwareUpdate.h"

namespace wattlark {

namespace {

constexpr std::uint32_t kReopenMilliseconds = 2000;
constexpr std::int32_t kSaveAgainSeconds = 5;

}  // namespace

Monitor::Monitor(const Ports& ports, const RegionalSettings& regional, Options options,
                 MonitorListener& listener)
    : ports_(ports),
      regional_(regional),
      options_(std::move(options)),
      listener_(listener),
      store_(ports.registry),
      profile_(regional_),
      decoder_(readClock_),
      errors_(regional_) {
  if (ports_.web != nullptr) {
    web_ = std::make_unique<WebPublishers>(*ports_.web, profile_, regional_, ports_.prompts,
                                           [this](const std::string& text) { SetInfoText(text); });
    update_ = std::make_unique<SoftwareUpdate>(
        SoftwareUpdate::Context{ports_.web->versionAlert, ports_.web->pump, store_,
                                profile_.Settings(), ports_.prompts, ports_.desktop,
                                [this](const std::string& text) { ShowUpdateProgress(text); }},
        WATTLARK_VERSION);
  }
  AddDestinations();
}

Monitor::~Monitor() = default;

bool Monitor::Load() {
  if (ports_.registry.Begin()) {
    store_.MigrateLegacySettings(ApplicationTitle, false);
    ports_.registry.Commit();
  }
  // One transaction gives one view of the store: what another process locks or changes meanwhile
  // cannot pass for a missing value, which would be saved as its default at exit.
  if (ports_.registry.Begin()) {
    profile_.Load(store_, options_.csvFilenameDefault, Now());
    loaded_ = ports_.registry.ErrorText().empty();
    ports_.registry.Rollback();
  }
  if (loaded_) {
    TellLoadProblems();
  } else {
    Tell("Settings and meters could not be read: " + ports_.registry.ErrorText(), "Error!");
  }
  return loaded_;
}

void Monitor::Tell(const std::string& text, const std::string& caption) {
  ports_.prompts.Ask({text, caption, PromptIcon::Exclamation, PromptButtons::OK, PromptAnswer::OK});
}

void Monitor::TellLoadProblems() {
  if (!profile_.SkippedMeters().empty()) {
    Tell("Not all the Kill-A-Watts were loaded", "Duplicate ID");
  }
  if (profile_.Problems().empty()) return;
  std::string text;
  for (const std::string& problem : profile_.Problems()) {
    if (!text.empty()) text += "\r\n";
    text += problem;
  }
  Tell(text, "Error!");
}

void Monitor::StartRunning() {
  OpenPort();
  schedule_.Start(profile_.Settings(), Now());
  if (update_) update_->StartSchedule(Now());
  lastSaveTicks_ = ports_.clock.Ticks();
  listener_.OnUpdateStatus();
  SetUpdateTimer(true);
}

void Monitor::StopRunning() {
  SetUpdateTimer(false);
  ended_ = true;
  ClosePort();
}

bool Monitor::Unload() {
  SetUpdateTimer(false);
  ended_ = true;
  const bool saved = SaveEverything();
  ClosePort();
  return saved;
}

bool Monitor::SaveEverything() {
  return loaded_ && Save([this] { return profile_.SaveAll(store_) && listener_.OnSave(store_); });
}

bool Monitor::SaveProgress() {
  if (loaded_ && !profile_.HasStoredMeters(store_)) return SaveEverything();
  return loaded_ && Save([this] {
           if (!profile_.SaveSettings(store_) || !listener_.OnSave(store_)) return false;
           // Passwords leave no trace in the file when they are changed: they are saved before.
           ports_.registry.MarkProgress();
           return profile_.SaveProgress(store_);
         });
}

bool Monitor::Save(const std::function<bool()>& work) {
  bool saved = ports_.registry.Begin();
  if (saved) {
    try {
      saved = work();
    } catch (...) {
      ports_.registry.Rollback();
      throw;
    }
    if (saved) {
      saved = ports_.registry.Commit();
    } else {
      ports_.registry.Rollback();
    }
  }
  if (!saved && !saveFailed_) {
    ReportError("Settings and statistics could not be saved: " + ports_.registry.ErrorText());
  }
  saveFailed_ = !saved;
  return saved;
}

void Monitor::OpenPort() {
  lastOpenTicks_ = ports_.clock.Ticks();
  const AppSettings& settings = profile_.Settings();
  if (IsDemoMode()) return;
  ports_.serial.Open(settings.PortNum, SerialSettings(settings));
}

void Monitor::ClosePort() {
  if (ports_.serial.IsOpen()) ports_.serial.Close();
  heard_.Clear();
  listener_.OnUpdateStatus();
}

void Monitor::RestartPort() {
  ClosePort();
  OpenPort();
}

void Monitor::ReceiveXBeeData() {
  if (busy_) return;
  try {
    const std::vector<std::uint8_t> bytes = ports_.serial.ReadAll();
    if (bytes.empty()) return;
    listener_.OnCommImage(CommImage::Receiving);
    readClock_.now = Now();
    readClock_.ticks = ports_.clock.Ticks();
    Record([&](CaptureWriter& to) { to.WriteRead(readClock_.now, readClock_.ticks, bytes); });
    if (!decoder_.ParseBytes(bytes) || !decoder_.FrameReceived()) return;
    listener_.OnCommImage(CommImage::Idle);
    if (!decoder_.SampleDecoded()) return;
    // Addresses are unique, so at most one meter takes the frame.
    clsKillAWatt* meter = profile_.Meters().FindAddress(decoder_.SourceAddress());
    if (meter == nullptr) {
      heard_.Note(decoder_.SourceAddress(), readClock_.now);
      return;
    }
    const FlagScope busy(busy_);
    meter->ProcessPacket(decoder_);
    ++deliveredFrames_;
    listener_.OnReading(*meter, readClock_.now);
  } catch (const std::exception& error) {
    ReportError(std::string("Communications Error - ") + error.what());
  }
}

void Monitor::UpdateCycle() {
  SetUpdateTimer(false);
  {
    const FlagScope busy(busy_);
    try {
      RunTick(Now(), ports_.clock.Ticks());
    } catch (const std::exception& error) {
      ReportError(error.what());
    }
  }
  SetUpdateTimer(true);
  TellUpdate();
}

void Monitor::RunTick(DateTime now, std::uint32_t ticks) {
  Record([&](CaptureWriter& to) { to.WriteTick(now, ticks); });
  ReopenLostPort(ticks);
  if (IsDemoMode()) {
    for (const auto& meter : profile_.Meters()) {
      meter->GenerateDemoReading(now, ticks, ports_.random);
    }
  }
  UpdateTotalKillAWatt(profile_.Total(), profile_.Meters(), now, ticks);
  if (!profile_.Meters().IsEmpty() && IsFlowing()) {
    schedule_.RunPublishers(profile_.Settings(), now);
    if (!ended_) ShowAlarmNotices(now);
  }
  if (!ended_ && update_) update_->FindWhenDue(now, VersionFileAddress());
  if (ended_) return;  // the user left the program while a web server was waited for
  listener_.OnUpdateStatus();
  // A save that failed is not put off as long as one that worked.
  const std::int32_t interval = saveFailed_
                                    ? std::min(kSaveAgainSeconds, options_.checkpointSeconds)
                                    : options_.checkpointSeconds;
  if (static_cast<std::int32_t>(ticks - lastSaveTicks_) / 1000 >= interval) {
    lastSaveTicks_ = ticks;
    SaveProgress();
  }
}

// A recording that fails ends; the readings go on.
void Monitor::Record(const std::function<void(CaptureWriter&)>& write) {
  if (recorder_ == nullptr) return;
  try {
    write(*recorder_);
  } catch (const std::exception& error) {
    recorder_ = nullptr;
    ReportError(error.what());
  }
}

void Monitor::ReopenLostPort(std::uint32_t ticks) {
  if (IsFlowing() || ticks - lastOpenTicks_ < kReopenMilliseconds) return;
  OpenPort();
}

void Monitor::ShowAlarmNotices(DateTime now) {
  std::string text;
  RaiseAlarmNotice(profile_.Total(), now, text);
  // Posting an alarm lets events run: the user may add and remove meters meanwhile.
  std::vector<std::int16_t> addresses;
  for (const auto& meter : profile_.Meters()) addresses.push_back(meter->XBeeAddress());
  for (const std::int16_t address : addresses) {
    clsKillAWatt* meter = profile_.Meters().FindAddress(address);
    if (meter != nullptr) RaiseAlarmNotice(*meter, now, text);
  }
}

void Monitor::RaiseAlarmNotice(clsKillAWatt& meter, DateTime now, std::string& text) {
  if (!meter.Alarm().AlarmTriggered() || !meter.Alarm().AlarmRepeatDue()) return;
  meter.Alarm().ResetAlarmInterval();
  ports_.desktop.PlayWave(options_.noticeSoundFile);
  if (listener_.CanShowNotice()) {
    const std::string line = AlarmNoticeLine(meter, regional_);
    text += line + "\r\n";
    listener_.OnAlarmNotice({now, meter.Name(), line, text});
  }
  PostAlarm(meter, now);
}

void Monitor::SetUpdateTimer(bool enabled) {
  if (timerEnabled_ == enabled || (enabled && ended_)) return;
  timerEnabled_ = enabled;
  listener_.OnUpdateTimer(enabled);
}

void Monitor::ReportError(const std::string& text, DateTime moment, bool toStatusBar) {
  const DateTime time = moment.IsNever() ? Now() : moment;
  errors_.Add(text, time);
  listener_.OnError(text, time);
  if (toStatusBar) {
    SetInfoText(ErrorsInvitation);
  } else {
    Tell(text, "Error!");
  }
}

void Monitor::SetInfoText(const std::string& text) {
  listener_.OnInfoText(text);
}

void Monitor::ClearErrors() {
  errors_.Clear();
  SetInfoText("");
}

FrameCounts Monitor::Frames() const {
  return {decoder_.CompletedFrames(), decoder_.DecodedFrames(), deliveredFrames_};
}

}  // namespace wattlark
