#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include "integration/HeadlessRun.h"
#include "platform/FileSizeLimit.h"

namespace wattlark {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kKitchenLine =
    "[0-9-]+T[0-9:]+ Kitchen [0-9.-]+ W [0-9.]+ V [0-9.-]+ A today [0-9.]+ kWh\n";

TEST_F(HeadlessRun, PrintsTheFirstReadingAtOnceSavesWhateverEndsItAndIsBackedUpMeanwhile) {
  AddKitchen();
  const std::string backup = folder.File("backup");
  std::vector<double> saved{0};
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const auto start = std::chrono::steady_clock::now();
    RunningProgram program(RunCommand());
    TakeTwoBursts(program);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    if (signal == SIGHUP) {
      Run({"store", "backup", backup});
      RunningProgram refused(Command({"store", "restore", backup}));
      EXPECT_EQ(refused.Wait(), 1);
    }
    EXPECT_EQ(program.End(signal), 0);
    EXPECT_THAT(program.Output(), ContainsRegex(std::string("^") + kKitchenLine));
    // One more only when the minute happened to change.
    EXPECT_LE(CountOf(program.Output(), "\n"), 2u);
    EXPECT_THAT(program.Messages(), IsEmpty());
    EXPECT_GT(KitchenEnergy(), saved.back());
    saved.push_back(KitchenEnergy());
  }
  Run({"store", "restore", backup});
  EXPECT_EQ(KitchenEnergy(), saved[2]);
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
  EXPECT_EQ(first.End(SIGTERM), 0);
}

TEST_F(HeadlessRun, TellsOnceThatItsDeviceIsMissingAndThatItCameBack) {
  AddKitchen();
  Unplug();
  RunningProgram program(RunCommand());
  program.CloseOutput();  // nobody reads what it prints
  const std::string missing =
      "Unable to communicate on COM3: No such device: " + device +
      ". Plug in the receiver, or choose its device: wattlark-headless setting "
      "set PortDevices/COM3 PATH --profile " +
      profile + "\n";
  const std::string again = "Communicating on COM3 again\n";
  std::string told;
  for (int round = 0; round < 2; ++round) {
    told += missing;
    ASSERT_TRUE(WaitUntil([&] { return program.Messages().size() >= told.size(); }));
    // Long enough for it to have tried in vain.
    const std::size_t ticks = CountOf(FileBytes(capture), " tick");
    ASSERT_TRUE(WaitUntil([&] { return CountOf(FileBytes(capture), " tick") >= ticks + 3; }));
    EXPECT_EQ(program.Messages(), told);
    PlugIn();
    told += again;
    ASSERT_TRUE(WaitUntil([&] { return program.Messages().ends_with(again); }));
    SendBurst();
    if (round == 0) Unplug();
  }
  EXPECT_EQ(program.End(SIGTERM), 0);
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

TEST_F(HeadlessRun, TellsOfAlarmsAndWhenItCannotSave) {
  AddKitchen({"--alarm", "on", "--alarm-upper", "-1", "--alarm-duration", "0"});
  std::optional<RunningProgram> program;
  {
    const FileSizeLimit diskFull;
    program.emplace(Command({"--demo"}));
  }
  ASSERT_TRUE(WaitUntil([&] { return !program->Messages().empty(); }));
  EXPECT_THAT(program->Messages(), ContainsRegex(": Kitchen: Using [0-9.,]+ Watts\n"));
  EXPECT_EQ(program->End(SIGTERM), 1);
  EXPECT_THAT(program->Output(), ContainsRegex(kKitchenLine)) << "fabricated";
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
  const auto server = OfferVersion9();
  RunningProgram program(RunCommand());
  ASSERT_TRUE(WaitUntil([&] { return !program.Messages().empty(); }));
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_EQ(program.Messages(),
            "A new version of Wattlark is available! 9.0: http://maker.example/setup\n");
}

}  // namespace
}  // namespace wattlark
