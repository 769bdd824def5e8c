#include "cli/CommandTest.h"
#include "config/modRegistry.h"
#include "platform/linux/ProfileLock.h"
#include "platform/sqlite/OpenStore.h"

namespace wattlark {
namespace {

using SettingCommands = CommandTest;

TEST_F(SettingCommands, DefaultsAreInForceWithoutAProfile) {
  EXPECT_EQ(Setting("PortNum"), "3\n");
  EXPECT_EQ(Setting("settings/mils"), "0.106\n");
  EXPECT_EQ(Setting("LogToCSV"), "True\n");
  EXPECT_EQ(Setting("GoogleUsername"), "\n");
  EXPECT_EQ(Setting("PortDevices/COM3"), "\n");
  EXPECT_FALSE(ProfileExists());
}

TEST_F(SettingCommands, WhatIsSetReadsBack) {
  const struct {
    const char* name;
    const char* value;
    const char* stored;
  } cases[] = {
      {"portnum", " 12 ", "12"},
      {"Mils", "0,2", "0.2"},
      {"LogToCSV", "FALSE", "False"},
      {"TwitterMessage", "-%W, [%D], {}", "-%W, [%D], {}"},
      {"TwitterMessage", "", "Currently using %W, %D so far today, %Y yesterday."},
      {"CSVFilename", "/tmp/März.csv", "/tmp/März.csv"},
      {"PortDevices/com07", "/dev/serial/by-id/x", "/dev/serial/by-id/x"},
      {"PortDevices/COM7", "", ""},
      {"serviceendpoints/twitterupdateurl", "http://127.0.0.1:8080/update",
       "http://127.0.0.1:8080/update"},
      {"ServiceEndpoints/ClientLoginURL", "", "https://www.google.com/accounts/ClientLogin"},
      {"WindowSettings/frmMain", "1,2,3,4,0", "1,2,3,4,0"}};
  for (const auto& test : cases) {
    ExpectDone({"setting", "set", test.name, "--", test.value});
    EXPECT_EQ(Setting(test.name), std::string(test.stored) + "\n");
  }
  EXPECT_FALSE(RunHere({"setting", "list", "--json"}).Json().contains("PortDevices/COM7"));
}

TEST_F(SettingCommands, WhatDoesNotFitIsToldAndChangesNothing) {
  ExpectDone({"setting", "set", "PortNum", "4"});
  const auto before = ProfileFiles();
  const std::string sections = "the sections are Settings, PortDevices, ServiceEndpoints";
  const struct {
    const char* name;
    const char* value;
    std::string reason;
  } cases[] = {{"Nonsense", "1", "There is no setting \"Nonsense\"."},
               {"", "1", "There is no setting \"\"."},
               {"ServiceEndpoints/Nonsense", "http://h/", "There is no address \"Nonsense\"."},
               {"ServiceEndpoints/VersionFileURL", "file:///etc/passwd", "http"},
               {"KillAWatts/Kitchen", "1", sections},
               {"PortNum", "65539", "PortNum"},
               {"Mils", "inf", "Mils"},
               {"TwitterMessage", "\xC3", "not UTF-8"},
               {"PortDevices/COM3", "ttyS2", "The device of COM3 is an absolute path"},
               {"PortDevices/COM0", "/dev/x", "\"COM0\" is not a port from COM1 to COM256."},
               {"PortDevices/LPT1", "/dev/x", "\"LPT1\" is not a port"},
               {"PortDevices/COM257", "/dev/x", "\"COM257\" is not a port"},
               {"WindowSettings/", "1", "The name of the window is missing."}};
  for (const auto& test : cases) {
    ExpectRefused(RunHere({"setting", "set", test.name, "--", test.value}), test.reason);
  }
  ExpectRefused(RunHere({"setting", "get", "Nonsense"}), "There is no setting \"Nonsense\".\n");
  EXPECT_EQ(ProfileFiles(), before);
}

TEST_F(SettingCommands, SetWritesNoOtherValue) {
  ExpectDone({"setting", "set", "PortNum", "4"});
  StoreOpening opening = OpenStore(profile_);
  const modRegistry store(*opening.registry);
  std::vector<std::string> names;
  std::vector<std::string> texts;
  store.EnumStringValues(Hive::CurrentUser, modRegistry::AppKeyPath("", "Settings"), names, texts);
  EXPECT_EQ(names, std::vector<std::string>{"PortNum"});
  EXPECT_EQ(texts, std::vector<std::string>{"4"});
  store.EnumSubKeys(Hive::CurrentUser, modRegistry::AppKeyPath("", ""), names);
  EXPECT_EQ(names, std::vector<std::string>{"Settings"});
}

TEST_F(SettingCommands, NumbersFollowTheFormOfTheRegion) {
  regional_.decimalSeparator = ",";
  ExpectDone({"setting", "set", "Mils", "0,2"});
  EXPECT_EQ(Setting("Mils"), "0,2\n");
  EXPECT_EQ(RunHere({"setting", "list", "--json"}).Json()["Mils"], 0.2);
}

TEST_F(SettingCommands, AHyphenReadsTheValueFromStandardInput) {
  for (const auto& [input, stored] :
       {std::pair("sword fish\n", "sword fish"), std::pair("sword\nfish\r\n", "sword\nfish"),
        std::pair(" fish", " fish"), std::pair("", "")}) {
    const CommandResult set = RunHere({"setting", "set", "TwitterPassword", "-"}, input);
    EXPECT_EQ(set.status, ExitOK);
    EXPECT_EQ(set.messages, "");
    EXPECT_EQ(Setting("TwitterPassword"), std::string(stored) + "\n");
  }
  ExpectRefused(RunHere({"setting", "set", "TwitterPassword", "-"}, std::string(65537, 'x')),
                "The value on standard input is too long.\n");
  EXPECT_EQ(Setting("TwitterPassword"), "\n");
}

TEST_F(SettingCommands, AStoredTextThatIsNoValueIsToldAndOneOutOfRangeShownInForce) {
  {
    StoreOpening opening = OpenStore(profile_);
    modRegistry store(*opening.registry);
    ASSERT_TRUE(store.SaveAppSetting("", "Settings", "PortNum", "three"));
    ASSERT_TRUE(store.SaveAppSetting("", "Settings", "CSVInterval", "30"));
  }
  const CommandResult result = RunHere({"setting", "get", "PortNum"});
  EXPECT_EQ(result.status, ExitOK);
  EXPECT_EQ(result.output, "3\n");
  EXPECT_NE(result.messages.find("\"three\""), std::string::npos) << result.messages;
  EXPECT_EQ(Setting("CSVInterval"), "60\n");
}

TEST_F(SettingCommands, TableHidesSecretsAndJsonDoesNot) {
  const CommandResult set = RunHere({"setting", "set", "GooglePassword", "swordfish"});
  EXPECT_EQ(set.status, ExitOK);
  EXPECT_NE(set.messages.find("list of processes"), std::string::npos);
  EXPECT_EQ(set.messages.find("swordfish"), std::string::npos);
  ExpectDone({"setting", "set", "PortDevices/COM9", "/dev/x"});
  const CommandResult table = RunHere({"setting", "list"});
  EXPECT_EQ(table.output.find("swordfish"), std::string::npos);
  EXPECT_NE(table.output.find("GooglePassword                        ****\n"), std::string::npos)
      << table.output;
  EXPECT_NE(table.output.find("PortDevices/COM9                      /dev/x\n"), std::string::npos);
  const nlohmann::json json = RunHere({"setting", "list", "--json"}).Json();
  EXPECT_EQ(json["GooglePassword"], "swordfish");
  EXPECT_EQ(json["PortDevices/COM9"], "/dev/x");
  EXPECT_EQ(json["ServiceEndpoints/PowerMeterFeedsURL"], "https://www.google.com/powermeter/feeds");
  EXPECT_EQ(json["PortNum"], 3);
  EXPECT_EQ(json["LogToCSV"], true);
  EXPECT_EQ(json["Mils"], 0.106);
  EXPECT_EQ(Setting("GooglePassword"), "swordfish\n");
}

TEST_F(SettingCommands, ProfileOfARunningProgramCanBeReadButNotChanged) {
  ExpectDone({"setting", "set", "PortNum", "4"});
  ProfileLock running(profile_);
  ASSERT_TRUE(running.TryAcquire());
  EXPECT_EQ(Setting("PortNum"), "4\n");
  ExpectRefused(RunHere({"setting", "set", "PortNum", "5"}), "A running program has the profile");
  EXPECT_EQ(Setting("PortNum"), "4\n");
}

TEST_F(SettingCommands, StoreThatCannotBeReadIsARefusal) {
  ExpectDone({"setting", "set", "PortNum", "4"});
  const WithoutRoot asAnotherUser;
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"setting", "get", "PortNum"},
        {"setting", "list"},
        {"setting", "set", "PortNum", "5"},
        {"meter", "list"}}) {
    ExpectRefused(RunHere(arguments), profile_);
  }
}

}  // namespace
}  // namespace wattlark
