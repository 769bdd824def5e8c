#include <gmock/gmock.h>
#include <sys/stat.h>

#include "integration/HeadlessRun.h"
#include "platform/NotifySocket.h"

namespace wattlark {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

// The program as a service whose manager waits for signs of life.
struct Service : HeadlessRun {
  Service() { ::setenv("WATCHDOG_USEC", "2000000", 1); }
  ~Service() override {
    ::unsetenv("WATCHDOG_USEC");
    ::unsetenv("JOURNAL_STREAM");
  }
  NotifySocket manager{folder.File("notify")};
};

TEST_F(Service, TellsThatItIsReadyWhatIsWrongThatItLivesAndThatItStops) {
  AddKitchen();
  Unplug();
  RunningProgram program(RunCommand());
  ASSERT_TRUE(WaitUntil([&] { return manager.Count("READY=1") == 1; })) << program.Messages();
  EXPECT_THAT(
      manager.Messages(),
      Contains(AllOf(StartsWith("STATUS=Unable to communicate on COM3: "), HasSubstr(device))));
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

TEST_F(Service, RefusedIsNeverReady) {
  AddKitchen();
  RunningProgram program(Command({"--record", folder.File("none/capture")}));
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_EQ(manager.Count("READY=1"), 0);
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
