#include "config/OptionsActions.h"

#include <initializer_list>

#include "config/OptionsLists.h"
#include "config/modRegistry.h"

namespace wattlark {

namespace {

constexpr const char* kDemoWarning =
    "Running in 'Demo Mode' will ignore all real device inputs, even if they are connnected and "
    "communicating.\r\n"
    "Wattlark will display entirely fictitious data for each channel until this mode is switched "
    "off.";

/// One press of OK.
class OptionsOK {
 public:
  explicit OptionsOK(const OptionsTarget& target)
      : target_(target), settings_(target.settings), store_(target.registry) {}

  bool Apply(const OptionsEdit& edit) {
    const GeneralOptions& general = edit.general;
    settings_.ShowAtLaunch = general.showAtLaunch;
    settings_.AutoUpdate = general.autoUpdate;
    settings_.RunAtStartup = general.runAtStartup;
    // Asked before the transaction: the program goes on, and saves, while the question is open.
    if (SwitchDemoMode(general.demoMode, settings_, target_.prompts)) restartsPort_ = true;
    // A store that another program holds would make every single write wait, and might take some.
    canSave_ = target_.registry.Begin();
    if (canSave_) RunAtLogOn();
    Save({"ShowAtLaunch", "AutoUpdate", "RunAtStartup"});
    SetPort(general);
    SetElectricity(general);
    SetCSV(edit.csv);
    SetPachube(edit.pachube);
    SetGoogle(edit.google);
    SetPowerMeter(edit.powerMeter);
    SetTwitter(edit.twitter);
    const bool saved = canSave_ && target_.registry.Commit();
    if (restartsPort_) target_.restartPort();
    return saved;
  }

 private:
  // Whether that is allowed is the system's to say; a user without the right to it is not bothered.
  void RunAtLogOn() {
    if (settings_.RunAtStartup) {
      store_.SetStringValue(Hive::LocalMachine, RunAtLogOnKey, ApplicationTitle,
                            "\"" + target_.programFile + "\"");
    } else {
      store_.DeleteValue(Hive::LocalMachine, RunAtLogOnKey, ApplicationTitle);
    }
  }

  void SetPort(const GeneralOptions& edit) {
    const auto take = [this](auto& setting, const auto& value) {
      if (setting == value) return;
      setting = value;
      restartsPort_ = true;
    };
    const std::string device = DevicePath();
    if (canSave_ && target_.devices != nullptr) {
      for (const auto& [port, path] : edit.portDevices) target_.devices->Choose(port, path);
    }
    take(settings_.PortNum, static_cast<std::int16_t>(NumberAt(PortNumEntries(), edit.portNum)));
    take(settings_.BaudRate, TextAt(BaudRateEntries(), edit.baudRate));
    take(settings_.Parity, TextAt(ParityEntries(), edit.parity));
    take(settings_.DataBits, TextAt(DataBitsEntries(), edit.dataBits));
    take(settings_.StopBits, TextAt(StopBitsEntries(), edit.stopBits));
    restartsPort_ = restartsPort_ || device != DevicePath();
    Save({"PortNum", "BaudRate", "Parity", "DataBits", "StopBits"});
  }

  std::string DevicePath() const {
    return target_.devices == nullptr ? "" : target_.devices->Path(settings_.PortNum);
  }

  void SetElectricity(const GeneralOptions& edit) {
    settings_.ServiceState = static_cast<std::int16_t>(edit.serviceState);
    settings_.Mils = ReadMils(target_.regional, edit.mils).value_or(settings_.Mils);
    settings_.CO2perKWh = ReadCO2(target_.regional, edit.co2).value_or(settings_.CO2perKWh);
    Save({"ServiceState", "Mils", "CO2perKWh"});
  }

  void SetCSV(const CSVOptions& edit) {
    if (edit.csvFilename != settings_.CSVFilename) settings_.CSVFileChanged = true;
    settings_.LogToCSV = edit.logToCSV;
    settings_.CSVFilename = edit.csvFilename;
    settings_.CSVInterval = NumberAt(LogIntervalEntries(), edit.csvInterval);
    Save({"LogToCSV", "CSVFilename", "CSVInterval"});
  }

  void SetPachube(const PachubeOptions& edit) {
    settings_.LogToPachube = edit.logToPachube;
    settings_.PachubeInterval = NumberAt(LogIntervalEntries(), edit.pachubeInterval);
    settings_.PachubeFeedURL = edit.pachubeFeedURL;
    settings_.PachubeAPIKey = edit.pachubeAPIKey;
    Save({"LogToPachube", "PachubeInterval", "PachubeFeedURL", "PachubeAPIKey"});
  }

  void SetGoogle(const GoogleOptions& edit) {
    if (edit.googleUsername != settings_.GoogleUsername ||
        edit.googlePassword != settings_.GooglePassword) {
      settings_.GoogleAuthToken.clear();
    }
    // Stored along with the names: after a crash the rows would go to the old document for good.
    if (edit.googleDocName != settings_.GoogleDocName) {
      settings_.GoogleWorksheetsFeed.clear();
      Save({"GoogleWorksheetsFeed"});
    }
    if (edit.googleWorksheetName != settings_.GoogleWorksheetName) {
      settings_.GoogleListFeed.clear();
      Save({"GoogleListFeed"});
    }
    settings_.LogToGoogle = edit.logToGoogle;
    settings_.GoogleUsername = edit.googleUsername;
    settings_.GooglePassword = edit.googlePassword;
    settings_.GoogleInterval = NumberAt(LogIntervalEntries(), edit.googleInterval);
    settings_.GoogleDocName = edit.googleDocName;
    settings_.GoogleWorksheetName = edit.googleWorksheetName;
    Save({"LogToGoogle", "GoogleInterval", "GoogleUsername", "GooglePassword", "GoogleDocName",
          "GoogleWorksheetName"});
  }

  void SetPowerMeter(const PowerMeterOptions& edit) {
    settings_.LogToPowerMeter = edit.logToPowerMeter;
    settings_.PowerMeterInterval = NumberAt(PowerMeterIntervalEntries(), edit.powerMeterInterval);
    settings_.PowerMeterAuthInfo = edit.powerMeterAuthInfo;
    Save({"LogToPowerMeter", "PowerMeterInterval", "PowerMeterAuthInfo"});
  }

  void SetTwitter(const TwitterOptions& edit) {
    settings_.LogToTwitter = edit.logToTwitter;
    settings_.AlarmsToTwitter = edit.alarmsToTwitter;
    settings_.TwitterInterval = NumberAt(TwitterIntervalEntries(), edit.twitterInterval);
    settings_.TwitterUsername = edit.twitterUsername;
    settings_.TwitterPassword = edit.twitterPassword;
    settings_.TwitterMessage = edit.twitterMessage;
    settings_.TwitterAlarmMessage = edit.twitterAlarmMessage;
    Save({"LogToTwitter", "AlarmsToTwitter", "TwitterInterval", "TwitterUsername",
          "TwitterPassword", "TwitterMessage", "TwitterAlarmMessage"});
  }

  // One that fails does not keep the others from being tried; the commit tells.
  void Save(std::initializer_list<const char*> names) {
    if (!canSave_) return;
    for (const char* name : names) {
      store_.SaveAppSetting("", "Settings", name,
                            SettingText(settings_, *FindSetting(name), target_.text));
    }
  }

  const OptionsTarget& target_;
  AppSettings& settings_;
  modRegistry store_;
  bool canSave_ = false;
  bool restartsPort_ = false;
};

}  // namespace

bool SwitchDemoMode(bool on, AppSettings& settings, Prompts& prompts) {
  if (on == settings.DemoMode) return false;
  if (on && prompts.Ask({kDemoWarning, "Consider yourself warned!", PromptIcon::Information,
                         PromptButtons::OKCancel, PromptAnswer::OK}) != PromptAnswer::OK) {
    return false;
  }
  settings.DemoMode = on;
  return true;
}

bool ApplyOptionsEdit(const OptionsEdit& edit, const OptionsTarget& target) {
  return OptionsOK(target).Apply(edit);
}

}  // namespace wattlark
