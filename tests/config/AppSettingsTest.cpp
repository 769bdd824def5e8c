#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "config/AppSettings.h"
#include "config/modRegistry.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {

namespace {

using Names = std::vector<std::string>;

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

TEST_F(AppSettingsTest, AFreshProfileYieldsEveryDefault) {
  EXPECT_EQ(Load(), Names{});
  const struct {
    const char* name;
    const char* text;
  } defaults[] = {
      {"AlwaysOnTop", "False"},
      {"ShowAtLaunch", "True"},
      {"AutoUpdate", "True"},
      {"RunAtStartup", "False"},
      {"DemoMode", "False"},
      {"PortNum", "3"},
      {"BaudRate", "9600"},
      {"Parity", "N"},
      {"DataBits", "8"},
      {"StopBits", "1"},
      {"ServiceState", "0"},
      {"Mils", "0.106"},
      {"CO2perKWh", "0.1251"},
      {"LogToCSV", "True"},
      {"CSVFilename", "/srv/wattlark.csv"},
      {"CSVInterval", "300"},
      {"LogToPachube", "False"},
      {"PachubeInterval", "300"},
      {"PachubeFeedURL", "http://api.pachube.com/api/feeds/1234.xml"},
      {"PachubeAPIKey", "Your Pachube feed API Key should be pasted here..."},
      {"LogToGoogle", "False"},
      {"GoogleUsername", ""},
      {"GooglePassword", ""},
      {"GoogleInterval", "300"},
      {"GoogleDocName", "wattlark"},
      {"GoogleWorksheetName", "Sheet1"},
      {"GoogleSpreadsheetsFeed", ""},
      {"GoogleWorksheetsFeed", ""},
      {"GoogleListFeed", ""},
      {"LogToPowerMeter", "False"},
      {"PowerMeterInterval", "600"},
      {"PowerMeterAuthInfo",
       "Your complete Google PowerMeter Authentication Info should be pasted here..."},
      {"LogToTwitter", "False"},
      {"AlarmsToTwitter", "False"},
      {"TwitterUsername", ""},
      {"TwitterPassword", ""},
      {"TwitterMessage", "Currently using %W, %D so far today, %Y yesterday."},
      {"TwitterAlarmMessage", "The %N has generated an alarm! It is currently using %W of power."},
      {"TwitterInterval", "24"},
      {"CurrentUnit", "0"},
      {"CurrentInterval", "0"},
      {"RecentUnit", "0"},
      {"RecentInterval", "0"},
      {"TotalUnit", "0"},
  };
  ASSERT_EQ(SettingsTable().size(), std::size(defaults));
  for (std::size_t i = 0; i < std::size(defaults); ++i) {
    const SettingInfo& info = SettingsTable()[i];
    EXPECT_STREQ(info.name, defaults[i].name);
    EXPECT_EQ(SettingText(settings_, info, text_), defaults[i].text) << info.name;
  }
}

TEST_F(AppSettingsTest, StoredTextsLoadIntoTheirFields) {
  const struct {
    const char* name;
    const char* stored;
    const char* loaded;
  } cases[] = {
      {"CSVInterval", "30", "60"},
      {"CSVInterval", "7200", "3600"},
      {"CSVInterval", "61", "61"},
      {"GoogleInterval", "-5", "60"},
      {"PachubeInterval", "3601", "3600"},
      {"PowerMeterInterval", "60", "600"},
      {"TwitterInterval", "0", "1"},
      {"TwitterInterval", "48", "24"},
      {"AutoUpdate", "false", "False"},
      {"AutoUpdate", "0", "False"},
      {"DemoMode", "TRUE", "True"},
      {"DemoMode", "-1", "True"},
      {"DemoMode", "1", "True"},
      {"PortNum", "32767", "32767"},
      {"Mils", "0,2", "0.2"},
      {"Mils", "1E-05", "1E-05"},
      {"TwitterMessage", "", "Currently using %W, %D so far today, %Y yesterday."},
      {"Parity", "any text", "any text"},
      {"TotalUnit", "-2147483648", "-2147483648"},
  };
  for (const auto& test : cases) {
    Store(test.name, test.stored);
    EXPECT_EQ(Load(), Names{}) << test.name;
    EXPECT_EQ(SettingText(settings_, *FindSetting(test.name), text_), test.loaded) << test.name;
  }
}

TEST_F(AppSettingsTest, ATextThatDoesNotConvertGivesTheDefaultAndOneMessage) {
  const struct {
    const char* name;
    const char* stored;
    const char* usual;
  } cases[] = {
      {"PortNum", "COM5", "3"},        {"PortNum", "32768", "3"},
      {"CSVInterval", "5 min", "300"}, {"CSVInterval", "99999999999", "300"},
      {"Mils", "1.000,5", "0.106"},    {"Mils", "1E999", "0.106"},
      {"LogToCSV", "maybe", "True"},
  };
  for (const auto& test : cases) {
    Store(test.name, test.stored);
    const Names problems = Load();
    ASSERT_EQ(problems.size(), 1U) << test.name;
    EXPECT_NE(problems[0].find(test.name), std::string::npos);
    EXPECT_NE(problems[0].find(test.stored), std::string::npos);
    EXPECT_EQ(SettingText(settings_, *FindSetting(test.name), text_), test.usual);
    ASSERT_TRUE(store_.DeleteAppSetting("", "Settings", test.name));
  }
}

TEST_F(AppSettingsTest, TheExitSaveKeepsAnUnreadableTextUntilTheSettingChanges) {
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

TEST_F(AppSettingsTest, TheExitSaveWritesItsSettingsInTheirFixedOrder) {
  Load();
  ASSERT_TRUE(SaveAppSettingsAtExit(store_, text_, settings_));
  Names names;
  Names texts;
  store_.EnumStringValues(Hive::CurrentUser, modRegistry::AppKeyPath("", "Settings"), names, texts);
  const Names expected = {"AlwaysOnTop",
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
                          "TotalUnit"};
  EXPECT_EQ(names, expected);
  std::set<std::string> marked;
  for (const SettingInfo& info : SettingsTable()) {
    if (info.writtenAtExit) marked.insert(info.name);
  }
  EXPECT_EQ(marked, std::set<std::string>(expected.begin(), expected.end()));
}

TEST_F(AppSettingsTest, WhatIsSavedLoadsAgainInEveryForm) {
  RegionalSettings comma = RegionalSettings::UnitedStates();
  comma.decimalSeparator = ",";
  text_ = StoreText(comma);
  Load();
  settings_.AlwaysOnTop = true;
  settings_.PortNum = -7;
  settings_.CSVInterval = 3600;
  settings_.GooglePassword = "p\xC3\xA4ss \"word\"";
  ASSERT_TRUE(SaveAppSettingsAtExit(store_, text_, settings_));
  Store("Mils", SettingText(settings_, *FindSetting("Mils"), text_));
  EXPECT_EQ(Stored("Mils"), "0,106");
  const AppSettings before = settings_;
  settings_ = AppSettings();
  EXPECT_EQ(Load(), Names{});
  for (const SettingInfo& info : SettingsTable()) {
    EXPECT_EQ(SettingText(settings_, info, text_), SettingText(before, info, text_)) << info.name;
  }
}

TEST_F(AppSettingsTest, TheExitSaveReportsAFailedWrite) {
  Load();
  registry_.failsWrites = true;
  EXPECT_FALSE(SaveAppSettingsAtExit(store_, text_, settings_));
}

TEST_F(AppSettingsTest, FindSettingComparesWithoutCase) {
  ASSERT_NE(FindSetting("co2PERkwh"), nullptr);
  EXPECT_STREQ(FindSetting("co2PERkwh")->name, "CO2perKWh");
  EXPECT_EQ(FindSetting("SkipVersion"), nullptr);
  EXPECT_EQ(FindSetting(""), nullptr);
}

TEST_F(AppSettingsTest, SecretsAreMarked) {
  std::set<std::string> secrets;
  for (const SettingInfo& info : SettingsTable()) {
    if (info.secret) secrets.insert(info.name);
  }
  EXPECT_EQ(secrets, (std::set<std::string>{"PachubeAPIKey", "GooglePassword", "PowerMeterAuthInfo",
                                            "TwitterPassword"}));
}

TEST_F(AppSettingsTest, WhatAUserMayEnter) {
  const struct {
    const char* name;
    const char* value;
    bool isRight;
  } cases[] = {
      {"DemoMode", "true", true},
      {"DemoMode", "maybe", false},
      {"PortNum", "1", true},
      {"PortNum", "256", true},
      {"PortNum", "0", false},
      {"PortNum", "COM3", false},
      {"BaudRate", "115200", true},
      {"BaudRate", "9601", false},
      {"Parity", "S", true},
      {"Parity", "X", false},
      {"Parity", "", false},
      {"DataBits", "4", true},
      {"DataBits", "9", false},
      {"StopBits", "1.5", true},
      {"StopBits", "3", false},
      {"ServiceState", "50", true},
      {"ServiceState", "51", false},
      {"Mils", "0,2", true},
      {"Mils", "cheap", false},
      {"CSVInterval", "60", true},
      {"CSVInterval", "59", false},
      {"CSVInterval", "3601", false},
      {"PowerMeterInterval", "60", false},
      {"TwitterInterval", "24", true},
      {"TwitterInterval", "25", false},
      {"TwitterMessage", "", true},
      {"GoogleDocName", "any", true},
  };
  for (const auto& test : cases) {
    const std::string problem = SettingProblem(*FindSetting(test.name), test.value, text_);
    EXPECT_EQ(problem.empty(), test.isRight) << test.name << "=" << test.value << ": " << problem;
    if (!test.isRight) {
      EXPECT_NE(problem.find(test.name), std::string::npos) << problem;
    }
  }
}

}  // namespace

}  // namespace wattlark
