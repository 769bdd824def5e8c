#include <gmock/gmock.h>

#include <ostream>

#include "config/OptionsActions.h"
#include "config/OptionsLists.h"
#include "config/modRegistry.h"
#include "twins/MemoryRegistry.h"
#include "twins/ScriptedPrompts.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct OptionsActions : testing::Test {
  OptionsActions() {
    LoadAppSettings(store, text, "/logs/wattlark.csv", settings);
    settings.PortNum = 5;
    settings.GoogleUsername = "anna@example.org";
    settings.GooglePassword = "secret";
    settings.GoogleAuthToken = "token";
    settings.GoogleSpreadsheetsFeed = "spreadsheets";
    settings.GoogleWorksheetsFeed = "worksheets";
    settings.GoogleListFeed = "list";
  }

  OptionsEdit Shown() const { return MakeOptionsEdit(settings, regional); }
  bool OK(const OptionsEdit& edit) {
    return ApplyOptionsEdit(edit, {settings, registry, text, regional, prompts, &devices,
                                   "/opt/Watt lark/wattlark", [this] { ++restarts; }});
  }
  std::string Stored(const char* name) const {
    return store.GetAppSetting("", "Settings", name, "");
  }
  std::vector<std::string> StoredNames() const {
    std::vector<std::string> names;
    std::vector<std::string> texts;
    store.EnumStringValues(Hive::CurrentUser, modRegistry::AppKeyPath("", "Settings"), names,
                           texts);
    return names;
  }

  RegionalSettings regional = RegionalSettings::UnitedStates();
  StoreText text{regional};
  AppSettings settings;
  MemoryRegistry registry;
  modRegistry store{registry};
  PortDevices devices{store, [] { return std::vector<SerialDevice>{{"", "/dev/ttyUSB0"}}; }};
  ScriptedPrompts prompts;
  int restarts = 0;
};

TEST_F(OptionsActions, SavesInItsOrder) {
  EXPECT_TRUE(OK(Shown()));
  EXPECT_THAT(
      StoredNames(),
      ElementsAre("ShowAtLaunch", "AutoUpdate", "RunAtStartup", "PortNum", "BaudRate", "Parity",
                  "DataBits", "StopBits", "ServiceState", "Mils", "CO2perKWh", "LogToCSV",
                  "CSVFilename", "CSVInterval", "LogToPachube", "PachubeInterval", "PachubeFeedURL",
                  "PachubeAPIKey", "LogToGoogle", "GoogleInterval", "GoogleUsername",
                  "GooglePassword", "GoogleDocName", "GoogleWorksheetName", "LogToPowerMeter",
                  "PowerMeterInterval", "PowerMeterAuthInfo", "LogToTwitter", "AlarmsToTwitter",
                  "TwitterInterval", "TwitterUsername", "TwitterPassword", "TwitterMessage",
                  "TwitterAlarmMessage"));
}

TEST_F(OptionsActions, UnchangedWritesTheSameStore) {
  SaveAppSettingsAtExit(store, text, settings);
  for (const SettingInfo& info : SettingsTable()) {
    if (!info.writtenAtExit) {
      store.SaveAppSetting("", "Settings", info.name, SettingText(settings, info, text));
    }
  }
  const auto dump = [this] {
    std::vector<std::pair<std::string, std::vector<std::uint8_t>>> values;
    const std::string key = modRegistry::AppKeyPath("", "Settings");
    for (const auto& entry : registry.Values(Hive::CurrentUser, key)) {
      values.emplace_back(entry.name, entry.value.data);
    }
    return values;
  };
  const auto before = dump();
  EXPECT_EQ(before.size(), SettingsTable().size());
  EXPECT_TRUE(OK(Shown()));
  EXPECT_EQ(dump(), before);
  EXPECT_FALSE(store.AppSectionExists("", "PortDevices"));
  EXPECT_THAT(registry.Values(Hive::LocalMachine, RunAtLogOnKey), IsEmpty());
  EXPECT_THAT(prompts.asked, IsEmpty());
}

/// What OK does beside storing the change.
struct Effect {
  const char* name;
  void (*change)(OptionsEdit& edit);
  const char* seen = "";  ///< of: port, csv, token, worksheets, list
};
std::ostream& operator<<(std::ostream& out, const Effect& effect) {
  return out << effect.name;
}

class OptionsEffect : public OptionsActions, public testing::WithParamInterface<Effect> {};

TEST_P(OptionsEffect, IsSeen) {
  OptionsEdit edit = Shown();
  GetParam().change(edit);
  EXPECT_TRUE(OK(edit));
  std::string seen;
  if (restarts == 1) seen += "port ";
  if (settings.CSVFileChanged) seen += "csv ";
  if (settings.GoogleAuthToken.empty()) seen += "token ";
  if (settings.GoogleWorksheetsFeed.empty()) seen += "worksheets ";
  if (settings.GoogleListFeed.empty()) seen += "list ";
  EXPECT_EQ(seen, GetParam().seen);
  EXPECT_EQ(settings.GoogleSpreadsheetsFeed, "spreadsheets");
}

INSTANTIATE_TEST_SUITE_P(
    Changes, OptionsEffect,
    testing::Values(
        Effect{"Nothing", [](OptionsEdit&) {}},
        Effect{"Port", [](OptionsEdit& e) { e.general.portNum = 0; }, "port "},
        Effect{"PortOnTheSameDevice",
               [](OptionsEdit& e) {
                 e.general.portNum = 2;
                 e.general.portDevices[3] = "/dev/ttyUSB0";
               },
               "port "},
        Effect{"BaudRate", [](OptionsEdit& e) { e.general.baudRate = 0; }, "port "},
        Effect{"Parity", [](OptionsEdit& e) { e.general.parity = 0; }, "port "},
        Effect{"DataBits", [](OptionsEdit& e) { e.general.dataBits = 0; }, "port "},
        Effect{"StopBits", [](OptionsEdit& e) { e.general.stopBits = 1; }, "port "},
        Effect{"Device", [](OptionsEdit& e) { e.general.portDevices[5] = "/dev/x"; }, "port "},
        Effect{"DeviceOfAnotherPort", [](OptionsEdit& e) { e.general.portDevices[6] = "/dev/x"; }},
        Effect{"DeviceThatIsNoPath", [](OptionsEdit& e) { e.general.portDevices[5] = "ttyS0"; }},
        Effect{"CSVFile", [](OptionsEdit& e) { e.csv.csvFilename = "/logs/Wattlark.csv"; }, "csv "},
        Effect{"CSVInterval", [](OptionsEdit& e) { e.csv.csvInterval = 0; }},
        Effect{"GoogleUser", [](OptionsEdit& e) { e.google.googleUsername = "bob"; }, "token "},
        Effect{"GooglePassword", [](OptionsEdit& e) { e.google.googlePassword = "Secret"; },
               "token "},
        Effect{"GoogleDoc", [](OptionsEdit& e) { e.google.googleDocName = "Wattlark"; },
               "worksheets "},
        Effect{"GoogleWorksheet", [](OptionsEdit& e) { e.google.googleWorksheetName = "sheet1"; },
               "list "},
        Effect{"GoogleInterval", [](OptionsEdit& e) { e.google.googleInterval = 0; }},
        Effect{"Twitter", [](OptionsEdit& e) { e.twitter.twitterMessage = "x"; }}),
    [](const auto& test) { return test.param.name; });

TEST_F(OptionsActions, StoresAndForgetsTheDeviceOfAPort) {
  OptionsEdit edit = Shown();
  edit.general.portDevices[5] = " /dev/x ";
  OK(edit);
  EXPECT_EQ(store.GetAppSetting("", "PortDevices", "COM5", ""), "/dev/x");
  devices.UseForThisRun(5, "/tmp/pty");
  edit.general.portDevices[5] = "";
  OK(edit);
  EXPECT_EQ(devices.Path(5), "/dev/ttyUSB0");
  EXPECT_EQ(restarts, 2);
}

TEST_F(OptionsActions, DemoModeIsConfirmedAndNotStored) {
  OptionsEdit edit = Shown();
  edit.general.demoMode = true;
  edit.twitter.twitterMessage = "x";
  prompts.answers = {PromptAnswer::Cancel, PromptAnswer::OK};
  OK(edit);
  EXPECT_FALSE(settings.DemoMode);
  EXPECT_EQ(restarts, 0);
  EXPECT_EQ(Stored("TwitterMessage"), "x") << "the other changes are kept";
  OK(edit);
  EXPECT_TRUE(settings.DemoMode);
  EXPECT_EQ(restarts, 1);
  ASSERT_EQ(prompts.asked.size(), 2u);
  const PromptMessage& warning = prompts.asked[0];
  EXPECT_EQ(warning.caption, "Consider yourself warned!");
  EXPECT_EQ(warning.icon, PromptIcon::Information);
  EXPECT_EQ(warning.buttons, PromptButtons::OKCancel);
  EXPECT_EQ(warning.text,
            "Running in 'Demo Mode' will ignore all real device inputs, even if they are "
            "connnected and communicating.\r\nWattlark will display entirely fictitious data for "
            "each channel until this mode is switched off.");
  edit.general.demoMode = false;
  OK(edit);
  EXPECT_FALSE(settings.DemoMode);
  EXPECT_EQ(restarts, 2);
  EXPECT_EQ(prompts.asked.size(), 2u);
  EXPECT_EQ(Stored("DemoMode"), "");
}

TEST_F(OptionsActions, RunAtLogOnIsWrittenOrRemovedOnEveryOK) {
  OptionsEdit edit = Shown();
  edit.general.runAtStartup = true;
  OK(edit);
  RegistryValue value;
  ASSERT_TRUE(store.QueryValue(Hive::LocalMachine, RunAtLogOnKey, "Wattlark", value));
  EXPECT_EQ(std::string(value.data.begin(), value.data.end()), "\"/opt/Watt lark/wattlark\"");
  edit.general.runAtStartup = false;
  OK(edit);
  EXPECT_FALSE(store.QueryValue(Hive::LocalMachine, RunAtLogOnKey, "Wattlark", value));
}

TEST_F(OptionsActions, WhatDoesNotConvertKeepsItsValue) {
  OptionsEdit edit = Shown();
  edit.general.mils = "cheap";
  edit.general.co2 = "";
  EXPECT_TRUE(OK(edit));
  EXPECT_EQ(settings.Mils, 0.106);
  EXPECT_EQ(Stored("Mils"), "0.106");
  EXPECT_EQ(Stored("CO2perKWh"), "0.1251");
}

TEST_F(OptionsActions, AStoredValueOutsideItsListBecomesNothing) {
  settings.PortNum = 12;
  settings.StopBits = "3";
  settings.CSVInterval = 120;
  settings.TwitterInterval = 5;
  settings.ServiceState = 51;
  const OptionsEdit edit = Shown();
  EXPECT_THAT((std::vector<int>{edit.general.portNum, edit.general.stopBits, edit.csv.csvInterval,
                                edit.twitter.twitterInterval, edit.general.serviceState}),
              testing::Each(-1));
  OK(edit);
  EXPECT_EQ(restarts, 1);
  EXPECT_EQ(Stored("PortNum") + Stored("CSVInterval") + Stored("TwitterInterval"), "000");
  EXPECT_EQ(Stored("StopBits"), "");
}

TEST_F(OptionsActions, SettingsAreInForceThoughTheStoreFails) {
  OptionsEdit edit = Shown();
  edit.general.portNum = 0;
  edit.general.mils = "2";
  registry.failsWrites = true;
  EXPECT_FALSE(OK(edit));
  EXPECT_EQ(settings.Mils, 2);
  EXPECT_EQ(restarts, 1);
  EXPECT_THAT(StoredNames(), IsEmpty());
}

}  // namespace
}  // namespace wattlark
