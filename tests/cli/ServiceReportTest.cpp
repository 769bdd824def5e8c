#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QTest>

#include "cli/ServiceReport.h"
#include "platform/NotifySocket.h"
#include "platform/TemporaryFolder.h"

namespace wattlark {
namespace {

using testing::ElementsAre;

// A program whose manager waits 800 ms for a sign of life.
struct ServiceReportTest : testing::TestWithParam<bool> {
  TemporaryFolder folder;
  NotifySocket manager{(GetParam() ? "@" : "") + folder.File("notify"), "800000"};
  int argc = 0;
  QCoreApplication application{argc, nullptr};
};

INSTANTIATE_TEST_SUITE_P(FileOrName, ServiceReportTest, testing::Bool());

TEST_P(ServiceReportTest, TellsEachStateOnceAndInOneLine) {
  ServiceReport report;
  report.OnReady();
  report.ShowStatus("Unable\r\nREADY=1");
  report.ShowStatus("Unable\r\nREADY=1");
  report.ShowStatus("2 of 3 meters send");
  report.OnStopping();
  EXPECT_THAT(manager.Messages(),
              ElementsAre("READY=1", "STATUS=Unable", "STATUS=2 of 3 meters send", "STOPPING=1"));
}

TEST_P(ServiceReportTest, ATickThatWaitsGivesSignsOfLifeAndOneThatIsNotCalledAnyMoreNone) {
  ServiceReport report;
  report.OnTickBegins();
  report.OnTickEnds();
  report.OnTickBegins();
  report.OnTickEnds();
  EXPECT_THAT(manager.Messages(), ElementsAre("WATCHDOG=1"));
  QTest::qWait(300);
  EXPECT_THAT(manager.Messages(), ElementsAre("WATCHDOG=1"));
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
  EXPECT_THAT(manager.Messages(), testing::IsEmpty());
}

}  // namespace
}  // namespace wattlark
