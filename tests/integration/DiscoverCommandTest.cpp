#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/HeadlessRun.h"

namespace wattlark {
namespace {

using testing::AllOf;
using testing::HasSubstr;

// A new profile, and a receiver on a pseudo-terminal that hears the simulated meters 5 and 6.
struct DiscoverCommand : HeadlessRun {
  void Simulate() {
    std::filesystem::remove(device);
    sim.emplace(std::vector<std::string>{WATTLARK_SIM_PROGRAM, "--link", device, "--meter",
                                         "Kitchen:5:620", "--meter", "Office:6:80", "--period",
                                         "0.2"});
    ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(device); })) << sim->Messages();
  }
  std::vector<std::string> Discover(std::vector<std::string> more = {}) const {
    more.insert(more.begin(), {"meter", "discover", "--device", device, "--seconds", "1"});
    return Command(std::move(more));
  }
  std::optional<RunningProgram> sim;
};

TEST_F(DiscoverCommand, TellsWhoSendsAndWhatToType) {
  AddKitchen();
  Simulate();
  RunningProgram discover(Discover());
  EXPECT_EQ(discover.Wait(), 0) << discover.Messages();
  EXPECT_THAT(discover.Output(), testing::ContainsRegex("\n +5 +[1-9][0-9]* +Kitchen\n"));
  EXPECT_THAT(discover.Output(),
              AllOf(testing::ContainsRegex("\n +6 +[1-9][0-9]* +none yet\n"),
                    HasSubstr("\nwattlark-headless meter add --name 'Meter 6' --address 6 "
                              "--profile " +
                              profile + "\n"),
                    HasSubstr("\nwattlark-headless setting set PortDevices/COM3 " + device + " ")));
  RunningProgram json(Discover({"--json"}));
  EXPECT_EQ(json.Wait(), 0) << json.Messages();
  const auto meters = nlohmann::json::parse(json.Output()).at("Meters");
  ASSERT_EQ(meters.size(), 2u);
  EXPECT_EQ(meters[0].at("Name"), "Kitchen");
  EXPECT_TRUE(meters[1].at("Name").is_null());
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
  Simulate();
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
