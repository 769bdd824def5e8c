#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <ctime>

#include "EventLoop.h"
#include "RawServer.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtHttpClient.h"
#include "publish/PublishResult.h"
#include "publish/WebRequestRunner.h"

namespace wattlark {
namespace {

TEST(QtHttpClient, RunsOneRequestAtATime) {
  RawServer server([](QTcpSocket&) {});
  std::vector<HttpState> states;
  {
    // It may end with a request under way.
    QtHttpClient ended;
    ended.onState = [&](HttpState state) { states.push_back(state); };
    ended.Execute(server.URL(), "GET", "", "");
    ASSERT_TRUE(WaitUntil([&] { return server.connections == 1; }));
    states.clear();
  }
  EXPECT_TRUE(WaitUntil([&] { return server.disconnections == 1; }));
  EXPECT_THAT(states, testing::IsEmpty());
  QtHttpClient client;
  client.onState = [&](HttpState state) { states.push_back(state); };
  client.Execute(server.URL(), "GET", "", "");
  EXPECT_THROW(client.Execute(server.URL(), "GET", "", ""), std::runtime_error);
  client.Cancel();
  EXPECT_THAT(states, testing::ElementsAre(HttpState::Error));
  EXPECT_NE(client.ResponseCode(), 0);
  // What was still to be told of the first one does not reach the second.
  RawServer quick(
      [](QTcpSocket& socket) { socket.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok"); });
  client.Execute(quick.URL(), "GET", "", "");
  ASSERT_TRUE(WaitUntil([&] { return states.back() == HttpState::ResponseCompleted; }));
  EXPECT_EQ(std::count(states.begin(), states.end(), HttpState::Error), 1);
  EXPECT_EQ(client.GetChunk(10), "ok");
  EXPECT_EQ(client.GetChunk(10), "");
  client.Cancel();
  EXPECT_EQ(states.back(), HttpState::ResponseCompleted);
}

/// The status with which the event loop ends when a wait for a server that never answers is under
/// way and `end` is called; -1 when the wait does not notice.
int RunUntil(const std::function<void(QtEventPump&)>& end) {
  const RawServer server([](QTcpSocket&) {});
  QtHttpClient client;
  QtEventPump pump;
  WebRequestRunner runner(client, pump, "", [](const std::string&) {});
  bool stopped = false;
  QTimer::singleShot(0, [&] {
    QTimer::singleShot(50, [&] { end(pump); });
    try {
      runner.ExecuteAndWait({server.URL(), "GET"});
    } catch (const PublishStopped&) {
      stopped = true;
    }
    // The next destination of the same tick must not wait either.
    EXPECT_THROW(runner.ExecuteAndWait({server.URL(), "GET"}), PublishStopped);
  });
  QTimer patience;
  patience.setSingleShot(true);
  patience.callOnTimeout([&] { client.Cancel(); });
  patience.start(10000);
  const int status = QCoreApplication::exec();
  return stopped ? status : -1;
}

TEST(QtEventPump, EndsAWaitWhenTheApplicationIsToldToQuit) {
  EXPECT_EQ(RunUntil([](QtEventPump&) { QCoreApplication::quit(); }), 0);
  EXPECT_EQ(RunUntil([](QtEventPump& pump) {
              QCoreApplication::exit(3);
              pump.NoteExit();
            }),
            3);
  // It goes on when quitting was refused.
  QtEventPump pump;
  pump.NoteExit();
  QTimer::singleShot(0, [] {});
  EXPECT_TRUE(pump.ProcessEvents());
}

TEST(QtEventPump, TakesNoProcessorTimeWhileItWaits) {
  const auto processorTime = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  };
  const RawServer server([](QTcpSocket&) {});
  QtHttpClient client(std::chrono::milliseconds(2000));
  QtEventPump pump;
  WebRequestRunner runner(client, pump, "", [](const std::string&) {});
  const auto before = processorTime();
  EXPECT_NE(runner.ExecuteAndWait({server.URL(), "GET"}).ResponseCode, 0);
  const auto used = processorTime() - before;
  EXPECT_LT(used, std::chrono::milliseconds(200)) << "of 2 s";
}

}  // namespace
}  // namespace wattlark
