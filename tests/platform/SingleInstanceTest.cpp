#include <gtest/gtest.h>

#include <QLocalSocket>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <future>

#include "EventLoop.h"
#include "platform/TemporaryFolder.h"
#include "platform/linux/ProfileLock.h"
#include "platform/qt/SingleInstance.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;

struct RunningInstance : testing::Test {
  TemporaryFolder runtime;
  TemporaryFolder profiles;
  QByteArray oldRuntime = qgetenv("XDG_RUNTIME_DIR");
  std::string profile = profiles.File("home");
  std::optional<SingleInstance> first;
  int shown = 0;

  RunningInstance() {
    fs::permissions(runtime.Path(), fs::perms::owner_all);
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(runtime.Path()));
    fs::create_directory(profile);
    fs::permissions(profile, fs::perms::owner_all);
  }
  ~RunningInstance() override { qputenv("XDG_RUNTIME_DIR", oldRuntime); }

  void Listen(const std::string& folder) {
    first.emplace(folder);
    first->onShow = [&] { ++shown; };
    ASSERT_TRUE(first->Listen());
  }
  // What a second process does, while this one's event loop turns.
  template <class F>
  auto InSecond(const F& act) {
    auto answer = std::async(std::launch::async, act);
    WaitUntil(
        [&] { return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
    return answer.get();
  }
  bool StartSecond(const std::string& folder) {
    return InSecond([&] { return SingleInstance(folder).ActivatePrevInstance(); });
  }
  std::optional<CommandAnswer> Ask(const std::string& command) {
    return InSecond([&] { return SingleInstance(profile).Ask(command); });
  }
  void ConnectRaw(QLocalSocket& socket, const QByteArray& message) const {
    socket.connectToServer(QString::fromStdString(SocketPath()));
    ASSERT_TRUE(socket.waitForConnected(5000));
    socket.write(message);
    socket.flush();
  }
  std::string SocketPath() const {
    for (const auto& entry : fs::directory_iterator(runtime.Path())) {
      if (entry.is_socket()) return entry.path();
    }
    return {};
  }
};

TEST_F(RunningInstance, IsAskedToShowItselfUnderEveryNameOfItsProfile) {
  fs::create_symlink(profile, profiles.File("link"));
  fs::create_directory(profiles.File("other"));
  EXPECT_FALSE(StartSecond(profile)) << "not before it listens";
  Listen(profile + "/.");
  EXPECT_TRUE(StartSecond(profile));
  EXPECT_EQ(shown, 1);
  EXPECT_TRUE(StartSecond(profiles.File("link")));
  EXPECT_EQ(shown, 2);
  EXPECT_FALSE(StartSecond(profiles.File("other")));
  EXPECT_EQ(shown, 2);
  EXPECT_EQ(ModeOf(SocketPath()) & 0077, 0) << "for its user alone";
}

TEST_F(RunningInstance, TakesTheSocketThatAKilledOneLeft) {
  Listen(profile);
  const std::string socket = SocketPath();
  fs::rename(socket, socket + ".kept");
  first.reset();
  fs::rename(socket + ".kept", socket);
  EXPECT_FALSE(StartSecond(profile));
  Listen(profile);
  EXPECT_TRUE(StartSecond(profile));
  EXPECT_EQ(shown, 1);
}

TEST_F(RunningInstance, UsesTheProfileWhenThereIsNoRuntimeFolder) {
  fs::permissions(runtime.Path(), fs::perms(0755));  // others could look in
  Listen(profile);
  EXPECT_EQ(SocketPath(), "");
  EXPECT_TRUE(StartSecond(profile));
  EXPECT_EQ(shown, 1);
}

TEST_F(RunningInstance, IgnoresEveryOtherMessageAndEndsTheConnection) {
  Listen(profile);
  int runs = 0;
  first->onCommand = [&](const std::string& command) -> std::function<CommandAnswer()> {
    if (command != "work") return {};
    return [&runs] { return CommandAnswer{++runs > 0, ""}; };
  };
  for (const QByteArray& message :
       {QByteArray("hide\n"), QByteArray("work\nwork\n"), QByteArray("work\r\n"),
        QByteArray("show\nshow\n"), QByteArray(5000, 'x')}) {
    QLocalSocket socket;
    ConnectRaw(socket, message);
    EXPECT_TRUE(WaitUntil([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
    EXPECT_EQ(socket.readAll(), "") << message.left(20).toStdString();
  }
  EXPECT_EQ(shown, 0);
  EXPECT_EQ(runs, 0);
  EXPECT_TRUE(StartSecond(profile));
}

TEST_F(RunningInstance, AnswersACommandHoweverLongItTakes) {
  Listen(profile);
  EXPECT_FALSE(Ask("work")) << "there is nobody to do it";
  const std::string text = "line one\r\n" + std::string(200000, 'x');
  std::vector<std::string> nested;
  first->onCommand = [&](const std::string& command) {
    return [&, command] {
      if (command == "nested") return CommandAnswer{false, "no"};
      // Longer than a silent connection may last, with other commands meanwhile.
      QDeadlineTimer busy(1500);
      nested.push_back(Ask("nested")->text);
      WaitUntil([&] { return busy.hasExpired(); });
      return CommandAnswer{true, text};
    };
  };
  const auto answer = Ask("work");
  ASSERT_TRUE(answer);
  EXPECT_TRUE(answer->success);
  EXPECT_EQ(answer->text, text);
  EXPECT_EQ(nested, std::vector<std::string>{"no"});
}

TEST_F(RunningInstance, OutlivesWhoAskedForACommand) {
  Listen(profile);
  QLocalSocket socket;
  bool hasRun = false;
  first->onCommand = [&](const std::string&) {
    return [&] {
      socket.abort();
      TurnEventLoop();
      TurnEventLoop();
      hasRun = true;
      return CommandAnswer{true, "done"};
    };
  };
  ConnectRaw(socket, "work\n");
  EXPECT_TRUE(WaitUntil([&] { return hasRun; }));
  // One that ends meanwhile is no success.
  first->onCommand = [&](const std::string&) {
    return [&] {
      first.reset();
      return CommandAnswer{true, "done"};
    };
  };
  const auto answer = Ask("work");
  ASSERT_TRUE(answer);
  EXPECT_FALSE(answer->success);
  EXPECT_EQ(answer->text, "The running program has ended without an answer");
}

TEST_F(RunningInstance, ASilentConnectionEndsAndKeepsNobodyOut) {
  Listen(profile);
  std::array<QLocalSocket, 20> silent;
  for (auto& socket : silent) socket.connectToServer(QString::fromStdString(SocketPath()));
  EXPECT_TRUE(WaitUntil([&] {
    return std::ranges::count(silent, QLocalSocket::UnconnectedState, &QLocalSocket::state) == 20;
  }));
  EXPECT_TRUE(StartSecond(profile));
}

TEST(ProfileLock, BelongsToOneHolderAtATimeOrSaysWhyThereCanBeNone) {
  const TemporaryFolder folder;
  const std::string profile = folder.File("new/profile");
  std::optional<ProfileLock> first(profile);
  ProfileLock second(profile);
  EXPECT_TRUE(first->TryAcquire());
  EXPECT_TRUE(first->TryAcquire());
  EXPECT_FALSE(second.TryAcquire());
  EXPECT_EQ(second.Problem(), "");
  EXPECT_EQ(ModeOf(profile + "/lock") & 077, 0);
  first.reset();
  EXPECT_TRUE(second.TryAcquire());
  ProfileLock inAFile(profile + "/lock");
  EXPECT_FALSE(inAFile.TryAcquire());
  EXPECT_NE(inAFile.Problem().find(profile), std::string::npos);
}

TEST(ProfileLock, IsNotHandedOnToAProgramThatWasStarted) {
  const TemporaryFolder folder;
  std::optional<ProfileLock> lock(folder.Path());
  ASSERT_TRUE(lock->TryAcquire());
  FILE* const child = ::popen("cat", "w");  // ends when it is closed
  ASSERT_NE(child, nullptr);
  lock.reset();
  // The starter goes on a moment before the started program has closed what it must not keep.
  ProfileLock next(folder.Path());
  EXPECT_TRUE(WaitUntil([&] { return next.TryAcquire(); }));
  ::pclose(child);
}

TEST(ProfileLock, CanBeHadInAFolderThatCanOnlyBeRead) {
  const TemporaryFolder folder;
  std::filesystem::permissions(folder.Path(), std::filesystem::perms(0555));
  const WithoutRoot user;
  ProfileLock first(folder.Path());
  ProfileLock second(folder.Path());
  EXPECT_TRUE(first.TryAcquire()) << first.Problem();
  EXPECT_FALSE(second.TryAcquire());
  EXPECT_EQ(second.Problem(), "");
}

}  // namespace
}  // namespace wattlark
