#include <algorithm>
#include <iterator>

#include "config/AppSettings.h"
#include "support/modText.h"

namespace wattlark {

namespace {

using S = AppSettings;

constexpr bool kOptions = true;
constexpr bool kExit = true;
constexpr bool kNever = false;
constexpr bool kSecret = true;
constexpr bool kOpen = false;

// "SkipVersion", the version a user chose to skip, is stored in the same section but is no field:
// the update check alone reads, writes and deletes it. The default of "CSVFilename" depends on
// where the program is installed and is given at load.
const SettingInfo kTable[] = {
    {"AlwaysOnTop", &S::AlwaysOnTop, "False", 0, 0, kNever, kExit, kOpen},
    {"ShowAtLaunch", &S::ShowAtLaunch, "True", 0, 0, kOptions, kExit, kOpen},
    {"AutoUpdate", &S::AutoUpdate, "True", 0, 0, kOptions, kExit, kOpen},
    {"RunAtStartup", &S::RunAtStartup, "False", 0, 0, kOptions, kExit, kOpen},
    {"DemoMode", &S::DemoMode, "False", 0, 0, kNever, kExit, kOpen},
    {"PortNum", &S::PortNum, "3", 0, 0, kOptions, kExit, kOpen},
    {"BaudRate", &S::BaudRate, "9600", 0, 0, kOptions, kExit, kOpen},
    {"Parity", &S::Parity, "N", 0, 0, kOptions, kExit, kOpen},
    {"DataBits", &S::DataBits, "8", 0, 0, kOptions, kExit, kOpen},
    {"StopBits", &S::StopBits, "1", 0, 0, kOptions, kExit, kOpen},
    {"ServiceState", &S::ServiceState, "0", 0, 0, kOptions, kNever, kOpen},
    {"Mils", &S::Mils, "0.106", 0, 0, kOptions, kNever, kOpen},
    {"CO2perKWh", &S::CO2perKWh, "0.1251", 0, 0, kOptions, kNever, kOpen},
    {"LogToCSV", &S::LogToCSV, "True", 0, 0, kOptions, kExit, kOpen},
    {"CSVFilename", &S::CSVFilename, "", 0, 0, kOptions, kExit, kOpen},
    {"CSVInterval", &S::CSVInterval, "300", 60, 3600, kOptions, kExit, kOpen},
    {"LogToPachube", &S::LogToPachube, "False", 0, 0, kOptions, kExit, kOpen},
    {"PachubeInterval", &S::PachubeInterval, "300", 60, 3600, kOptions, kExit, kOpen},
    {"PachubeFeedURL", &S::PachubeFeedURL, "http://api.pachube.com/api/feeds/1234.xml", 0, 0,
     kOptions, kExit, kOpen},
    {"PachubeAPIKey", &S::PachubeAPIKey, "Your Pachube feed API Key should be pasted here...", 0, 0,
     kOptions, kExit, kSecret},
    {"LogToGoogle", &S::LogToGoogle, "False", 0, 0, kOptions, kExit, kOpen},
    {"GoogleUsername", &S::GoogleUsername, "", 0, 0, kOptions, kExit, kOpen},
    {"GooglePassword", &S::GooglePassword, "", 0, 0, kOptions, kExit, kSecret},
    {"GoogleInterval", &S::GoogleInterval, "300", 60, 3600, kOptions, kExit, kOpen},
    {"GoogleDocName", &S::GoogleDocName, "wattlark", 0, 0, kOptions, kExit, kOpen},
    {"GoogleWorksheetName", &S::GoogleWorksheetName, "Sheet1", 0, 0, kOptions, kExit, kOpen},
    {"GoogleSpreadsheetsFeed", &S::GoogleSpreadsheetsFeed, "", 0, 0, kNever, kExit, kOpen},
    {"GoogleWorksheetsFeed", &S::GoogleWorksheetsFeed, "", 0, 0, kNever, kExit, kOpen},
    {"GoogleListFeed", &S::GoogleListFeed, "", 0, 0, kNever, kExit, kOpen},
    {"LogToPowerMeter", &S::LogToPowerMeter, "False", 0, 0, kOptions, kExit, kOpen},
    {"PowerMeterInterval", &S::PowerMeterInterval, "600", 600, 3600, kOptions, kExit, kOpen},
    {"PowerMeterAuthInfo", &S::PowerMeterAuthInfo,
     "Your complete Google PowerMeter Authentication Info should be pasted here...", 0, 0, kOptions,
     kExit, kSecret},
    {"LogToTwitter", &S::LogToTwitter, "False", 0, 0, kOptions, kExit, kOpen},
    {"AlarmsToTwitter", &S::AlarmsToTwitter, "False", 0, 0, kOptions, kExit, kOpen},
    {"TwitterUsername", &S::TwitterUsername, "", 0, 0, kOptions, kExit, kOpen},
    {"TwitterPassword", &S::TwitterPassword, "", 0, 0, kOptions, kExit, kSecret},
    {"TwitterMessage", &S::TwitterMessage, "Currently using %W, %D so far today, %Y yesterday.", 0,
     0, kOptions, kExit, kOpen},
    {"TwitterAlarmMessage", &S::TwitterAlarmMessage,
     "The %N has generated an alarm! It is currently using %W of power.", 0, 0, kOptions, kExit,
     kOpen},
    {"TwitterInterval", &S::TwitterInterval, "24", 1, 24, kOptions, kExit, kOpen},
    {"CurrentUnit", &S::CurrentUnit, "0", 0, 0, kNever, kExit, kOpen},
    {"CurrentInterval", &S::CurrentInterval, "0", 0, 0, kNever, kExit, kOpen},
    {"RecentUnit", &S::RecentUnit, "0", 0, 0, kNever, kExit, kOpen},
    {"RecentInterval", &S::RecentInterval, "0", 0, 0, kNever, kExit, kOpen},
    {"TotalUnit", &S::TotalUnit, "0", 0, 0, kNever, kExit, kOpen},
};

}  // namespace

std::span<const SettingInfo> SettingsTable() {
  return kTable;
}

const SettingInfo* FindSetting(std::string_view name) {
  const std::string wanted = FoldCase(name);
  const auto found =
      std::find_if(std::begin(kTable), std::end(kTable),
                   [&](const SettingInfo& row) { return FoldCase(row.name) == wanted; });
  return found == std::end(kTable) ? nullptr : found;
}

}  // namespace wattlark
