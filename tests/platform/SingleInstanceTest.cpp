#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QLocalSocket>
#include <filesystem>
#include <future>

#include "EventLoop.h"
#include "TemporaryFolder.h"
#include "platform/qt/SingleInstance.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;

struct RunningInstance : testing::Test {
  TemporaryFolder runtime;
  TemporaryFolder profiles;
  QByteArray oldRuntime = qgetenv("XDG_RUNTIME_DIR");
  std::string profile = profiles.File("home");
  int shown = 0;

  RunningInstance() {
    fs::permissions(runtime.Path(), fs::perms::owner_all);
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(runtime.Path()));
    fs::create_directory(profile);
    fs::permissions(profile, fs::perms::owner_all);
  }
  ~RunningInstance() override { qputenv("XDG_RUNTIME_DIR", oldRuntime); }

  // What a second process does, while this one's event loop turns.
  bool StartSecond(const std::string& folder) {
    auto answer = std::async(std::launch::async,
                             [&] { return SingleInstance(folder).ActivatePrevInstance(); });
    WaitUntil(
        [&] { return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
    return answer.get();
  }
  std::string SocketPath() const {
    for (const auto& entry : fs::directory_iterator(runtime.Path())) {
      if (entry.is_socket()) return entry.path();
    }
    return {};
  }
};

TEST_F(RunningInstance, IsAskedToShowItself) {
  SingleInstance first(profile);
  first.onShow = [&] { ++shown; };
  ASSERT_TRUE(first.Listen());
  EXPECT_TRUE(StartSecond(profile));
  EXPECT_EQ(shown, 1);
  EXPECT_TRUE(StartSecond(profile));
  EXPECT_EQ(shown, 2);
}

TEST_F(RunningInstance, IsFoundUnderEveryNameOfItsProfile) {
  fs::create_symlink(profile, profiles.File("link"));
  SingleInstance first(profile + "/.");
  first.onShow = [&] { ++shown; };
  ASSERT_TRUE(first.Listen());
  EXPECT_TRUE(StartSecond(profiles.File("link")));
  EXPECT_EQ(shown, 1);
}

TEST_F(RunningInstance, OfAnotherProfileIsLeftAlone) {
  fs::create_directory(profiles.File("other"));
  SingleInstance first(profile);
  first.onShow = [&] { ++shown; };
  ASSERT_TRUE(first.Listen());
  EXPECT_FALSE(StartSecond(profiles.File("other")));
  EXPECT_EQ(shown, 0);
}

TEST_F(RunningInstance, IsNotThereBeforeItListens) {
  const SingleInstance first(profile);
  EXPECT_FALSE(StartSecond(profile));
}

TEST_F(RunningInstance, TakesTheSocketThatAKilledOneLeft) {
  {
    SingleInstance first(profile);
    ASSERT_TRUE(first.Listen());
    fs::rename(SocketPath(), SocketPath() + ".kept");
  }
  const std::string kept = SocketPath();
  fs::rename(kept, kept.substr(0, kept.size() - 5));
  EXPECT_FALSE(StartSecond(profile));
  SingleInstance next(profile);
  next.onShow = [&] { ++shown; };
  ASSERT_TRUE(next.Listen());
  EXPECT_TRUE(StartSecond(profile));
  EXPECT_EQ(shown, 1);
}

TEST_F(RunningInstance, ListensForItsUserAlone) {
  SingleInstance first(profile);
  ASSERT_TRUE(first.Listen());
  struct stat file {};
  ASSERT_EQ(::stat(SocketPath().c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 0077, 0u);
}

TEST_F(RunningInstance, UsesTheProfileWhenThereIsNoRuntimeFolder) {
  fs::permissions(runtime.Path(), fs::perms(0755));  // others could look in
  SingleInstance first(profile);
  first.onShow = [&] { ++shown; };
  ASSERT_TRUE(first.Listen());
  EXPECT_EQ(SocketPath(), "");
  EXPECT_TRUE(StartSecond(profile));
  EXPECT_EQ(shown, 1);
}

TEST_F(RunningInstance, IgnoresEveryOtherMessageAndEndsTheConnection) {
  SingleInstance first(profile);
  first.onShow = [&] { ++shown; };
  ASSERT_TRUE(first.Listen());
  const QByteArray messages[] = {"hide\n",
                                 "\n",
                                 "show\r\n",
                                 "show\nshow\n",
                                 QByteArray("sh\0w\n", 5),
                                 QByteArray(5000, 'x'),
                                 QByteArray(1100, 's') + "\n"};
  for (const QByteArray& message : messages) {
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(SocketPath()));
    ASSERT_TRUE(socket.waitForConnected(5000));
    socket.write(message);
    socket.flush();
    EXPECT_TRUE(WaitUntil([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
  }
  EXPECT_EQ(shown, 0);
  EXPECT_TRUE(StartSecond(profile));
}

TEST_F(RunningInstance, ASilentConnectionEndsAndKeepsNobodyOut) {
  SingleInstance first(profile);
  ASSERT_TRUE(first.Listen());
  std::vector<std::unique_ptr<QLocalSocket>> silent;
  for (int i = 0; i < 20; ++i) {
    silent.push_back(std::make_unique<QLocalSocket>());
    silent.back()->connectToServer(QString::fromStdString(SocketPath()));
  }
  EXPECT_TRUE(WaitUntil([&] {
    return std::all_of(silent.begin(), silent.end(), [](const auto& socket) {
      return socket->state() == QLocalSocket::UnconnectedState;
    });
  }));
  EXPECT_TRUE(StartSecond(profile));
}

}  // namespace
}  // namespace wattlark
