#include "cli/DiscoverCommand.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <filesystem>
#include <optional>
#include <ostream>
#include <vector>

#include "acquisition/HeardMeters.h"
#include "acquisition/clsXBee.h"
#include "app/ProfileData.h"
#include "cli/CommandText.h"
#include "cli/MeterJson.h"
#include "cli/ProfileStore.h"
#include "cli/RunOptions.h"
#include "cli/TextTable.h"
#include "config/PortDevices.h"
#include "platform/linux/ProfileLock.h"
#include "platform/qt/QtSerialPort.h"
#include "platform/qt/SerialDevices.h"
#include "platform/qt/SystemClock.h"

namespace wattlark {

namespace {

struct ListedDevice {
  SerialDevice device;
  std::string problem;  ///< why it cannot be opened; empty when it can
};

/// One run of the command.
class Discovery {
 public:
  Discovery(const std::string& profileFolder, const DiscoverOptions& options,
            CommandEnvironment& environment)
      : folder_(profileFolder),
        options_(options),
        environment_(environment),
        profile_(environment.regional) {}

  int Run() {
    if (!LoadProfile()) return ExitRefused;
    if (options_.device.empty()) ListDevices();
    std::string problem =
        options_.device.empty() && IsProfileInUse() ? RunningText() : FindDevice();
    if (problem.empty()) problem = Listen();
    Print();
    if (!problem.empty()) {
      Tell(problem);
      if (!devices_.empty() && !options_.json) Tell(DeviceTable());
      return ExitRefused;
    }
    return heard_.empty() ? ExitRefused : ExitOK;
  }

 private:
  void Tell(const std::string& text) { TellUser(environment_.messages, text); }

  bool LoadProfile() {
    ProfileStore store(folder_);
    if (!store.OpenCopy(environment_.messages) || !store.Load(profile_, environment_.messages)) {
      return false;
    }
    const int port = profile_.Settings().PortNum;
    const PortDevices devices(store.Values(), [] { return ListSerialDevices(); });
    profilePath_ = devices.Path(port);
    isChosen_ = profilePath_ != devices.DefaultPath(port);
    path_ = options_.device.empty() ? profilePath_ : options_.device;
    return true;
  }

  void ListDevices() {
    for (const SerialDevice& device : ListSerialDevicesWithProducts()) {
      devices_.push_back({device, port_.DeviceProblem(device.Path())});
    }
  }

  bool IsProfileInUse() const {
    // A profile that never ran is left without the lock's file.
    std::error_code ignored;
    if (!std::filesystem::exists(folder_ + "/lock", ignored)) return false;
    ProfileLock lock(folder_);
    return !lock.TryAcquire() && lock.Problem().empty();
  }

  std::string RunningText() const {
    return "Wattlark is running with the profile \"" + folder_ +
           "\" and receives from its device. End it first, or add meters in its window; to listen "
           "on another device, name that with --device PATH.";
  }

  /// The device that the user chose; before that, the only one that can be opened. Otherwise what
  /// the user is to do.
  std::string FindDevice() {
    if (!options_.device.empty() || isChosen_) return {};
    std::vector<std::string> usable;
    for (const ListedDevice& listed : devices_) {
      if (listed.problem.empty()) usable.push_back(listed.device.Path());
    }
    if (usable.size() > 1) return "Which device is the receiver? Name it with --device PATH.";
    if (usable.size() == 1) path_ = usable.front();
    return usable.empty() && !devices_.empty() ? devices_.front().problem + "." : "";
  }

  std::string Listen() {
    const AppSettings& settings = profile_.Settings();
    if (!port_.Open(settings.PortNum, SerialSettings(settings))) return port_.ErrorText() + ".";
    Tell("Listening on " + path_ + " for " + std::to_string(options_.seconds) + " seconds ...");
    environment_.messages.flush();
    SystemClock clock;
    clsXBee decoder(clock);
    QEventLoop loop;
    std::string problem;
    port_.onReceive = [&] {
      for (const std::uint8_t byte : port_.ReadAll()) TakeByte(decoder, byte);
    };
    port_.onLost = [&] {
      problem = port_.ErrorText() + ".";
      loop.quit();
    };
    QTimer::singleShot(options_.seconds * 1000, &loop, [&] { loop.quit(); });
    loop.exec();
    port_.Close();
    heard_ = meters_.All();
    frames_ = decoder.CompletedFrames();
    if (problem.empty() && heard_.empty()) return SilenceText();
    return problem;
  }

  // One at a time: of several frames in one read only the last could be seen.
  void TakeByte(clsXBee& decoder, std::uint8_t byte) {
    ++bytes_;
    if (decoder.ParseBytes({&byte, 1}) && decoder.FrameReceived() && decoder.SampleDecoded()) {
      meters_.Note(decoder.SourceAddress(), decoder.FrameTime());
    }
  }

  std::string SilenceText() const {
    if (bytes_ == 0) {
      return "Nothing arrived on " + path_ +
             ". Is this the receiver, is a meter plugged in and near, and do both radios have the "
             "same channel and network number?";
    }
    if (frames_ == 0) {
      return std::to_string(bytes_) + " bytes arrived on " + path_ +
             ", but no whole frame. Is the receiver set to " + SerialSettings(profile_.Settings()) +
             ", and its radio to API mode without escapes?";
    }
    return std::to_string(frames_) + " frames arrived on " + path_ +
           ", but none with a meter's samples. Do the meters' radios send to this receiver?";
  }

  const clsKillAWatt* MeterAt(std::int16_t address) const {
    return profile_.Meters().FindAddress(address);
  }

  std::string DeviceTable() const {
    TextTable table({{"Device"}, {"Product"}, {"Problem"}});
    for (const ListedDevice& listed : devices_) {
      table.AddRow({listed.device.Path(), listed.device.product, listed.problem});
    }
    return table.Text();
  }

  void Print() const {
    if (options_.json) {
      PrintJson();
    } else if (!heard_.empty()) {
      PrintText();
    }
  }

  void PrintText() const {
    TextTable table(
        {{"Address", TextTable::Align::Right}, {"Frames", TextTable::Align::Right}, {"Meter"}});
    std::string commands;
    for (const HeardMeter& heard : heard_) {
      const clsKillAWatt* meter = MeterAt(heard.address);
      table.AddRow({std::to_string(heard.address), std::to_string(heard.frames),
                    meter == nullptr ? "none yet" : meter->Name()});
      if (meter == nullptr) commands += AddCommand(folder_, heard.address) + "\n";
    }
    environment_.output << table.Text();
    if (!commands.empty()) environment_.output << "\nTo add what is new:\n" << commands;
    if (path_ != profilePath_) PrintDeviceCommand();
  }

  // The program itself would listen elsewhere.
  void PrintDeviceCommand() const {
    environment_.output << "\nTo receive from this device from now on:\n"
                        << DeviceCommand(folder_, profile_.Settings().PortNum, path_) << "\n";
  }

  void PrintJson() const {
    nlohmann::ordered_json json;
    json["Device"] = path_;
    json["Seconds"] = options_.seconds;
    json["Devices"] = nlohmann::ordered_json::array();
    for (const ListedDevice& listed : devices_) {
      json["Devices"].push_back({{"Path", listed.device.Path()},
                                 {"Product", listed.device.product},
                                 {"Problem", listed.problem}});
    }
    json["Meters"] = nlohmann::ordered_json::array();
    for (const HeardMeter& heard : heard_) {
      const clsKillAWatt* meter = MeterAt(heard.address);
      nlohmann::ordered_json entry = {{"XBeeAddress", heard.address}, {"Frames", heard.frames}};
      entry["Name"] = nullptr;
      if (meter != nullptr) entry["Name"] = meter->Name();
      json["Meters"].push_back(std::move(entry));
    }
    environment_.output << JsonText(json);
  }

  const std::string folder_;
  const DiscoverOptions options_;
  CommandEnvironment& environment_;
  ProfileData profile_;
  std::string path_;         ///< where to listen
  std::string profilePath_;  ///< where the program would
  bool isChosen_ = false;    ///< the latter, by the user
  std::vector<ListedDevice> devices_;
  QtSerialPort port_{[this](int) { return path_; },
                     [this](int portNumber) { return DeviceCommand(folder_, portNumber); }};
  HeardMeters meters_;
  std::vector<HeardMeter> heard_;
  std::uint64_t bytes_ = 0;
  std::uint64_t frames_ = 0;
};

}  // namespace

int DiscoverMeters(const std::string& profileFolder, const DiscoverOptions& options,
                   CommandEnvironment& environment) {
  // The port's events want an application object.
  int argc = 0;
  std::optional<QCoreApplication> application;
  if (QCoreApplication::instance() == nullptr) application.emplace(argc, nullptr);
  return Discovery(profileFolder, options, environment).Run();
}

}  // namespace wattlark
