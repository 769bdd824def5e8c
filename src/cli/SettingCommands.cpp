#include "cli/SettingCommands.h"

#include <array>
#include <istream>
#include <ostream>
#include <utility>
#include <vector>

#include "app/ProfileData.h"
#include "cli/DefaultFiles.h"
#include "cli/MeterJson.h"
#include "cli/ProfileStore.h"
#include "cli/RunOptions.h"
#include "cli/TextTable.h"
#include "config/AppSettings.h"
#include "config/ServiceEndpoints.h"
#include "config/StoreText.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr const char* kSettings = "Settings";
constexpr const char* kPortDevices = "PortDevices";
constexpr const char* kWindowSettings = "WindowSettings";
constexpr std::int64_t kLargestPort = 256;
constexpr const char* kStandardInput = "-";
constexpr std::size_t kLongestValue = std::size_t{64} * 1024;

/// A setting that the user has named.
struct SettingName {
  std::string section;
  std::string name;
  const SettingInfo* info = nullptr;              ///< of section "Settings"
  std::string problem;                            ///< why there is no such setting, or empty
  const ServiceEndpointInfo* endpoint = nullptr;  ///< of section "ServiceEndpoints"
};

/// "COM3" for any way to write it; empty when the text is no port.
std::string PortName(const std::string& typed) {
  const std::string folded = FoldCase(typed);
  if (!folded.starts_with("com")) return {};
  const std::string number = folded.substr(3);
  if (number.find_first_not_of("0123456789") != std::string::npos) return {};
  const auto port = TextToInteger(number, 1, kLargestPort);
  return port ? "COM" + std::to_string(*port) : std::string();
}

SettingName ResolveName(const std::string& typed) {
  const std::size_t slash = typed.find('/');
  const std::string section = slash == std::string::npos ? kSettings : typed.substr(0, slash);
  const std::string name = slash == std::string::npos ? typed : typed.substr(slash + 1);
  const std::string folded = FoldCase(section);
  if (folded == FoldCase(kSettings)) {
    const SettingInfo* info = FindSetting(name);
    if (info == nullptr) return {{}, {}, nullptr, "There is no setting \"" + name + "\"."};
    return {kSettings, info->name, info, {}};
  }
  if (folded == FoldCase(kPortDevices)) {
    const std::string port = PortName(name);
    if (port.empty()) {
      return {{}, {}, nullptr, "\"" + name + "\" is not a port from COM1 to COM256."};
    }
    return {kPortDevices, port, nullptr, {}};
  }
  if (folded == FoldCase(ServiceEndpointsSection)) {
    const ServiceEndpointInfo* endpoint = FindServiceEndpoint(name);
    if (endpoint == nullptr) return {{}, {}, nullptr, "There is no address \"" + name + "\"."};
    return {ServiceEndpointsSection, endpoint->name, nullptr, {}, endpoint};
  }
  if (folded == FoldCase(kWindowSettings)) {
    if (name.empty()) return {{}, {}, nullptr, "The name of the window is missing."};
    return {kWindowSettings, name, nullptr, {}};
  }
  return {{},
          {},
          nullptr,
          "There is no section \"" + section +
              "\": the sections are Settings, PortDevices, ServiceEndpoints and WindowSettings."};
}

/// Settings in force, with the text form of their store.
struct LoadedSettings {
  StoreText text;
  AppSettings settings;
};

LoadedSettings LoadSettings(ProfileStore& store, CommandEnvironment& environment) {
  LoadedSettings loaded{StoreText::Load(store.Values(), environment.regional), {}};
  const std::vector<std::string> problems = LoadAppSettings(
      store.Values(), loaded.text, DefaultCSVFilename(store.Folder()), loaded.settings);
  for (const std::string& problem : problems) TellUser(environment.messages, problem);
  return loaded;
}

ServiceEndpoints LoadEndpoints(ProfileStore& store, CommandEnvironment& environment) {
  ServiceEndpoints endpoints;
  for (const std::string& problem : LoadServiceEndpoints(store.Values(), endpoints)) {
    TellUser(environment.messages, problem);
  }
  return endpoints;
}

/// Why the value does not fit, or an empty text. `value` takes the form in which it is stored.
std::string ValueProblem(const SettingName& setting, const StoreText& text, std::string& value) {
  if (!IsUtf8(value)) return "The value is not UTF-8 text.";
  if (setting.section == kPortDevices && !value.empty() && value.front() != '/') {
    return "The device of " + setting.name + " is an absolute path, or empty to forget it.";
  }
  if (setting.endpoint != nullptr) return ServiceEndpointProblem(value);
  if (setting.info == nullptr) return {};
  const std::string problem = SettingProblem(*setting.info, value, text);
  if (!problem.empty()) return problem;
  AppSettings converted;
  AssignSetting(converted, *setting.info, value, text);
  value = SettingText(converted, *setting.info, text);
  return {};
}

/// Why the input is no value, or an empty text.
std::string ReadValue(std::istream& input, std::string& value) {
  value.resize(kLongestValue + 1);
  input.read(value.data(), static_cast<std::streamsize>(value.size()));
  value.resize(static_cast<std::size_t>(input.gcount()));
  if (value.size() > kLongestValue) return "The value on standard input is too long.";
  if (value.ends_with('\n')) value.pop_back();
  if (value.ends_with('\r')) value.pop_back();
  return {};
}

// What the program remembers of a document is of no use with another one, or another server.
bool ForgetFeeds(modRegistry& store, const SettingName& setting) {
  const bool isServer = setting.endpoint != nullptr && setting.name == "SpreadsheetsFeedURL";
  const bool isSetting = setting.info != nullptr;
  const auto forget = [&store](const char* feed) {
    return store.GetAppSetting("", "Settings", feed, "").empty() ||
           store.SaveAppSetting("", "Settings", feed, "");
  };
  bool done = true;
  if (isServer || (isSetting && setting.name == "GoogleDocName")) {
    done = forget("GoogleWorksheetsFeed");
  }
  if (isServer || (isSetting && setting.name == "GoogleWorksheetName")) {
    done = forget("GoogleListFeed") && done;
  }
  return done;
}

bool Store(modRegistry& store, const SettingName& setting, const std::string& value) {
  if (!ForgetFeeds(store, setting)) return false;
  const bool removes =
      (setting.section == kPortDevices || setting.endpoint != nullptr) && value.empty();
  if (setting.info != nullptr && setting.info->name == std::string_view("CSVFilename") &&
      !ProfileData::RequestCSVHeader(store)) {
    return false;
  }
  if (!removes) return store.SaveAppSetting("", setting.section, setting.name, value);
  return store.GetAppSetting("", setting.section, setting.name, "").empty() ||
         store.DeleteAppSetting("", setting.section, setting.name);
}

/// "SECTION/NAME" and text of what is stored in the sections beside "Settings".
std::vector<std::pair<std::string, std::string>> OtherValues(const modRegistry& store) {
  std::vector<std::pair<std::string, std::string>> values;
  for (const std::string section : {kPortDevices, kWindowSettings}) {
    std::vector<std::string> names;
    std::vector<std::string> texts;
    store.EnumStringValues(Hive::CurrentUser, modRegistry::AppKeyPath("", section), names, texts);
    for (std::size_t i = 0; i < names.size(); ++i) {
      values.emplace_back(section + "/" + names[i], texts[i]);
    }
  }
  return values;
}

}  // namespace

int GetSetting(const std::string& profileFolder, const std::string& name,
               CommandEnvironment& environment) {
  const SettingName setting = ResolveName(name);
  if (!setting.problem.empty()) {
    TellUser(environment.messages, setting.problem);
    return ExitRefused;
  }
  ProfileStore store(profileFolder);
  if (!store.OpenCopy(environment.messages)) return ExitRefused;
  if (setting.endpoint != nullptr) {
    environment.output << LoadEndpoints(store, environment).*setting.endpoint->field << "\n";
    return ExitOK;
  }
  if (setting.info == nullptr) {
    environment.output << store.Values().GetAppSetting("", setting.section, setting.name, "")
                       << "\n";
    return ExitOK;
  }
  const LoadedSettings loaded = LoadSettings(store, environment);
  environment.output << SettingText(loaded.settings, *setting.info, loaded.text) << "\n";
  return ExitOK;
}

int SetSetting(const std::string& profileFolder, const std::string& name, const std::string& typed,
               CommandEnvironment& environment) {
  const SettingName setting = ResolveName(name);
  std::string value = typed;
  std::string problem = setting.problem;
  if (problem.empty() && typed == kStandardInput) problem = ReadValue(environment.input, value);
  std::string stored = value;
  // What does not fit any profile is refused before one is touched or made.
  if (problem.empty()) problem = ValueProblem(setting, StoreText(environment.regional), stored);
  if (!problem.empty()) {
    TellUser(environment.messages, problem);
    return ExitRefused;
  }
  ProfileStore store(profileFolder);
  if (!store.OpenForChanges(environment.messages)) return ExitRefused;
  stored = value;
  problem = ValueProblem(setting, StoreText::Load(store.Values(), environment.regional), stored);
  if (problem.empty() && !Store(store.Values(), setting, stored)) {
    problem = "Nothing was changed: " + store.Port().ErrorText();
  }
  if (!problem.empty()) {
    TellUser(environment.messages, problem);
    return ExitRefused;
  }
  if (setting.info != nullptr && setting.info->secret && !typed.empty() &&
      typed != kStandardInput) {
    TellUser(environment.messages,
             "Stored. The list of processes has shown " + setting.name +
                 " for a moment: write - in its place to give it on standard input.");
  }
  return ExitOK;
}

int ListSettings(const std::string& profileFolder, bool asJson, CommandEnvironment& environment) {
  ProfileStore store(profileFolder);
  if (!store.OpenCopy(environment.messages)) return ExitRefused;
  const LoadedSettings loaded = LoadSettings(store, environment);
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  TextTable table({{"Setting"}, {"Value"}});
  for (const SettingInfo& info : SettingsTable()) {
    std::visit([&](auto field) { json[info.name] = loaded.settings.*field; }, info.field);
    const std::string text = SettingText(loaded.settings, info, loaded.text);
    table.AddRow({info.name, info.secret && !text.empty() ? "****" : text});
  }
  const ServiceEndpoints endpoints = LoadEndpoints(store, environment);
  for (const ServiceEndpointInfo& info : ServiceEndpointsTable()) {
    const std::string name = std::string(ServiceEndpointsSection) + "/" + info.name;
    json[name] = endpoints.*info.field;
    table.AddRow({name, endpoints.*info.field});
  }
  for (const auto& [name, text] : OtherValues(store.Values())) {
    json[name] = text;
    table.AddRow({name, text});
  }
  environment.output << (asJson ? JsonText(json) : table.Text());
  return ExitOK;
}

}  // namespace wattlark
