#include "cli/ProgramSetup.h"

#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

#include "cli/CommandText.h"
#include "cli/DefaultFiles.h"
#include "platform/qt/SerialDevices.h"
#include "platform/qt/SystemRegional.h"
#include "timezone/modTimeZone.h"

namespace wattlark {

ProgramSetup::ProgramSetup(const RunOptions& options)
    : options_(options),
      lock_(options.profileFolder),
      serial_([this](int portNumber) { return DevicePath(portNumber); },
              [this](int portNumber) { return DeviceCommand(options_.profileFolder, portNumber); }),
      timeZone_(clock_),
      web_{inetPachubeLogger_,
           inetGoogleLogger_,
           inetTwitterLogger_,
           inetVersionAlert_,
           pump_,
           [this](DateTime local) { return ToUTC(local); }} {}

bool ProgramSetup::TakeProfile() {
  const bool isFirst = lock_.TryAcquire();
  if (!lock_.Problem().empty()) throw std::runtime_error(lock_.Problem());
  // Only now is the folder sure to be there.
  instance_.emplace(options_.profileFolder);
  if (!isFirst) instance_->ActivatePrevInstance();
  return isFirst;
}

bool ProgramSetup::Open() {
  if (!options_.recordFile.empty()) recorder_.emplace(options_.recordFile);
  store_ = OpenStore(options_.profileFolder);
  if (!store_.registry) return false;
  systemRegistry_.emplace(*store_.registry, AutostartFolder());
  values_.emplace(*store_.registry);
  devices_.emplace(*values_, [] { return ListSerialDevices(); });
  return true;
}

Monitor& ProgramSetup::MakeMonitor(Desktop& desktop, Prompts& prompts, MonitorListener& listener) {
  monitor_.emplace(
      Monitor::Ports{clock_, serial_, *store_.registry, random_, desktop, prompts, &web_},
      SystemRegionalSettings(), MonitorOptions(), listener);
  serial_.onReceive = [this] { monitor_->ReceiveXBeeData(); };
  serial_.onLost = [&listener] { listener.OnUpdateStatus(); };
  return *monitor_;
}

bool ProgramSetup::Load(std::function<void()> onShow) {
  instance_->onShow = std::move(onShow);
  instance_->onCommand = [this](const std::string& command) { return FindCommand(command); };
  instance_->Listen();
  if (!monitor_->Load()) return false;
  if (!options_.device.empty()) {
    devices_->UseForThisRun(monitor_->Profile().Settings().PortNum, options_.device);
  }
  if (recorder_) monitor_->RecordTo(&*recorder_);
  return true;
}

void ProgramSetup::StartRunning() {
  monitor_->StartRunning();
  takesCommands_ = true;
}

std::function<CommandAnswer()> ProgramSetup::FindCommand(const std::string& command) {
  for (const PublishTargetName& known : PublishTargetNames()) {
    if (command != std::string("publish ") + known.name) continue;
    return [this, target = known.target] { return Publish(target); };
  }
  return {};
}

// What the menu item of that destination does; nobody may be there to answer a question.
CommandAnswer ProgramSetup::Publish(PublishTarget target) {
  if (!takesCommands_) return {false, "The running program is just starting or ending"};
  const std::string obstacle = monitor_->MainAreaText();
  if (!obstacle.empty()) return {false, obstacle.substr(0, obstacle.find_first_of(":\r"))};
  const PublishResult result = monitor_->PublishNow(target, true);
  const bool isSilent = !result.success && result.text.empty();
  return {result.success, isSilent ? "Nothing was published: the user name or password is "
                                     "missing, or the program is ending"
                                   : result.text};
}

std::string ProgramSetup::FinishSaving(bool unloaded) {
  takesCommands_ = false;
  instance_->onShow = nullptr;
  if (unloaded && store_.savesChanges) return {};
  return "Not saved: " + (store_.savesChanges ? store_.registry->ErrorText() : store_.message);
}

Monitor::Options ProgramSetup::MonitorOptions() const {
  Monitor::Options result;
  result.csvFilenameDefault = DefaultCSVFilename(options_.profileFolder);
  result.noticeSoundFile = NoticeSoundFile();
  if (options_.demo) result.demoMode = true;
  result.checkpointSeconds = options_.checkpointSeconds;
  result.versionFileAddress = WATTLARK_VERSION_FILE_URL;
  return result;
}

std::string ProgramSetup::DevicePath(int portNumber) const {
  return devices_ ? devices_->Path(portNumber) : std::string();
}

DateTime ProgramSetup::ToUTC(DateTime local) {
  const std::optional<clsTimeZone> zone = GetCurrentTimeZone(timeZone_);
  if (!zone) throw std::runtime_error("The system does not say its time zone");
  return LocalToUTC(local, *zone);
}

void OpenMissingStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", O_RDWR) == -1) return;
  }
}

}  // namespace wattlark
