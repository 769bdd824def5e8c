#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/HeadlessRun.h"

namespace wattlark {
namespace {

using testing::AllOf;
using testing::HasSubstr;

struct DiscoverCommand : HeadlessRun {
  std::vector<std::string> Discover() const {
    return Command({"meter", "discover", "--device", device, "--seconds", "1"});
  }
};

TEST_F(DiscoverCommand, TellsWhoSendsAndWhatToType) {
  AddKitchen();
  Simulate({"Kitchen:5:620", "Office:6:80"});
  RunningProgram discover(Discover());
  EXPECT_EQ(discover.Wait(), 0) << discover.Messages();
  EXPECT_THAT(
      discover.Output(),
      AllOf(testing::ContainsRegex("\n +5 +[1-9][0-9]* +Kitchen\n +6 +[1-9][0-9]* +none yet\n"),
            HasSubstr("\nwattlark-headless meter add --name 'Meter 6' --address 6 --profile " +
                      profile + "\n"),
            HasSubstr("\nwattlark-headless setting set PortDevices/COM3 " + device + " ")));
  const auto json = Run({"meter", "discover", "--device", device, "--seconds", "1", "--json"});
  const auto meters = nlohmann::json::parse(json).at("Meters");
  EXPECT_EQ(meters.at(0).at("Name"), "Kitchen");
  EXPECT_TRUE(meters.at(1).at("Name").is_null());
  EXPECT_GT(meters[1].at("Frames").get<int>(), 0);
}

TEST_F(DiscoverCommand, SaysWhatToLookAtWhenNoMeterIsHeard) {
  RunningProgram silent(Discover());
  EXPECT_EQ(silent.Wait(), 1);
  EXPECT_THAT(silent.Messages(), HasSubstr("Nothing arrived on " + device));
  EXPECT_EQ(silent.Output(), "");
  receiver->Write(Bytes(200, 0x55));
  RunningProgram garbled(Discover());
  ASSERT_TRUE(WaitUntil([&] { return garbled.Messages().find("Listening") != std::string::npos; }));
  receiver->Write(Bytes(200, 0x55));
  EXPECT_EQ(garbled.Wait(), 1);
  EXPECT_THAT(garbled.Messages(), HasSubstr("but no whole frame"));
  Unplug();
  RunningProgram missing(Discover());
  EXPECT_EQ(missing.Wait(), 1);
  EXPECT_THAT(missing.Messages(), HasSubstr("No such device: " + device));
  EXPECT_FALSE(std::filesystem::exists(profile));
}

TEST_F(DiscoverCommand, LeavesTheDeviceToARunningProgram) {
  AddKitchen();
  Simulate({"Kitchen:5:620", "Office:6:80"});
  RunningProgram program(RunCommand());
  ASSERT_TRUE(WaitUntil([&] { return !program.Output().empty(); })) << program.Messages();
  RunningProgram taken(Discover());
  EXPECT_EQ(taken.Wait(), 1);
  EXPECT_THAT(taken.Messages(), HasSubstr("In use: another program has " + device + " open"));
  RunningProgram own(Command({"meter", "discover"}));
  EXPECT_EQ(own.Wait(), 1);
  EXPECT_THAT(own.Messages(), HasSubstr("Wattlark is running with the profile"));
  EXPECT_TRUE(program.IsRunning());
  EXPECT_EQ(program.End(SIGTERM), 0);
}

}  // namespace
}  // namespace wattlark
