#include "cli/CommandTest.h"
#include "config/modRegistry.h"
#include "platform/linux/ProfileLock.h"
#include "platform/sqlite/OpenStore.h"

namespace wattlark {
namespace {

class SettingCommands : public CommandTest {
 protected:
  void Store(const char* name, const char* text) const {
    StoreOpening opening = OpenStore(profile_);
    ASSERT_TRUE(modRegistry(*opening.registry).SaveAppSetting("", "Settings", name, text));
  }
};

TEST_F(SettingCommands, DefaultsAreInForceWithoutAProfile) {
  EXPECT_EQ(Setting("PortNum"), "3\n");
  EXPECT_EQ(Setting("settings/mils"), "0.106\n");
  EXPECT_EQ(Setting("LogToCSV"), "True\n");
  EXPECT_EQ(Setting("GoogleUsername"), "\n");
  EXPECT_EQ(Setting("PortDevices/COM3"), "\n");
  EXPECT_FALSE(ProfileExists());
}

struct Accepted {
  const char* name;
  const char* value;
  const char* stored;
};

class AcceptedSetting : public CommandTest, public testing::WithParamInterface<Accepted> {};

TEST_P(AcceptedSetting, ReadsBack) {
  ExpectDone({"setting", "set", GetParam().name, "--", GetParam().value});
  EXPECT_EQ(Setting(GetParam().name), std::string(GetParam().stored) + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Values, AcceptedSetting,
    testing::Values(Accepted{"PortNum", " 12 ", "12"}, Accepted{"portnum", "256", "256"},
                    Accepted{"Mils", "0,2", "0.2"}, Accepted{"Mils", "1e-1", "0.1"},
                    Accepted{"LogToCSV", "FALSE", "False"}, Accepted{"LogToCSV", "1", "True"},
                    Accepted{"CSVInterval", "3600", "3600"}, Accepted{"Parity", "E", "E"},
                    Accepted{"TwitterMessage", "-%W, [%D], {}", "-%W, [%D], {}"},
                    Accepted{"TwitterMessage", "",
                             "Currently using %W, %D so far today, %Y yesterday."},
                    Accepted{"CSVFilename", "/tmp/März.csv", "/tmp/März.csv"},
                    Accepted{"PortDevices/com07", "/dev/serial/by-id/x", "/dev/serial/by-id/x"},
                    Accepted{"PortDevices/COM7", "", ""},
                    Accepted{"serviceendpoints/twitterupdateurl", "http://127.0.0.1:8080/update",
                             "http://127.0.0.1:8080/update"},
                    Accepted{"ServiceEndpoints/ClientLoginURL", "",
                             "https://www.google.com/accounts/ClientLogin"},
                    Accepted{"WindowSettings/frmMain", "1,2,3,4,0", "1,2,3,4,0"}));

struct Refused {
  const char* name;
  const char* value;
};

class RefusedSetting : public CommandTest, public testing::WithParamInterface<Refused> {};

TEST_P(RefusedSetting, IsToldAndChangesNothing) {
  ExpectDone({"setting", "set", "PortNum", "4"});
  const auto before = ProfileFiles();
  const CommandResult result = RunHere({"setting", "set", GetParam().name, "--", GetParam().value});
  EXPECT_EQ(result.status, ExitRefused);
  EXPECT_EQ(result.output, "");
  EXPECT_NE(result.messages, "");
  EXPECT_EQ(ProfileFiles(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Values, RefusedSetting,
    testing::Values(Refused{"Nonsense", "1"}, Refused{"ServiceEndpoints/Nonsense", "http://h/"},
                    Refused{"ServiceEndpoints/VersionFileURL", "file:///etc/passwd"},
                    Refused{"", "1"}, Refused{"KillAWatts/Kitchen", "1"}, Refused{"PortNum", "0"},
                    Refused{"PortNum", "COM3"}, Refused{"PortNum", ""}, Refused{"PortNum", "65539"},
                    Refused{"Mils", "cheap"}, Refused{"Mils", "inf"}, Refused{"LogToCSV", "yes"},
                    Refused{"CSVInterval", "59"}, Refused{"CSVInterval", "3601"},
                    Refused{"TwitterInterval", "25"}, Refused{"Parity", "X"},
                    Refused{"BaudRate", "9601"}, Refused{"StopBits", "3"},
                    Refused{"TwitterMessage", "\xC3"}, Refused{"PortDevices/COM3", "ttyS2"},
                    Refused{"PortDevices/COM0", "/dev/x"}, Refused{"PortDevices/LPT1", "/dev/x"},
                    Refused{"PortDevices/", "/dev/x"}, Refused{"WindowSettings/", "1"}));

TEST_F(SettingCommands, UnknownNamesCannotBeRead) {
  const CommandResult result = RunHere({"setting", "get", "Nonsense"});
  EXPECT_EQ(result.status, ExitRefused);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "There is no setting \"Nonsense\".\n");
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

TEST_F(SettingCommands, EmptyDeviceRemovesTheEntry) {
  ExpectDone({"setting", "set", "PortDevices/COM9", "/dev/x"});
  ExpectDone({"setting", "set", "PortDevices/COM9", ""});
  EXPECT_FALSE(RunHere({"setting", "list", "--json"}).Json().contains("PortDevices/COM9"));
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
  const CommandResult tooLong =
      RunHere({"setting", "set", "TwitterPassword", "-"}, std::string(65537, 'x'));
  EXPECT_EQ(tooLong.status, ExitRefused);
  EXPECT_EQ(tooLong.messages, "The value on standard input is too long.\n");
  EXPECT_EQ(Setting("TwitterPassword"), "\n");
}

TEST_F(SettingCommands, StoredTextThatIsNoValueIsToldAndTheDefaultIsInForce) {
  Store("PortNum", "three");
  const CommandResult result = RunHere({"setting", "get", "PortNum"});
  EXPECT_EQ(result.status, ExitOK);
  EXPECT_EQ(result.output, "3\n");
  EXPECT_NE(result.messages.find("\"three\""), std::string::npos) << result.messages;
}

TEST_F(SettingCommands, StoredIntervalIsShownClamped) {
  Store("CSVInterval", "30");
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
  const CommandResult result = RunHere({"setting", "set", "PortNum", "5"});
  EXPECT_EQ(result.status, ExitRefused);
  EXPECT_NE(result.messages.find("A running program has the profile"), std::string::npos);
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
    const CommandResult result = RunHere(arguments);
    EXPECT_EQ(result.status, ExitRefused);
    EXPECT_EQ(result.output, "");
    EXPECT_NE(result.messages, "");
  }
}

}  // namespace
}  // namespace wattlark
