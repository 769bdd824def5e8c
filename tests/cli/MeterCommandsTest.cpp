#include "cli/CommandTest.h"
#include "config/modRegistry.h"
#include "platform/linux/ProfileLock.h"
#include "platform/sqlite/OpenStore.h"

namespace wattlark {
namespace {

using MeterCommands = CommandTest;

TEST_F(MeterCommands, NewMeterHasDefaults) {
  AddKitchen();
  const CommandResult list = RunHere({"meter", "list", "--json"});
  EXPECT_EQ(list.status, ExitOK);
  EXPECT_EQ(list.messages, "");
  const nlohmann::json meters = list.Json();
  ASSERT_EQ(meters.size(), 1U);
  const nlohmann::json& meter = meters[0];
  EXPECT_EQ(meter["Name"], "Kitchen");
  EXPECT_EQ(meter["XBeeAddress"], 5);
  EXPECT_EQ(meter["KillAWattType"], 0);
  EXPECT_TRUE(meter["Volts"].is_null());
  EXPECT_TRUE(meter["Timestamp"].is_null());
  EXPECT_EQ(meter["IsReceiving"], false);
  EXPECT_EQ(meter["NominalVoltage"], 120.0);
  EXPECT_EQ(meter["NominalFrequency"], 60.0);
  EXPECT_EQ(meter["CurrentOffset"], 498);
  EXPECT_EQ(meter["CurrentScaler"], 1 / 15.5);
  EXPECT_EQ(meter["VoltageScaler"], 0.6);
  EXPECT_EQ(meter["AlarmActive"], false);
  EXPECT_EQ(meter["AlarmUpperLimit"], 500.0);
  EXPECT_EQ(meter["AlarmLowerLimit"], 0.0);
  EXPECT_EQ(meter["AlarmDuration"], 60);
  EXPECT_EQ(meter["AlarmInterval"], 600);
}

TEST_F(MeterCommands, EveryOptionReachesTheMeter) {
  ExpectDone({"meter",
              "add",
              "--name",
              "Solar roof",
              "--address",
              "32767",
              "--type",
              "generator",
              "--voltage",
              "240",
              "--frequency",
              "50",
              "--alarm",
              "on",
              "--alarm-upper",
              "1200,5",
              "--alarm-lower",
              "-5",
              "--alarm-duration",
              "30",
              "--alarm-interval",
              "60"});
  const nlohmann::json meter = RunHere({"meter", "list", "--json"}).Json().at(0);
  EXPECT_EQ(meter["Name"], "Solar roof");
  EXPECT_EQ(meter["XBeeAddress"], 32767);
  EXPECT_EQ(meter["KillAWattType"], 1);
  EXPECT_EQ(meter["NominalVoltage"], 240.0);
  EXPECT_DOUBLE_EQ(meter["VoltageScaler"], 1.2);
  EXPECT_EQ(meter["NominalFrequency"], 50.0);
  EXPECT_EQ(meter["AlarmActive"], true);
  EXPECT_EQ(meter["AlarmUpperLimit"], 1200.5);
  EXPECT_EQ(meter["AlarmLowerLimit"], -5.0);
  EXPECT_EQ(meter["AlarmDuration"], 30);
  EXPECT_EQ(meter["AlarmInterval"], 60);
}

TEST_F(MeterCommands, IntervalIsRaisedToTheDuration) {
  const CommandResult result =
      RunHere({"meter", "add", "--name", "Kitchen", "--address", "5", "--alarm-duration", "3600"});
  EXPECT_EQ(result.status, ExitOK);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages,
            "The alarm interval was adjusted upward so that it was at least equal to the duration "
            "above or below the limits.\n");
  EXPECT_EQ(RunHere({"meter", "list", "--json"}).Json().at(0)["AlarmInterval"], 3600);
}

TEST_F(MeterCommands, KeepTheOrderOfAdding) {
  for (const char* name : {"C", "list", "A"}) {
    ExpectDone({"meter", "add", "--name", name, "--address", std::to_string(*name)});
  }
  ExpectDone({"meter", "remove", "LIST"});
  const nlohmann::json meters = RunHere({"meter", "list", "--json"}).Json();
  ASSERT_EQ(meters.size(), 2U);
  EXPECT_EQ(meters[0]["Name"], "C");
  EXPECT_EQ(meters[1]["Name"], "A");
}

TEST_F(MeterCommands, ListOfAMissingProfileIsEmptyAndMakesNone) {
  EXPECT_EQ(RunHere({"meter", "list", "--json"}).Json(), nlohmann::json::array());
  EXPECT_FALSE(ProfileExists());
}

struct Refusal {
  std::vector<std::string> options;
  const char* reason;
};

class RefusedMeter : public CommandTest, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusedMeter, IsToldAndChangesNothing) {
  AddKitchen();
  const auto before = ProfileFiles();
  std::vector<std::string> arguments{"meter", "add"};
  arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
  const CommandResult result = RunHere(arguments);
  EXPECT_EQ(result.status, ExitRefused);
  EXPECT_EQ(result.output, "");
  EXPECT_NE(result.messages.find(GetParam().reason), std::string::npos) << result.messages;
  EXPECT_EQ(ProfileFiles(), before);
}

std::vector<std::string> With(const char* option, const char* value) {
  return {"--name", "New", "--address", "6", option, value};
}

INSTANTIATE_TEST_SUITE_P(
    Values, RefusedMeter,
    testing::Values(Refusal{{"--name", "", "--address", "6"}, "must not be empty"},
                    Refusal{{"--name", " ", "--address", "6"}, "must not be empty"},
                    Refusal{{"--name", "a\\b", "--address", "6"}, "must not contain"},
                    Refusal{{"--name", "a\xFF", "--address", "6"}, "not UTF-8"},
                    Refusal{{"--name", "kitchen", "--address", "6"}, "Another meter has the name"},
                    Refusal{{"--name", "New", "--address", "5"},
                            "A Kill-A-Watt with that XBee address is already defined"},
                    Refusal{{"--name", "New", "--address", "32768"}, "\"32768\" is not"},
                    Refusal{{"--name", "New", "--address", "-1"}, "\"-1\" is not"},
                    Refusal{{"--name", "New", "--address", "5.0"}, "\"5.0\" is not"},
                    Refusal{{"--name", "New", "--address", ""}, "is not a whole number"},
                    Refusal{With("--voltage", "110"), "120 or 240, not \"110\""},
                    Refusal{With("--frequency", "55"), "50 or 60, not \"55\""},
                    Refusal{With("--type", "solar"), "load or generator"},
                    Refusal{With("--alarm", "yes"), "off or on"},
                    Refusal{With("--alarm-upper", "much"), "\"much\" is not a number"},
                    Refusal{With("--alarm-upper", "1e999"), "is not a number"},
                    Refusal{With("--alarm-lower", "nan"), "\"nan\" is not a number"},
                    Refusal{With("--alarm-duration", "-1"), "\"-1\" is not a whole number"},
                    Refusal{With("--alarm-interval", "2147483648"), "is not a whole number"}));

TEST_F(MeterCommands, RefusedValuesMakeNoProfile) {
  EXPECT_EQ(RunHere({"meter", "add", "--name", "", "--address", "5"}).status, ExitRefused);
  EXPECT_FALSE(ProfileExists());
}

TEST_F(MeterCommands, RemovingAnUnknownMeterIsRefused) {
  AddKitchen();
  const CommandResult result = RunHere({"meter", "remove", "Cellar"});
  EXPECT_EQ(result.status, ExitRefused);
  EXPECT_EQ(result.messages, "There is no meter with the name \"Cellar\".\n");
}

TEST_F(MeterCommands, ProfileOfARunningProgramCanBeReadButNotChanged) {
  AddKitchen();
  ProfileLock running(profile_);
  ASSERT_TRUE(running.TryAcquire());
  const auto before = ProfileFiles();
  EXPECT_EQ(RunHere({"meter", "list", "--json"}).Json().size(), 1U);
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"meter", "add", "--name", "New", "--address", "6"},
        {"meter", "remove", "Kitchen"}}) {
    const CommandResult result = RunHere(arguments);
    EXPECT_EQ(result.status, ExitRefused);
    EXPECT_NE(result.messages.find("A running program has the profile"), std::string::npos);
  }
  EXPECT_EQ(ProfileFiles(), before);
}

TEST_F(MeterCommands, MeterLeftOutForItsAddressCanBeSeenAndRemoved) {
  AddKitchen();
  {
    StoreOpening opening = OpenStore(profile_);
    modRegistry store(*opening.registry);
    store.SaveAppSetting("", "KillAWatts\\Twin", "XBeeAddress", "5");
    store.SaveAppSetting("", "KillAWatts\\Twin", "UsageToDate", "12.5");
  }
  const CommandResult list = RunHere({"meter", "list", "--json"});
  EXPECT_EQ(list.Json().size(), 1U);
  EXPECT_EQ(list.messages, "The meter \"Twin\" is left out: another one has its XBee address.\n");
  const CommandResult add = RunHere({"meter", "add", "--name", "TWIN", "--address", "6"});
  EXPECT_EQ(add.status, ExitRefused);
  EXPECT_NE(add.messages.find("not loaded, has the name"), std::string::npos);
  ExpectDone({"meter", "remove", "twin"});
  EXPECT_EQ(RunHere({"meter", "list", "--json"}).messages, "");
  ExpectDone({"meter", "add", "--name", "Twin", "--address", "6"});
}

TEST_F(MeterCommands, TotalOfANewProfileIsLeftToTheFirstStart) {
  AddKitchen();
  StoreOpening opening = OpenStore(profile_);
  EXPECT_FALSE(modRegistry(*opening.registry).AppSectionExists("", "TotalKillAWatt"));
}

TEST_F(MeterCommands, StoreThatWasDamagedIsTold) {
  AddKitchen();
  WriteFile(profile_ + "/wattlark.db", std::string(5000, 'x'));
  const CommandResult result = RunHere({"meter", "add", "--name", "New", "--address", "6"});
  EXPECT_EQ(result.status, ExitOK);
  EXPECT_NE(result.messages.find("is damaged"), std::string::npos) << result.messages;
  EXPECT_EQ(RunHere({"meter", "list", "--json"}).Json().size(), 1U);
}

}  // namespace
}  // namespace wattlark
