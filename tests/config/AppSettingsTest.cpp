#include <string>
#include <vector>

#include "config/AppSettings.h"
#include "config/modRegistry.h"
#include "support/RegionalForms.h"
#include "twins/Matchers.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

using Names = std::vector<std::string>;

using Row = std::tuple<const char*, const char*, const char*>;

class AppSettingsTest : public testing::Test {
 protected:
  Names Load() { return LoadAppSettings(store_, text_, "/srv/wattlark.csv", settings_); }
  void Store(const std::string& name, const std::string& text) {
    ASSERT_TRUE(store_.SaveAppSetting("", "Settings", name, text));
  }
  std::string Stored(const std::string& name) const {
    return store_.GetAppSetting("", "Settings", name, "");
  }

  MemoryRegistry registry_;
  modRegistry store_{registry_};
  StoreText text_{RegionalSettings::UnitedStates()};
  AppSettings settings_;
};

TEST_F(AppSettingsTest, AFreshProfileYieldsEveryDefaultAndTheExitSaveWritesThemInTheirOrder) {
  EXPECT_EQ(Load(), Names{});
  ASSERT_TRUE(SaveAppSettingsAtExit(store_, text_, settings_));
  std::string written;
  for (const auto& value :
       registry_.Values(Hive::CurrentUser, modRegistry::AppKeyPath("", "Settings"))) {
    written += value.name + '=' + Stored(value.name) + '|';
  }
  EXPECT_EQ(written,
            "AlwaysOnTop=False|ShowAtLaunch=True|AutoUpdate=True|RunAtStartup=False|DemoMode=False|"
            "PortNum=3|BaudRate=9600|Parity=N|DataBits=8|StopBits=1|LogToCSV=True|"
            "CSVFilename=/srv/wattlark.csv|CSVInterval=300|LogToPachube=False|PachubeInterval=300|"
            "PachubeFeedURL=http://api.pachube.com/api/feeds/1234.xml|"
            "PachubeAPIKey=Your Pachube feed API Key should be pasted here...|LogToGoogle=False|"
            "GoogleInterval=300|GoogleUsername=|GooglePassword=|GoogleDocName=wattlark|"
            "GoogleWorksheetName=Sheet1|GoogleSpreadsheetsFeed=|GoogleWorksheetsFeed=|"
            "GoogleListFeed=|LogToPowerMeter=False|PowerMeterInterval=600|PowerMeterAuthInfo="
            "Your complete Google PowerMeter Authentication Info should be pasted here...|"
            "LogToTwitter=False|AlarmsToTwitter=False|TwitterInterval=24|TwitterUsername=|"
            "TwitterPassword=|TwitterMessage=Currently using %W, %D so far today, %Y yesterday.|"
            "TwitterAlarmMessage="
            "The %N has generated an alarm! It is currently using %W of power.|"
            "CurrentUnit=0|CurrentInterval=0|RecentUnit=0|RecentInterval=0|TotalUnit=0|");
  std::string others;
  for (const SettingInfo& info : SettingsTable()) {
    if (info.writtenAtExit) continue;
    others += std::string(info.name) + '=' + SettingText(settings_, info, text_) + '|';
  }
  EXPECT_EQ(others, "ServiceState=0|Mils=0.106|CO2perKWh=0.1251|");
  registry_.failsWrites = true;
  EXPECT_FALSE(SaveAppSettingsAtExit(store_, text_, settings_));
}

TEST_F(AppSettingsTest, StoredTextsLoadIntoTheirFields) {
  for (const auto& [name, stored, loaded] :
       {Row{"CSVInterval", "30", "60"}, Row{"CSVInterval", "7200", "3600"},
        Row{"CSVInterval", "61", "61"}, Row{"GoogleInterval", "-5", "60"},
        Row{"PachubeInterval", "3601", "3600"}, Row{"PowerMeterInterval", "60", "600"},
        Row{"TwitterInterval", "0", "1"}, Row{"TwitterInterval", "48", "24"},
        Row{"AutoUpdate", "false", "False"}, Row{"DemoMode", "-1", "True"},
        Row{"PortNum", "32767", "32767"}, Row{"Mils", "0,2", "0.2"},
        Row{"TwitterMessage", "", "Currently using %W, %D so far today, %Y yesterday."},
        Row{"parity", "any text", "any text"}, Row{"TotalUnit", "-2147483648", "-2147483648"}}) {
    Store(name, stored);
    EXPECT_EQ(Load(), Names{}) << name;
    EXPECT_EQ(SettingText(settings_, *FindSetting(name), text_), loaded) << name;
  }
  EXPECT_EQ(SettingText(settings_, *FindSetting("Mils"), StoreText(Germany())), "0,2");
}

TEST_F(AppSettingsTest, ATextThatDoesNotConvertGivesTheDefaultAndIsKeptUntilTheSettingChanges) {
  for (const auto& [name, stored, loaded] :
       {Row{"PortNum", "COM5", "3"}, Row{"PortNum", "32768", "3"},
        Row{"CSVInterval", "99999999999", "300"}, Row{"Mils", "1.000,5", "0.106"},
        Row{"LogToCSV", "maybe", "True"}}) {
    Store(name, stored);
    const Names problems = Load();
    ASSERT_EQ(problems.size(), 1U) << name;
    EXPECT_THAT(problems[0], AllOf(HasSubstr(name), HasSubstr(stored)));
    EXPECT_EQ(SettingText(settings_, *FindSetting(name), text_), loaded);
    ASSERT_TRUE(store_.DeleteAppSetting("", "Settings", name));
  }
  Store("PortNum", "COM5");
  Load();
  settings_.BaudRate = "19200";
  ASSERT_TRUE(SaveAppSettingsAtExit(store_, text_, settings_));
  EXPECT_EQ(Stored("PortNum"), "COM5");
  EXPECT_EQ(Stored("BaudRate"), "19200");
  settings_.PortNum = 5;
  ASSERT_TRUE(SaveAppSettingsAtExit(store_, text_, settings_));
  EXPECT_EQ(Stored("PortNum"), "5");
}

TEST_F(AppSettingsTest, WhatAUserMayEnter) {
  using Pair = std::pair<const char*, const char*>;
  for (const auto& [name, value] :
       {Pair{"DemoMode", "true"}, Pair{"PortNum", "1"}, Pair{"PortNum", "256"},
        Pair{"BaudRate", "115200"}, Pair{"Parity", "S"}, Pair{"StopBits", "1.5"},
        Pair{"ServiceState", "50"}, Pair{"Mils", "0,2"}, Pair{"TwitterMessage", ""}}) {
    EXPECT_EQ(SettingProblem(*FindSetting(name), value, text_), "") << name << "=" << value;
  }
  for (const auto& [name, value] :
       {Pair{"DemoMode", "maybe"}, Pair{"PortNum", "0"}, Pair{"PortNum", "COM3"},
        Pair{"BaudRate", "9601"}, Pair{"Parity", ""}, Pair{"DataBits", "9"}, Pair{"StopBits", "3"},
        Pair{"ServiceState", "51"}, Pair{"Mils", "cheap"}, Pair{"CSVInterval", "59"},
        Pair{"PowerMeterInterval", "60"}, Pair{"TwitterInterval", "25"}}) {
    EXPECT_THAT(SettingProblem(*FindSetting(name), value, text_), HasSubstr(name)) << value;
  }
}

}  // namespace
}  // namespace wattlark
