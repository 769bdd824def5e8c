#include "cli/CommandTest.h"
#include "cli/MeterJson.h"
#include "config/modRegistry.h"
#include "platform/sqlite/OpenStore.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

using MeterCommands = CommandTest;

TEST_F(MeterCommands, NewMeterHasDefaultsAndEveryOptionReachesIt) {
  AddKitchen();
  ExpectDone({"meter", "add", "--name=Solar roof", "--address=32767", "--type=generator",
              "--voltage=240", "--frequency=50", "--alarm=on", "--alarm-upper=1200,5",
              "--alarm-lower=-5", "--alarm-duration=30", "--alarm-interval=60"});
  const nlohmann::json meters = Meters();
  ASSERT_EQ(meters.size(), 2U);
  EXPECT_EQ(meters[0]["IsReceiving"], false);
  EXPECT_EQ(meters[0]["CurrentOffset"], 498);
  EXPECT_EQ(meters[0]["CurrentScaler"], 1 / 15.5);
  using Row = std::tuple<const char*, nlohmann::json, nlohmann::json>;
  for (const auto& [key, kitchen, solar] :
       {Row{"Name", "Kitchen", "Solar roof"}, Row{"XBeeAddress", 5, 32767},
        Row{"KillAWattType", 0, 1}, Row{"NominalVoltage", 120.0, 240.0},
        Row{"NominalFrequency", 60.0, 50.0}, Row{"VoltageScaler", 0.6, 1.2},
        Row{"AlarmActive", false, true}, Row{"AlarmUpperLimit", 500.0, 1200.5},
        Row{"AlarmLowerLimit", 0.0, -5.0}, Row{"AlarmDuration", 60, 30},
        Row{"AlarmInterval", 600, 60}}) {
    EXPECT_EQ(meters[0][key], kitchen) << key;
    EXPECT_EQ(meters[1][key], solar) << key;
  }
}

TEST_F(MeterCommands, KeepTheOrderOfAddingAndRaiseAnIntervalToItsDuration) {
  EXPECT_EQ(Meters(), nlohmann::json::array());
  EXPECT_FALSE(ProfileExists());
  for (const char* name : {"C", "list"}) {
    ExpectDone({"meter", "add", "--name", name, "--address", std::to_string(*name)});
  }
  const CommandResult added =
      RunHere({"meter", "add", "--name", "A", "--address", "5", "--alarm-duration", "3600"});
  EXPECT_EQ(added.status, ExitOK);
  EXPECT_EQ(added.messages,
            "The alarm interval was adjusted upward so that it was at least equal to the duration "
            "above or below the limits.\n");
  ExpectDone({"meter", "remove", "LIST"});
  const nlohmann::json meters = Meters();
  EXPECT_EQ(meters.at(0)["Name"], "C");
  EXPECT_EQ(meters.at(1)["Name"], "A");
  EXPECT_EQ(meters.at(1)["AlarmInterval"], 3600);
  // The Total of a new profile is left to the first start.
  StoreOpening opening = OpenStore(profile_);
  EXPECT_FALSE(modRegistry(*opening.registry).AppSectionExists("", "TotalKillAWatt"));
}

TEST_F(MeterCommands, WhatDoesNotFitIsToldAndChangesNothing) {
  AddKitchen();
  const auto before = ProfileFiles();
  const auto refuse = [this](const char* option, const char* value, const char* reason) {
    std::map<std::string, std::string> options{{"--name", "New"}, {"--address", "6"}};
    options[option] = value;
    std::vector<std::string> arguments{"meter", "add"};
    for (const auto& [name, text] : options) arguments.insert(arguments.end(), {name, text});
    ExpectRefused(RunHere(arguments), reason);
  };
  refuse("--name", "a\xFF", "not UTF-8");
  refuse("--name", "kitchen", "Another meter has the name");
  refuse("--address", "5", "A Kill-A-Watt with that XBee address is already defined");
  refuse("--address", "32768", "address \"32768\" is not a whole number from 0 to 32767.");
  refuse("--voltage", "110", "120 or 240, not \"110\"");
  refuse("--alarm-upper", "1e999", "upper alarm limit \"1e999\" is not a number");
  refuse("--alarm-interval", "2147483648", "interval \"2147483648\" is not a whole number");
  ExpectRefused(RunHere({"meter", "remove", "Cellar"}),
                "There is no meter with the name \"Cellar\".\n");
  EXPECT_EQ(ProfileFiles(), before);
  profile_ = folder_.File("none");
  refuse("--name", " ", "must not be empty");
  EXPECT_FALSE(ProfileExists());
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
  ExpectRefused(RunHere({"meter", "add", "--name", "TWIN", "--address", "6"}),
                "not loaded, has the name");
  ExpectDone({"meter", "remove", "twin"});
  EXPECT_EQ(RunHere({"meter", "list", "--json"}).messages, "");
  ExpectDone({"meter", "add", "--name", "Twin", "--address", "6"});
}

TEST(MeterJson, WhatHasNoValueIsNull) {
  clsKillAWatt meter;
  meter.Statistics().SetUsage(Yesterday, NoValue);
  meter.Statistics().SetPeakTime(Today, At("2026-11-16T20:10:00.250"));
  const nlohmann::ordered_json json = MeterToJson(meter, At("2026-11-16T20:10:00"));
  for (const char* key : {"Volts", "Amps", "Watts", "Timestamp"}) {
    EXPECT_TRUE(json[key].is_null()) << key;
  }
  EXPECT_TRUE(json["DemandRecent"]["Minute"][59].is_null());
  EXPECT_TRUE(json["Usage"]["Yesterday"].is_null());
  EXPECT_EQ(json["Usage"]["Today"], 0.0);
  EXPECT_TRUE(json["PeakTime"]["Yesterday"].is_null());
  EXPECT_EQ(json["PeakTime"]["Today"], "2026-11-16T20:10:00.250");
  meter.AddReading(120, 1, 120, At("2026-11-16T20:10:00"), 1000);
  EXPECT_EQ(MeterToJson(meter, At("2026-11-16T20:10:04.999"))["IsReceiving"], true);
  EXPECT_EQ(MeterToJson(meter, At("2026-11-16T20:10:05"))["IsReceiving"], false);
  EXPECT_EQ(MeterToJson(meter, DateTime())["IsReceiving"], false);
}

TEST(MeterJson, NameThatIsNotUtf8IsStillADocument) {
  clsKillAWatt meter;
  meter.SetName("a\xFF\"\n");
  const auto json = nlohmann::json::parse(JsonText(MeterToJson(meter, DateTime())));
  EXPECT_EQ(json["Name"], "a\xEF\xBF\xBD\"\n");
  EXPECT_FALSE(IsUtf8("a\xFF"));
  EXPECT_TRUE(IsUtf8("Küche"));
}

}  // namespace
}  // namespace wattlark
