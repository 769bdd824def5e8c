#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "config/StoreText.h"

namespace wattlark {

class modRegistry;

/// The application's settings in memory: one field per value of the store's section "Settings",
/// and three fields that are never stored. One object, owned by `Monitor` and passed on.
struct AppSettings {
  bool AlwaysOnTop{};
  bool ShowAtLaunch{};
  bool AutoUpdate{};
  bool RunAtStartup{};
  bool DemoMode{};
  std::int16_t PortNum{};  ///< COM1 is 1
  std::string BaudRate;
  std::string Parity;    ///< E, M, N, O or S
  std::string DataBits;  ///< 4 to 8
  std::string StopBits;  ///< 1, 1.5 or 2
  std::int16_t ServiceState{};
  double Mils{};       ///< currency units per kWh
  double CO2perKWh{};  ///< pounds per kWh
  bool LogToCSV{};
  std::string CSVFilename;
  std::int32_t CSVInterval{};  ///< seconds
  bool LogToPachube{};
  std::int32_t PachubeInterval{};  ///< seconds
  std::string PachubeFeedURL;
  std::string PachubeAPIKey;
  bool LogToGoogle{};
  std::string GoogleUsername;
  std::string GooglePassword;
  std::int32_t GoogleInterval{};  ///< seconds
  std::string GoogleDocName;
  std::string GoogleWorksheetName;
  std::string GoogleSpreadsheetsFeed;
  std::string GoogleWorksheetsFeed;
  std::string GoogleListFeed;
  bool LogToPowerMeter{};
  std::int32_t PowerMeterInterval{};  ///< seconds
  std::string PowerMeterAuthInfo;
  bool LogToTwitter{};
  bool AlarmsToTwitter{};
  std::string TwitterUsername;
  std::string TwitterPassword;
  std::string TwitterMessage;
  std::string TwitterAlarmMessage;
  std::int32_t TwitterInterval{};  ///< hours
  std::int32_t CurrentUnit{};
  std::int32_t CurrentInterval{};
  std::int32_t RecentUnit{};
  std::int32_t RecentInterval{};
  std::int32_t TotalUnit{};

  std::string GoogleAuthToken;  ///< never stored
  bool CSVFileChanged = false;  ///< never stored; the CSV log starts with a header line next time
  std::string RunningVersion;   ///< never stored; the program's own version text
};

/// How the serial port is set: baud rate, parity, data bits and stop bits, as in "9600,N,8,1".
std::string SerialSettings(const AppSettings& settings);

/// One row of the table of settings.
struct SettingInfo {
  using Field =
      std::variant<bool AppSettings::*, std::int16_t AppSettings::*, std::int32_t AppSettings::*,
                   double AppSettings::*, std::string AppSettings::*>;
  const char* name;
  Field field;
  const char* defaultText;  ///< with "." as decimal separator
  /// Clamp applied at load, and what a user may enter; equal bounds mean none.
  std::int32_t minimum;
  std::int32_t maximum;
  bool writtenByOptions;
  bool writtenAtExit;
  bool secret;  ///< a password, key or token: never shown in a list or a message
};

/// Every stored setting, in the order in which settings are read at start.
std::span<const SettingInfo> SettingsTable();
/// The row of that name, compared without case; null when there is none.
const SettingInfo* FindSetting(std::string_view name);

/// Text of one field in the store's form.
std::string SettingText(const AppSettings& settings, const SettingInfo& info,
                        const StoreText& text);
/// Converts `value` to the field's type and stores it. False, with the field unchanged, when the
/// text does not convert.
bool AssignSetting(AppSettings& settings, const SettingInfo& info, std::string_view value,
                   const StoreText& text);
/// What a user may not enter: why `value` does not fit that setting, or an empty text when it does
/// (types, ranges and the choices of the serial settings).
std::string SettingProblem(const SettingInfo& info, std::string_view value, const StoreText& text);

/// Fills every field from section "Settings" and clamps the five intervals. A stored text that does
/// not convert leaves the default in force and adds one readable line to the result; the stored
/// text stays until the setting is next written. `csvFilenameDefault` is the default of
/// `CSVFilename`.
std::vector<std::string> LoadAppSettings(const modRegistry& store, const StoreText& text,
                                         const std::string& csvFilenameDefault,
                                         AppSettings& settings);
/// Writes the settings marked "at exit", in their fixed order. False when a write failed.
bool SaveAppSettingsAtExit(modRegistry& store, const StoreText& text, const AppSettings& settings);

}  // namespace wattlark
