#include <QCoreApplication>
#include <QTest>

#include "cli/ServiceReport.h"
#include "platform/NotifySocket.h"
#include "platform/TemporaryFolder.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

// A program whose manager waits 800 ms for a sign of life.
struct ServiceReportTest : testing::TestWithParam<bool> {
  TemporaryFolder folder;
  NotifySocket manager{(GetParam() ? "@" : "") + folder.File("notify"), "800000"};
  int argc = 0;
  QCoreApplication application{argc, nullptr};
};

INSTANTIATE_TEST_SUITE_P(FileOrName, ServiceReportTest, testing::Bool());

TEST_P(ServiceReportTest,
       TellsAStateOnceAndATickThatWaitsGivesSignsOfLifeButNoneThatIsNotCalledAnyMore) {
  ServiceReport report;
  for (int tick = 0; tick < 2; ++tick) {
    report.OnTickBegins();
    report.ShowStatus("Unable\r\nREADY=1");  // told when it changes, and in one line
    report.OnTickEnds();
  }
  EXPECT_THAT(manager.Messages(), ElementsAre("STATUS=Unable", "WATCHDOG=1"));
  QTest::qWait(300);
  EXPECT_THAT(manager.Messages(), ElementsAre("STATUS=Unable", "WATCHDOG=1"));
  report.OnTickBegins();
  EXPECT_TRUE(QTest::qWaitFor([&] { return manager.Count("WATCHDOG=1") >= 3; }));
}

TEST_P(ServiceReportTest, NoSignsForAManagerThatWaitsForNone) {
  ::setenv("WATCHDOG_PID", "1", 1);
  ServiceReport ofAnotherProcess;
  ::unsetenv("WATCHDOG_PID");
  ::setenv("WATCHDOG_USEC", "soon", 1);
  ServiceReport unreadable;
  for (ServiceReport* report : {&ofAnotherProcess, &unreadable}) {
    report->OnTickBegins();
    report->OnTickEnds();
  }
  EXPECT_THAT(manager.Messages(), IsEmpty());
}

}  // namespace
}  // namespace wattlark
