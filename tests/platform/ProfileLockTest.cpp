#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <optional>
#include <thread>

#include "platform/TemporaryFolder.h"
#include "platform/linux/ProfileLock.h"

namespace wattlark {
namespace {

TEST(ProfileLock, BelongsToOneHolderAtATime) {
  const TemporaryFolder folder;
  const std::string profile = folder.File("new/profile");
  std::optional<ProfileLock> first(profile);
  ProfileLock second(profile);
  EXPECT_TRUE(first->TryAcquire());
  EXPECT_TRUE(first->TryAcquire());
  EXPECT_FALSE(second.TryAcquire());
  EXPECT_EQ(second.Problem(), "");
  struct stat status {};
  ASSERT_EQ(::stat((profile + "/lock").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 077, 0U);
  first.reset();
  EXPECT_TRUE(second.TryAcquire());
  ProfileLock elsewhere(folder.File("other"));
  EXPECT_TRUE(elsewhere.TryAcquire());
}

TEST(ProfileLock, IsNotHandedOnToAProgramThatWasStarted) {
  const TemporaryFolder folder;
  std::optional<ProfileLock> lock(folder.Path());
  ASSERT_TRUE(lock->TryAcquire());
  std::string name = "sleep";
  std::string seconds = "600";
  char* arguments[] = {name.data(), seconds.data(), nullptr};
  pid_t child = 0;
  ASSERT_EQ(::posix_spawnp(&child, "sleep", nullptr, nullptr, arguments, environ), 0);
  lock.reset();
  // The starter goes on a moment before the started program has closed what it must not keep.
  ProfileLock next(folder.Path());
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  bool acquired = next.TryAcquire();
  while (!acquired && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::yield();
    acquired = next.TryAcquire();
  }
  EXPECT_TRUE(acquired);
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
}

TEST(ProfileLock, CanBeHadInAFolderThatCanOnlyBeRead) {
  const TemporaryFolder folder;
  for (const char* name : {"withoutLock", "withLock"}) {
    const std::string profile = folder.File(name);
    std::filesystem::create_directory(profile);
    if (profile.ends_with("withLock")) WriteFile(profile + "/lock", "");
    std::filesystem::permissions(profile, std::filesystem::perms(0555));
    const WithoutRoot user;
    ProfileLock first(profile);
    ProfileLock second(profile);
    EXPECT_TRUE(first.TryAcquire()) << first.Problem();
    EXPECT_FALSE(second.TryAcquire());
    EXPECT_EQ(second.Problem(), "");
  }
}

TEST(ProfileLock, SaysWhyThereCanBeNone) {
  const TemporaryFolder folder;
  WriteFile(folder.File("file"), "");
  ProfileLock inAFile(folder.File("file"));
  EXPECT_FALSE(inAFile.TryAcquire());
  EXPECT_NE(inAFile.Problem().find(folder.File("file")), std::string::npos);

  std::filesystem::create_directories(folder.File("profile/lock"));
  ProfileLock onAFolder(folder.File("profile"));
  EXPECT_FALSE(onAFolder.TryAcquire());
  EXPECT_NE(onAFolder.Problem(), "");
}

}  // namespace
}  // namespace wattlark
