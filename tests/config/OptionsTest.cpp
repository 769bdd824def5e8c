#include <algorithm>
#include <string>

#include "config/OptionsActions.h"
#include "config/OptionsEdit.h"
#include "config/OptionsLists.h"
#include "config/ServiceStates.h"
#include "config/modRegistry.h"
#include "support/CompactPath.h"
#include "support/RegionalForms.h"
#include "twins/Matchers.h"
#include "twins/MemoryRegistry.h"
#include "twins/ScriptedPrompts.h"

namespace wattlark {
namespace {

TEST(OptionsEdit, AStateFillsTheElectricityFieldsAndNoStateLeavesThem) {
  const RegionalSettings us = RegionalSettings::UnitedStates();
  std::string mils;
  std::string co2;
  EXPECT_TRUE(FillElectricity(50, us, mils, co2));
  for (const int outside : {-1, 51}) {
    EXPECT_FALSE(FillElectricity(outside, us, mils, co2));
    EXPECT_EQ(mils, "$2.2780");
    EXPECT_EQ(co2, "0.0748");
  }
}

TEST(OptionsEdit, ReadsMoneyWithFourDecimals) {
  const RegionalSettings us = RegionalSettings::UnitedStates();
  EXPECT_EQ(ReadMils(us, "0.123456"), 0.1235);
  EXPECT_EQ(ReadMils(us, "$1,234.5"), 1234.5);
  EXPECT_EQ(ReadMils(us, "-$0.00004"), 0);
  EXPECT_EQ(ReadMils(us, "900000000000000"), 9e14);
  EXPECT_EQ(ReadMils(Germany(), "0,10605 \u20AC"), 0.1061);
  for (const char* wrong : {"", "abc", "0.1 per kWh", "1000000000000000"}) {
    EXPECT_EQ(ReadMils(us, wrong), std::nullopt) << wrong;
  }
  EXPECT_EQ(ReadCO2(us, "0.123456"), 0.123456);
  EXPECT_EQ(ReadCO2(us, "lots"), std::nullopt);
}

TEST(OptionsEdit, ShowsALongPathShortened) {
  const auto path = [](std::size_t length) {
    return "/data/anna/" + std::string(length - 24, 'x') + "/wattlark.csv";
  };
  EXPECT_EQ(ShownCSVFilename(path(55)), path(55));
  EXPECT_EQ(ShownCSVFilename(path(56)), "/data/anna/.../wattlark.csv");
  EXPECT_EQ(ShownCSVFilename("C:\\Users\\" + std::string(60, 'x') + "\\a.csv"),
            "C:\\Users\\...\\a.csv");
  // Characters count, not bytes.
  std::string wide;
  for (int i = 0; i < 55; ++i) wide += "\u00E4";
  EXPECT_EQ(ShownCSVFilename(wide), wide);
  EXPECT_EQ(CountCharacters(ShownCSVFilename("/x/" + wide)), 54u);
}

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
  std::vector<NamedRegistryValue> StoredValues() {
    return registry.Values(Hive::CurrentUser, modRegistry::AppKeyPath("", "Settings"));
  }
  std::string StoredNames() {
    std::string names;
    for (const NamedRegistryValue& value : StoredValues()) names += value.name + ' ';
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

TEST_F(OptionsActions, UnchangedWritesTheSameStore) {
  SaveAppSettingsAtExit(store, text, settings);
  for (const SettingInfo& info : SettingsTable()) {
    if (!info.writtenAtExit) {
      store.SaveAppSetting("", "Settings", info.name, SettingText(settings, info, text));
    }
  }
  const auto before = StoredValues();
  EXPECT_EQ(before.size(), SettingsTable().size());
  EXPECT_TRUE(OK(Shown()));
  EXPECT_TRUE(std::ranges::equal(StoredValues(), before, [](const auto& a, const auto& b) {
    return a.name == b.name && a.value == b.value;
  }));
  EXPECT_FALSE(store.AppSectionExists("", "PortDevices"));
  EXPECT_THAT(registry.Values(Hive::LocalMachine, RunAtLogOnKey), IsEmpty());
  EXPECT_THAT(prompts.asked, IsEmpty());
}

TEST_F(OptionsActions, DoesWhatAChangeNeedsBesideStoringIt) {
  const AppSettings before = settings;
  const struct {
    const char* name;
    void (*change)(OptionsEdit& edit);
    const char* seen = "";
  } cases[] = {
      {"nothing", [](OptionsEdit&) {}},
      {"port", [](OptionsEdit& e) { e.general.portNum = 0; }, "port "},
      {"port on the same device",
       [](OptionsEdit& e) { e.general.portNum = 2, e.general.portDevices[3] = "/dev/ttyUSB0"; },
       "port "},
      {"baud rate", [](OptionsEdit& e) { e.general.baudRate = 0; }, "port "},
      {"parity", [](OptionsEdit& e) { e.general.parity = 0; }, "port "},
      {"data bits", [](OptionsEdit& e) { e.general.dataBits = 0; }, "port "},
      {"stop bits", [](OptionsEdit& e) { e.general.stopBits = 1; }, "port "},
      {"another port's device", [](OptionsEdit& e) { e.general.portDevices[6] = "/dev/x"; }},
      {"no path", [](OptionsEdit& e) { e.general.portDevices[5] = "ttyS0"; }},
      {"device", [](OptionsEdit& e) { e.general.portDevices[5] = "/dev/x"; }, "port "},
      {"CSV file", [](OptionsEdit& e) { e.csv.csvFilename = "/logs/Wattlark.csv"; }, "csv "},
      {"Google user", [](OptionsEdit& e) { e.google.googleUsername = "bob"; }, "token "},
      {"Google password", [](OptionsEdit& e) { e.google.googlePassword = "Secret"; }, "token "},
      {"document", [](OptionsEdit& e) { e.google.googleDocName = "Wattlark"; }, "worksheets "},
      {"worksheet", [](OptionsEdit& e) { e.google.googleWorksheetName = "sheet1"; }, "list "},
      {"Google interval", [](OptionsEdit& e) { e.google.googleInterval = 0; }},
      {"Twitter", [](OptionsEdit& e) { e.twitter.twitterMessage = "x"; }}};
  for (const auto& test : cases) {
    settings = before;
    store.DeleteAppSection("", "PortDevices");
    restarts = 0;
    OptionsEdit edit = Shown();
    test.change(edit);
    EXPECT_TRUE(OK(edit));
    std::string seen;
    if (restarts == 1) seen += "port ";
    if (settings.CSVFileChanged) seen += "csv ";
    if (settings.GoogleAuthToken.empty()) seen += "token ";
    if (settings.GoogleWorksheetsFeed.empty()) seen += "worksheets ";
    if (settings.GoogleListFeed.empty()) seen += "list ";
    EXPECT_EQ(seen, test.seen) << test.name;
    EXPECT_EQ(settings.GoogleSpreadsheetsFeed, "spreadsheets");
  }
}

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
  edit.general.demoMode = false;
  OK(edit);
  EXPECT_FALSE(settings.DemoMode);
  EXPECT_EQ(restarts, 2);
  ASSERT_EQ(prompts.asked.size(), 2u);
  EXPECT_THAT(
      prompts.asked[0],
      FieldsAre("Running in 'Demo Mode' will ignore all real device inputs, even if they are "
                "connnected and communicating.\r\nWattlark will display entirely fictitious data "
                "for each channel until this mode is switched off.",
                "Consider yourself warned!", PromptIcon::Information, PromptButtons::OKCancel, _));
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

TEST_F(OptionsActions, AStoredValueOutsideItsListBecomesNothing) {
  settings.PortNum = 12;
  settings.StopBits = "3";
  settings.CSVInterval = 120;
  settings.TwitterInterval = 5;
  settings.ServiceState = 51;
  OptionsEdit edit = Shown();
  // What does not convert keeps its value.
  edit.general.mils = "cheap";
  edit.general.co2 = "";
  EXPECT_THAT((std::vector<int>{edit.general.portNum, edit.general.stopBits, edit.csv.csvInterval,
                                edit.twitter.twitterInterval, edit.general.serviceState}),
              Each(-1));
  OK(edit);
  EXPECT_EQ(restarts, 1);
  EXPECT_EQ(Stored("PortNum") + Stored("CSVInterval") + Stored("TwitterInterval"), "000");
  EXPECT_EQ(Stored("StopBits"), "");
  EXPECT_EQ(Stored("Mils") + ' ' + Stored("CO2perKWh"), "0.106 0.1251");
}

TEST_F(OptionsActions, SettingsAreInForceThoughTheStoreFails) {
  OptionsEdit edit = Shown();
  edit.general.portNum = 0;
  registry.failsWrites = true;
  EXPECT_FALSE(OK(edit));
  EXPECT_EQ(settings.PortNum, 1);
  EXPECT_EQ(restarts, 1);
  EXPECT_EQ(StoredNames(), "");
}

}  // namespace
}  // namespace wattlark
