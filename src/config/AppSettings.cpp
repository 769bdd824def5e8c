#include "config/AppSettings.h"

#include <limits>
#include <type_traits>

#include "config/OptionsLists.h"
#include "config/modRegistry.h"
#include "support/modSeries.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr const char* kSection = "Settings";

/// The order in which the settings are written when the program ends; it is the order in which they
/// come to stand in a new store.
constexpr const char* kExitOrder[] = {
    "AlwaysOnTop",
    "ShowAtLaunch",
    "AutoUpdate",
    "RunAtStartup",
    "DemoMode",
    "PortNum",
    "BaudRate",
    "Parity",
    "DataBits",
    "StopBits",
    "LogToCSV",
    "CSVFilename",
    "CSVInterval",
    "LogToPachube",
    "PachubeInterval",
    "PachubeFeedURL",
    "PachubeAPIKey",
    "LogToGoogle",
    "GoogleInterval",
    "GoogleUsername",
    "GooglePassword",
    "GoogleDocName",
    "GoogleWorksheetName",
    "GoogleSpreadsheetsFeed",
    "GoogleWorksheetsFeed",
    "GoogleListFeed",
    "LogToPowerMeter",
    "PowerMeterInterval",
    "PowerMeterAuthInfo",
    "LogToTwitter",
    "AlarmsToTwitter",
    "TwitterInterval",
    "TwitterUsername",
    "TwitterPassword",
    "TwitterMessage",
    "TwitterAlarmMessage",
    "CurrentUnit",
    "CurrentInterval",
    "RecentUnit",
    "RecentInterval",
    "TotalUnit",
};

/// What a user may enter beyond the clamps of the table.
struct EntryRange {
  const char* name;
  std::int64_t minimum;
  std::int64_t maximum;
};
constexpr EntryRange kEntryRanges[] = {
    {"PortNum", 1, 256},
    {"ServiceState", 0, 50},
};

struct EntryChoices {
  const char* name;
  std::span<const char* const> (*choices)();
};
constexpr EntryChoices kEntryChoices[] = {
    {"BaudRate", &BaudRateEntries},
    {"Parity", &ParityEntries},
    {"DataBits", &DataBitsEntries},
    {"StopBits", &StopBitsEntries},
};

template <typename T>
bool Convert(std::string_view value, const StoreText& text, T& result) {
  if constexpr (std::is_same_v<T, std::string>) {
    result = value;
    return true;
  } else {
    const auto converted = [&] {
      if constexpr (std::is_same_v<T, bool>) {
        return TextToBoolean(value);
      } else if constexpr (std::is_same_v<T, double>) {
        return text.ToDouble(value);
      } else {
        return TextToInteger(value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
      }
    }();
    if (converted) result = static_cast<T>(*converted);
    return converted.has_value();
  }
}

bool Converts(const SettingInfo& info, std::string_view value, const StoreText& text) {
  AppSettings scratch;
  return AssignSetting(scratch, info, value, text);
}

void ClampSetting(AppSettings& settings, const SettingInfo& info) {
  if (info.minimum == info.maximum) return;
  std::visit(
      [&](auto field) {
        auto& value = settings.*field;
        if constexpr (std::is_same_v<decltype(field), std::int32_t AppSettings::*>) {
          value = Clamp(value, info.minimum, info.maximum);
        }
      },
      info.field);
}

std::string TypeProblem(const SettingInfo& info) {
  const std::string name = info.name;
  if (std::holds_alternative<bool AppSettings::*>(info.field)) return name + " is True or False.";
  if (std::holds_alternative<double AppSettings::*>(info.field)) return name + " is a number.";
  return name + " is a whole number.";
}

std::string RangeProblem(const SettingInfo& info, std::string_view value, std::int64_t minimum,
                         std::int64_t maximum) {
  if (TextToInteger(value, minimum, maximum)) return {};
  return std::string(info.name) + " lies between " + std::to_string(minimum) + " and " +
         std::to_string(maximum) + ".";
}

std::string ChoiceProblem(const EntryChoices& entry, std::string_view value) {
  const auto choices = entry.choices();
  if (FindText(choices, value) != -1) return {};
  std::string joined;
  for (const char* choice : choices) {
    if (!joined.empty()) joined += ',';
    joined += Trim(choice);
  }
  return std::string(entry.name) + " is one of " + joined + ".";
}

/// A stored text that could not be read is the user's still, until the setting is changed.
bool KeepsStoredText(const modRegistry& store, const StoreText& text, const AppSettings& settings,
                     const SettingInfo& info) {
  const std::string stored = store.GetAppSetting("", kSection, info.name, "");
  if (stored.empty() || Converts(info, stored, text)) return false;
  AppSettings defaults;
  AssignSetting(defaults, info, info.defaultText, text);
  return SettingText(settings, info, text) == SettingText(defaults, info, text);
}

}  // namespace

std::string SerialSettings(const AppSettings& settings) {
  return settings.BaudRate + "," + settings.Parity + "," + settings.DataBits + "," +
         settings.StopBits;
}

std::string SettingText(const AppSettings& settings, const SettingInfo& info,
                        const StoreText& text) {
  return std::visit(
      [&](auto field) -> std::string {
        const auto& value = settings.*field;
        using T = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::string>) {
          return value;
        } else if constexpr (std::is_same_v<T, bool>) {
          return StoreText::FromBoolean(value);
        } else if constexpr (std::is_same_v<T, double>) {
          return text.FromDouble(value);
        } else {
          return StoreText::FromInteger(value);
        }
      },
      info.field);
}

bool AssignSetting(AppSettings& settings, const SettingInfo& info, std::string_view value,
                   const StoreText& text) {
  return std::visit([&](auto field) { return Convert(value, text, settings.*field); }, info.field);
}

std::string SettingProblem(const SettingInfo& info, std::string_view value, const StoreText& text) {
  const std::string_view name = info.name;
  if (!Converts(info, value, text)) return TypeProblem(info);
  if (info.minimum != info.maximum) return RangeProblem(info, value, info.minimum, info.maximum);
  for (const EntryRange& range : kEntryRanges) {
    if (name == range.name) return RangeProblem(info, value, range.minimum, range.maximum);
  }
  for (const EntryChoices& entry : kEntryChoices) {
    if (name == entry.name) return ChoiceProblem(entry, value);
  }
  return {};
}

std::vector<std::string> LoadAppSettings(const modRegistry& store, const StoreText& text,
                                         const std::string& csvFilenameDefault,
                                         AppSettings& settings) {
  std::vector<std::string> problems;
  for (const SettingInfo& info : SettingsTable()) {
    const std::string_view name = info.name;
    const std::string defaultText = name == "CSVFilename" ? csvFilenameDefault : info.defaultText;
    const std::string stored = store.GetAppSetting("", kSection, info.name, defaultText);
    if (AssignSetting(settings, info, stored, text)) continue;
    AssignSetting(settings, info, defaultText, text);
    problems.push_back("The stored setting \"" + std::string(name) + "\" could not be read: \"" +
                       stored + "\". " + defaultText + " is used instead.");
  }
  for (const SettingInfo& info : SettingsTable()) ClampSetting(settings, info);
  return problems;
}

bool SaveAppSettingsAtExit(modRegistry& store, const StoreText& text, const AppSettings& settings) {
  bool saved = true;
  for (const char* name : kExitOrder) {
    const SettingInfo& info = *FindSetting(name);
    if (KeepsStoredText(store, text, settings, info)) continue;
    saved = store.SaveAppSetting("", kSection, name, SettingText(settings, info, text)) && saved;
  }
  return saved;
}

}  // namespace wattlark
