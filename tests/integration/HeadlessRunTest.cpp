#include <sys/stat.h>

#include "integration/HeadlessRun.h"
#include "platform/NotifySocket.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

using testing::ContainsRegex;

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
      EXPECT_EQ(Try({"store", "restore", backup}).status, 1);
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
  ::setenv("TERM", "xterm", 1);
  RunningProgram program(RunCommand(), output);
  std::string shown;
  SendBurst();
  EXPECT_TRUE(WaitUntil([&] {
    shown += terminal.Read();
    return shown.find("receiving") != std::string::npos;
  })) << shown;
  EXPECT_THAT(shown, HasSubstr("Meter "));
  EXPECT_THAT(shown, testing::Not(HasSubstr("kWh")));
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

struct DiscoverCommand : HeadlessRun {
  const std::vector<std::string> discover{"meter", "discover",  "--device",
                                          device,  "--seconds", "1"};
};

TEST_F(DiscoverCommand, TellsWhoSendsAndWhatToType) {
  AddKitchen();
  Simulate({"Kitchen:5:620", "Office:6:80"});
  EXPECT_THAT(
      Run(discover),
      AllOf(ContainsRegex("\n +5 +[1-9][0-9]* +Kitchen\n +6 +[1-9][0-9]* +none yet\n"),
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
  EXPECT_THAT(Try(discover), FieldsAre(1, "", HasSubstr("Nothing arrived on " + device)));
  receiver->Write(Bytes(200, 0x55));
  RunningProgram garbled(Command(discover));
  ASSERT_TRUE(WaitUntil([&] { return garbled.Messages().find("Listening") != std::string::npos; }));
  receiver->Write(Bytes(200, 0x55));
  EXPECT_EQ(garbled.Wait(), 1);
  EXPECT_THAT(garbled.Messages(), HasSubstr("but no whole frame"));
  Unplug();
  EXPECT_THAT(Try(discover), FieldsAre(1, "", HasSubstr("No such device: " + device)));
  EXPECT_FALSE(std::filesystem::exists(profile));
}

TEST_F(DiscoverCommand, LeavesTheDeviceToARunningProgramWhichHearsOfASecondOne) {
  AddKitchen();
  Simulate({"Kitchen:5:620"});
  RunningProgram program(RunCommand());
  ASSERT_TRUE(WaitUntil([&] { return !program.Output().empty(); })) << program.Messages();
  EXPECT_THAT(Try(discover),
              FieldsAre(1, "", HasSubstr("In use: another program has " + device + " open")));
  EXPECT_THAT(Try({"meter", "discover"}),
              FieldsAre(1, "", HasSubstr("Wattlark is running with the profile")));
  EXPECT_THAT(Try({"--device", device}),
              FieldsAre(1, "", "Wattlark is already running with the profile " + profile + "\n"));
  EXPECT_TRUE(
      WaitUntil([&] { return program.Messages().find("Another start") != std::string::npos; }));
  EXPECT_EQ(program.End(SIGTERM), 0);
}

// The program as a service whose manager waits for signs of life.
struct Service : HeadlessRun {
  ~Service() override { ::unsetenv("JOURNAL_STREAM"); }
  NotifySocket manager{folder.File("notify"), "2000000"};
};

TEST_F(Service, TellsThatItIsReadyWhatIsWrongThatItLivesAndThatItStops) {
  AddKitchen();
  Unplug();
  RunningProgram program(RunCommand());
  ASSERT_TRUE(WaitUntil([&] { return manager.Count("READY=1") == 1; })) << program.Messages();
  EXPECT_THAT(manager.Messages(),
              testing::Contains(
                  AllOf(StartsWith("STATUS=Unable to communicate on COM3: "), HasSubstr(device))));
  PlugIn();
  ASSERT_TRUE(WaitUntil([&] { return manager.Count("STATUS=0 of 1 meter sends") == 1; }));
  SendBurst();
  ASSERT_TRUE(WaitUntil([&] { return manager.Count("STATUS=1 of 1 meter sends") == 1; }));
  const auto signs = manager.Count("WATCHDOG=1");
  EXPECT_TRUE(WaitUntil([&] { return manager.Count("WATCHDOG=1") >= signs + 2; }));
  EXPECT_EQ(manager.Count("STOPPING=1"), 0);
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_EQ(manager.Messages().back(), "STOPPING=1");
}

TEST_F(Service, LeavesTheTimeOfItsLinesToTheJournal) {
  AddKitchen();
  const std::string journal = folder.File("journal");
  const int output = ::open(journal.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  struct stat file {};
  ::fstat(output, &file);
  ::setenv("JOURNAL_STREAM",
           (std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino)).c_str(), 1);
  RunningProgram program(RunCommand(), output);
  SendBurst();
  EXPECT_TRUE(WaitUntil([&] { return !FileBytes(journal).empty(); }));
  EXPECT_EQ(program.End(SIGTERM), 0);
  EXPECT_THAT(FileBytes(journal), StartsWith("Kitchen "));
  ::close(output);
}

}  // namespace
}  // namespace wattlark
