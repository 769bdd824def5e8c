#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include "integration/HeadlessRun.h"
#include "platform/FileSizeLimit.h"
#include "services/HttpServer.h"

namespace wattlark {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

constexpr const char* kKitchenLine =
    "[0-9-]+T[0-9:]+ Kitchen [0-9.-]+ W [0-9.]+ V [0-9.-]+ A today [0-9.]+ kWh\n";

TEST_F(HeadlessRun, PrintsTheFirstReadingAtOnceAndNoSecondOne) {
  AddKitchen();
  const auto start = std::chrono::steady_clock::now();
  RunningProgram program(RunCommand());
  TakeTwoBursts(program);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_THAT(program.Output(), ContainsRegex(std::string("^") + kKitchenLine));
  // One more only when the minute happened to change.
  EXPECT_LE(CountOf(program.Output(), "\n"), 2u);
  EXPECT_THAT(program.Messages(), IsEmpty());
}

class HeadlessRunEnded : public HeadlessRun, public testing::WithParamInterface<int> {};

TEST_P(HeadlessRunEnded, SavesAndGoesOnWithItsTotals) {
  AddKitchen();
  double energy = 0;
  for (int run = 0; run < 2; ++run) {
    RunningProgram program(RunCommand());
    TakeTwoBursts(program);
    EXPECT_EQ(program.End(GetParam()), 0) << program.Messages();
    const double saved = KitchenEnergy();
    EXPECT_GT(saved, energy);
    energy = saved;
  }
}

INSTANTIATE_TEST_SUITE_P(BySignal, HeadlessRunEnded, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(HeadlessRun, KilledLosesNothingThatWasSaved) {
  AddKitchen();
  {
    RunningProgram program(RunCommand());
    TakeTwoBursts(program);
    ASSERT_EQ(program.End(SIGTERM), 0);
  }
  const double saved = KitchenEnergy();
  RunningProgram killed(RunCommand());
  TakeTwoBursts(killed);
  EXPECT_EQ(killed.End(SIGKILL), 128 + SIGKILL);
  EXPECT_EQ(KitchenEnergy(), saved);
  RunningProgram next(RunCommand());
  TakeTwoBursts(next);
  EXPECT_EQ(next.End(SIGTERM), 0) << next.Messages();
  EXPECT_GT(KitchenEnergy(), saved);
}

TEST_F(HeadlessRun, IsBackedUpWhileItRunsAndRestoredAfterwards) {
  AddKitchen();
  {
    RunningProgram program(RunCommand());
    TakeTwoBursts(program);
    ASSERT_EQ(program.End(SIGTERM), 0);
  }
  const double saved = KitchenEnergy();
  const std::string backup = folder.File("backup");
  const auto store = [&](const char* command) {
    RunningProgram run(Command({"store", command, backup}));
    return run.Wait();
  };
  RunningProgram program(RunCommand());
  TakeTwoBursts(program);
  EXPECT_EQ(store("backup"), 0);
  EXPECT_EQ(store("restore"), 1);
  TakeTwoBursts(program);
  EXPECT_EQ(program.End(SIGTERM), 0) << program.Messages();
  EXPECT_GT(KitchenEnergy(), saved);
  EXPECT_EQ(store("restore"), 0);
  EXPECT_EQ(KitchenEnergy(), saved);
}

TEST_F(HeadlessRun, ASecondInstanceIsRefusedAndTheFirstHearsOfIt) {
  AddKitchen();
  RunningProgram first(RunCommand());
  TakeTwoBursts(first);
  RunningProgram second(RunCommand());
  EXPECT_EQ(second.Wait(), 1);
  EXPECT_THAT(second.Output(), IsEmpty());
  EXPECT_EQ(second.Messages(), "Wattlark is already running with the profile " + profile + "\n");
  EXPECT_TRUE(
      WaitUntil([&] { return first.Messages().find("Another start") != std::string::npos; }));
  EXPECT_TRUE(first.IsRunning());
  EXPECT_EQ(first.End(SIGTERM), 0);
}

TEST_F(HeadlessRun, TellsOnceThatTheDeviceWentAndThatItCameBack) {
  AddKitchen();
  RunningProgram program(RunCommand());
  TakeTwoBursts(program);
  const auto unplugged = std::chrono::steady_clock::now();
  Unplug();
  ASSERT_TRUE(WaitUntil([&] { return !program.Messages().empty(); }));
  EXPECT_LT(std::chrono::steady_clock::now() - unplugged, std::chrono::seconds(1));
  // Long enough for it to have tried in vain.
  const std::size_t ticks = CountOf(FileBytes(capture), " tick");
  ASSERT_TRUE(WaitUntil([&] { return CountOf(FileBytes(capture), " tick") >= ticks + 3; }));
  EXPECT_EQ(program.Messages(),
            "Unable to communicate on COM3: No such device: " + device +
                ". Plug in the receiver, or choose its device: wattlark setting set "
                "PortDevices/COM3 PATH\n");
  PlugIn();
  ASSERT_TRUE(
      WaitUntil([&] { return program.Messages().ends_with("\nCommunicating on COM3 again\n"); }));
  SendBurst();
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_EQ(CountOf(program.Messages(), "\n"), 2u);
}

TEST_F(HeadlessRun, StartsWithoutItsDeviceAndWaitsForIt) {
  AddKitchen();
  fs::remove(device);
  RunningProgram program(RunCommand());
  ASSERT_TRUE(WaitUntil([&] { return !program.Messages().empty(); }));
  EXPECT_THAT(program.Messages(), HasSubstr("Unable to communicate on COM3: No such device: "));
  PlugIn();
  TakeTwoBursts(program);
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_THAT(program.Output(), ContainsRegex(kKitchenLine));
}

TEST_F(HeadlessRun, SaysHowToAddAMeter) {
  RunningProgram program(RunCommand());
  ASSERT_TRUE(WaitUntil([&] { return !program.Messages().empty(); }));
  EXPECT_THAT(program.Messages(),
              AllOf(HasSubstr("No Kill-A-Watts have been added"),
                    HasSubstr("wattlark-headless meter discover --profile " + profile + "\n")));
  const std::string add =
      "wattlark-headless meter add --name 'Meter 5' --address 5 --profile " + profile + "\n";
  for (int burst = 0; burst < 2; ++burst) SendBurst();
  EXPECT_TRUE(WaitUntil([&] { return program.Messages().ends_with(add); }));
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_EQ(CountOf(program.Messages(), add), 1u);
}

TEST_F(HeadlessRun, GoesOnWhenNobodyReadsItsOutput) {
  AddKitchen();
  RunningProgram program(RunCommand());
  program.CloseOutput();
  SendBurst();
  SendLaterBurst();
  EXPECT_TRUE(program.IsRunning());
  EXPECT_EQ(program.End(SIGTERM), 0) << program.Messages();
  EXPECT_GT(KitchenEnergy(), 0);
}

TEST_F(HeadlessRun, SaysWhenItCannotSave) {
  AddKitchen();
  std::optional<RunningProgram> program;
  {
    const FileSizeLimit diskFull;
    program.emplace(Command({"--demo"}));
  }
  ASSERT_TRUE(WaitUntil([&] { return !program->Output().empty(); })) << program->Messages();
  EXPECT_EQ(program->End(SIGTERM), 1);
  EXPECT_THAT(program->Messages(), HasSubstr("Not saved: "));
  EXPECT_EQ(KitchenEnergy(), 0);
}

TEST_F(HeadlessRun, ShowsATableOnATerminal) {
  AddKitchen();
  TestTerminal terminal;
  const int output = ::open(terminal.Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  winsize size{};
  size.ws_col = 80;
  size.ws_row = 24;
  ::ioctl(output, TIOCSWINSZ, &size);
  ::setenv("TERM", "xterm", 1);
  RunningProgram program(RunCommand(), output);
  std::string shown;
  SendBurst();
  EXPECT_TRUE(WaitUntil([&] {
    shown += terminal.Read();
    return shown.find("receiving") != std::string::npos;
  })) << shown;
  EXPECT_THAT(shown, HasSubstr("Meter "));
  EXPECT_THAT(shown, Not(HasSubstr("kWh")));
  EXPECT_EQ(program.End(SIGINT), 0);
  ::close(output);
}

TEST_F(HeadlessRun, TellsOfANewerVersion) {
  AddKitchen();
  HttpServer server;
  server.Handlers().Get("/version", [](const httplib::Request&, httplib::Response& response) {
    response.set_content("9.0\r\n27 August 2010\r\nhttp://maker.example/setup\r\n", "text/plain");
  });
  server.Start();
  RunningProgram set(Command(
      {"setting", "set", "ServiceEndpoints/VersionFileURL", "http://" + server.Place("/version")}));
  ASSERT_EQ(set.Wait(), 0) << set.Messages();
  RunningProgram program(RunCommand());
  ASSERT_TRUE(WaitUntil([&] { return !program.Messages().empty(); }));
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_EQ(program.Messages(),
            "A new version of Wattlark is available! 9.0: http://maker.example/setup\n");
}

TEST_F(HeadlessRun, FabricatesReadingsOnDemand) {
  AddKitchen();
  RunningProgram program(Command({"--demo"}));
  ASSERT_TRUE(WaitUntil([&] { return !program.Output().empty(); })) << program.Messages();
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_THAT(program.Output(), ContainsRegex(kKitchenLine));
}

}  // namespace
}  // namespace wattlark
