#include "cli/CommandTest.h"
#include "config/modRegistry.h"
#include "platform/linux/ProfileLock.h"
#include "platform/sqlite/OpenStore.h"

namespace wattlark {
namespace {

using SettingCommands = CommandTest;

TEST_F(SettingCommands, DefaultsAreInForceWithoutAProfileAndWhatIsSetReadsBack) {
  EXPECT_EQ(Setting("settings/mils"), "0.106\n");
  EXPECT_EQ(Setting("PortDevices/COM3"), "\n");
  EXPECT_FALSE(ProfileExists());
  using Row = std::array<std::string, 3>;
  for (const auto& [name, value, stored] :
       {Row{"portnum", " 12 ", "12"}, Row{"Mils", "0,2", "0.2"}, Row{"LogToCSV", "FALSE", "False"},
        Row{"TwitterMessage", "-%W, [%D], {}", "-%W, [%D], {}"},
        Row{"TwitterMessage", "", "Currently using %W, %D so far today, %Y yesterday."},
        Row{"CSVFilename", "/tmp/März.csv", "/tmp/März.csv"},
        Row{"PortDevices/com07", "/dev/serial/by-id/x", "/dev/serial/by-id/x"},
        Row{"PortDevices/COM7", "", ""},
        Row{"serviceendpoints/twitterupdateurl", "http://127.0.0.1:8080/u",
            "http://127.0.0.1:8080/u"},
        Row{"ServiceEndpoints/ClientLoginURL", "", "https://www.google.com/accounts/ClientLogin"},
        Row{"WindowSettings/frmMain", "1,2,3,4,0", "1,2,3,4,0"}}) {
    ExpectDone({"setting", "set", name, "--", value});
    EXPECT_EQ(Setting(name), stored + "\n");
  }
  regional_.decimalSeparator = ",";
  EXPECT_EQ(Setting("Mils"), "0,2\n");
  const nlohmann::json list = RunHere({"setting", "list", "--json"}).Json();
  EXPECT_EQ(list["Mils"], 0.2);
  EXPECT_FALSE(list.contains("PortDevices/COM7"));
}

TEST_F(SettingCommands, WhatDoesNotFitIsToldAndChangesNothing) {
  ExpectDone({"setting", "set", "PortNum", "4"});
  const auto before = ProfileFiles();
  using Row = std::array<const char*, 3>;
  for (const auto& [name, value, reason] :
       {Row{"Nonsense", "1", "There is no setting \"Nonsense\"."},
        Row{"ServiceEndpoints/Nonsense", "http://h/", "There is no address \"Nonsense\"."},
        Row{"ServiceEndpoints/VersionFileURL", "file:///etc/passwd", "http"},
        Row{"KillAWatts/Kitchen", "1", "the sections are Settings, PortDevices, ServiceEndpoints"},
        Row{"PortNum", "65539", "PortNum"}, Row{"TwitterMessage", "\xC3", "not UTF-8"},
        Row{"PortDevices/COM3", "ttyS2", "The device of COM3 is an absolute path"},
        Row{"PortDevices/COM257", "/dev/x", "\"COM257\" is not a port"},
        Row{"WindowSettings/", "1", "The name of the window is missing."}}) {
    ExpectRefused(RunHere({"setting", "set", name, "--", value}), reason);
  }
  ExpectRefused(RunHere({"setting", "get", "Nonsense"}), "There is no setting \"Nonsense\".\n");
  EXPECT_EQ(ProfileFiles(), before);
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

TEST_F(SettingCommands, AStoredTextThatIsNoValueIsToldAndKeptWhenAnotherIsSet) {
  {
    StoreOpening opening = OpenStore(profile_);
    ASSERT_TRUE(modRegistry(*opening.registry).SaveAppSetting("", "Settings", "PortNum", "three"));
  }
  RunHere({"setting", "set", "BaudRate", "19200"});
  const CommandResult result = RunHere({"setting", "get", "PortNum"});
  EXPECT_EQ(result.status, ExitOK);
  EXPECT_EQ(result.output, "3\n");
  EXPECT_NE(result.messages.find("\"three\""), std::string::npos) << result.messages;
}

TEST_F(SettingCommands, TableHidesSecretsAndJsonDoesNot) {
  const CommandResult set = RunHere({"setting", "set", "GooglePassword", "swordfish"});
  EXPECT_EQ(set.status, ExitOK);
  EXPECT_NE(set.messages.find("list of processes"), std::string::npos);
  EXPECT_EQ(set.messages.find("swordfish"), std::string::npos);
  for (const char* secret : {"PachubeAPIKey", "PowerMeterAuthInfo", "TwitterPassword"}) {
    RunHere({"setting", "set", secret, "-"}, "swordfish\n");
  }
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
}

TEST_F(SettingCommands, ProfileOfARunningProgramCanBeReadButNotChanged) {
  AddKitchen();
  ProfileLock running(profile_);
  ASSERT_TRUE(running.TryAcquire());
  const std::string copy = folder_.File("copy");
  const auto before = ProfileFiles();
  ExpectDone({"store", "backup", copy});
  ExpectDone({"store", "export", "--force", folder_.File("text")});
  EXPECT_EQ(RunHere({"replay", "-"}).status, ExitOK);
  EXPECT_EQ(Meters().size(), 1U);
  EXPECT_EQ(Setting("PortNum"), "3\n");
  using Words = std::vector<std::string>;
  for (const auto& arguments :
       {Words{"setting", "set", "PortNum", "5"},
        Words{"meter", "add", "--name", "New", "--address", "6"},
        Words{"meter", "remove", "Kitchen"}, Words{"replay", "--save", "-"},
        Words{"store", "import", folder_.File("text")}, Words{"store", "restore", copy}}) {
    ExpectRefused(RunHere(arguments), "A running program has the profile");
  }
  EXPECT_EQ(ProfileFiles(), before);
}

TEST_F(SettingCommands, StoreThatCannotBeReadIsARefusal) {
  ExpectDone({"setting", "set", "PortNum", "4"});
  const WithoutRoot asAnotherUser;
  using Words = std::vector<std::string>;
  for (const auto& arguments : {Words{"setting", "get", "PortNum"}, Words{"setting", "list"},
                                Words{"setting", "set", "PortNum", "5"}, Words{"meter", "list"}}) {
    ExpectRefused(RunHere(arguments), profile_);
  }
}

}  // namespace
}  // namespace wattlark
