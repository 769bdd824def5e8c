#include "cli/ReplaySession.h"

#include <limits>
#include <ostream>
#include <span>

#include "cli/CommandEnvironment.h"

namespace wattlark {

/// What a monitor can ask for beyond its clock and port: message boxes become lines of text, the
/// rest stays out of a replay.
class ReplaySession::Outside final : public Prompts, public Desktop, public RandomSource {
 public:
  explicit Outside(std::ostream& messages) : messages_(messages) {}

  PromptAnswer Ask(const PromptMessage& message) override {
    TellUser(messages_, message.text);
    return message.defaultAnswer;
  }
  void PlayWave(const std::string& /*file*/) override {}
  bool OpenURL(const std::string& /*address*/) override { return false; }
  void Reseed(std::uint32_t /*seed*/) override {}
  double Next() override { return 0.5; }

 private:
  std::ostream& messages_;
};

namespace {

Monitor::Options ReplayOptionsOf(const std::string& csvFilenameDefault) {
  Monitor::Options options;
  options.csvFilenameDefault = csvFilenameDefault;
  options.checkpointSeconds = std::numeric_limits<std::int32_t>::max();
  options.demoMode = false;
  return options;
}

}  // namespace

ReplaySession::ReplaySession(Registry& registry, const RegionalSettings& regional,
                             const Capture& capture, const std::string& csvFilenameDefault,
                             std::ostream& messages)
    : outside_(std::make_unique<Outside>(messages)),
      monitor_({clock_, port_, registry, *outside_, *outside_, *outside_}, regional,
               ReplayOptionsOf(csvFilenameDefault), *this) {
  if (!capture.events.empty()) {
    clock_.Set(capture.events.front().time, capture.events.front().ticks);
  }
}

ReplaySession::~ReplaySession() = default;

void ReplaySession::Run(const Capture& capture, const std::string& csvFile) {
  AppSettings& settings = monitor_.Profile().Settings();
  const AppSettings stored = settings;
  settings.LogToCSV = !csvFile.empty();
  settings.CSVFilename = csvFile;
  settings.AutoUpdate = false;
  settings.LogToPachube = false;
  settings.LogToGoogle = false;
  settings.LogToPowerMeter = false;
  settings.LogToTwitter = false;
  settings.AlarmsToTwitter = false;

  if (!capture.events.empty()) monitor_.StartSchedule(capture.events.front().time);
  monitor_.OpenPort();
  std::span<const std::uint8_t> bytes = capture.bytes;
  for (const CaptureEvent& event : capture.events) {
    clock_.Set(event.time, event.ticks);
    if (event.IsTick()) {
      monitor_.UpdateCycle();
    } else {
      port_.Deliver(bytes.first(event.byteCount));
      bytes = bytes.subspan(event.byteCount);
      monitor_.ReceiveXBeeData();
    }
  }
  // The overrides were this replay's alone; a save must not carry them into the store.
  settings = stored;
}

void ReplaySession::OnError(const std::string& text, DateTime /*moment*/) {
  errors_.push_back(text);
}

void ReplaySession::OnAlarmNotice(const AlarmNotice& notice) {
  notices_.push_back(notice);
}

}  // namespace wattlark
