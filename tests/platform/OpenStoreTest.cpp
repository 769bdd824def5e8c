#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "platform/FileSizeLimit.h"
#include "platform/OpenStoreFixture.h"

namespace wattlark {

namespace {

namespace fs = std::filesystem;

TEST_F(OpenStoreTest, CreatesFolderAndFileForTheUserAlone) {
  profile_ += "/deeper";
  const mode_t before = ::umask(0);
  const StoreOpening opening = Open();
  ::umask(before);
  EXPECT_EQ(opening.message, "");
  EXPECT_TRUE(opening.savesChanges);
  EXPECT_EQ(ModeOf(profile_), 0700);
  EXPECT_EQ(ModeOf(File()), 0600);
  ASSERT_TRUE(opening.registry->Begin());
  ASSERT_TRUE(opening.registry->Write(kUser, "A", "v", Text("secret")));
  EXPECT_EQ(ModeOf(File("-journal")), 0600);
}

TEST_F(OpenStoreTest, TakesAnExistingFileAwayFromOthers) {
  WriteOne("1");
  fs::permissions(File(), fs::perms(0664));
  ExpectWorks();
  EXPECT_EQ(ModeOf(File()), 0600);
}

TEST_F(OpenStoreTest, AnEmptyFileIsANewStore) {
  fs::create_directory(profile_);
  WriteFile(File(), "");
  ExpectWorks();
  EXPECT_FALSE(fs::exists(File(".damaged-1")));
}

TEST_F(OpenStoreTest, WhatIsNoFileIsSetAsideWithItsJournal) {
  fs::create_directories(File());
  WriteFile(File() + "/inside", "1");
  WriteFile(File("-journal"), "2");
  const StoreOpening opening = Open();
  EXPECT_TRUE(opening.savesChanges);
  EXPECT_TRUE(Mentions(opening, File(".damaged-1"))) << opening.message;
  EXPECT_EQ(FileBytes(File(".damaged-1") + "/inside"), "1");
  EXPECT_EQ(FileBytes(File(".damaged-1-journal")), "2");
  ExpectWorks();
}

TEST_F(OpenStoreTest, ADatabaseOfAnotherProgramIsSetAside) {
  fs::create_directory(profile_);
  RunSql("PRAGMA application_id = 7; CREATE TABLE theirs(x); INSERT INTO theirs VALUES(1)");
  const std::string theirs = FileBytes(File());
  const StoreOpening opening = Open();
  EXPECT_TRUE(opening.savesChanges);
  EXPECT_TRUE(Mentions(opening, "another program")) << opening.message;
  EXPECT_EQ(FileBytes(File(".damaged-1")), theirs);
  ExpectWorks();
}

TEST_F(OpenStoreTest, ANewerStoreIsLeftAlone) {
  WriteOne("1");
  RunSql("PRAGMA user_version = 3");
  const std::string newer = FileBytes(File());
  {
    const StoreOpening opening = Open();
    EXPECT_FALSE(opening.savesChanges);
    EXPECT_TRUE(Mentions(opening, "newer version")) << opening.message;
    EXPECT_TRUE(Mentions(opening, "Nothing will be saved")) << opening.message;
    EXPECT_TRUE(opening.registry->Write(kUser, "A\\B", "v", Text("2")));
    EXPECT_EQ(opening.registry->Read(kUser, "A\\B", "v"), Text("2"));
  }
  EXPECT_EQ(FileBytes(File()), newer);
  EXPECT_FALSE(fs::exists(File(".damaged-1")));
}

struct Permissions {
  const char* what;
  int folder;
  int file;
  const char* message;
  bool readable;
};

class GuardedStore : public OpenStoreTest, public testing::WithParamInterface<Permissions> {};

TEST_P(GuardedStore, IsReadWhereItCanBeAndNeverChanged) {
  WriteOne("1");
  const std::string before = FileBytes(File());
  fs::permissions(File(), fs::perms(GetParam().file));
  fs::permissions(profile_, fs::perms(GetParam().folder));
  {
    const WithoutRoot user;
    const StoreOpening opening = Open();
    ASSERT_NE(opening.registry, nullptr);
    EXPECT_FALSE(opening.savesChanges);
    EXPECT_TRUE(Mentions(opening, GetParam().message)) << opening.message;
    EXPECT_EQ(opening.registry->Read(kUser, "A\\B", "v").has_value(), GetParam().readable);
    if (GetParam().readable) {
      EXPECT_FALSE(opening.registry->Write(kUser, "A\\B", "v", Text("2")));
      EXPECT_NE(opening.registry->ErrorText().find("can only be read"), std::string::npos);
      EXPECT_TRUE(opening.registry->Begin());
      EXPECT_EQ(opening.registry->Read(kUser, "A\\B", "v"), Text("1"));
      EXPECT_FALSE(opening.registry->Write(kUser, "A\\B", "v", Text("2")));
      EXPECT_FALSE(opening.registry->Commit());
    }
  }
  fs::permissions(profile_, fs::perms(0755));
  fs::permissions(File(), fs::perms(0600));
  EXPECT_EQ(FileBytes(File()), before);
}

// A file that others may read and write stands for the user's own: the tests may run as root, who
// owns it.
INSTANTIATE_TEST_SUITE_P(
    , GuardedStore,
    testing::Values(Permissions{"ReadOnlyFile", 0777, 0444, "can only be read", true},
                    Permissions{"ReadOnlyFolder", 0555, 0666, "can only be read", true},
                    Permissions{"SecretFile", 0777, 0000, "cannot be read", false},
                    Permissions{"ClosedFolder", 0000, 0666, "cannot be", false}),
    [](const auto& test) { return test.param.what; });

TEST_F(OpenStoreTest, WithoutAFolderItWorksInMemory) {
  WriteFile(profile_, "a file in place of the folder");
  const StoreOpening opening = Open();
  ASSERT_NE(opening.registry, nullptr);
  EXPECT_FALSE(opening.savesChanges);
  EXPECT_TRUE(Mentions(opening, profile_)) << opening.message;
  EXPECT_TRUE(opening.registry->Write(kUser, "A", "v", Text("1")));
  EXPECT_EQ(FileBytes(profile_), "a file in place of the folder");
}

TEST_F(OpenStoreTest, ALockedStoreIsAnErrorUntilItIsFree) {
  WriteOne("1");
  {
    SqliteDatabase other;
    ASSERT_EQ(other.Open(File(), SQLITE_OPEN_READWRITE, 0), SQLITE_OK);
    ASSERT_EQ(other.Execute("BEGIN EXCLUSIVE"), SQLITE_OK);
    const StoreOpening opening = Open();
    EXPECT_EQ(opening.registry, nullptr);
    EXPECT_FALSE(opening.savesChanges);
    EXPECT_TRUE(Mentions(opening, "in use by another program")) << opening.message;
  }
  EXPECT_FALSE(fs::exists(File(".damaged-1")));
  ExpectWorks();
}

TEST_F(OpenStoreTest, AFullDiskAtTheFirstStartIsSurvived) {
  {
    const FileSizeLimit limit;
    const StoreOpening opening = Open();
    ASSERT_NE(opening.registry, nullptr);
    EXPECT_FALSE(opening.savesChanges);
    EXPECT_NE(opening.message, "");
    EXPECT_TRUE(opening.registry->Write(kUser, "A", "v", Text("1")));
  }
  ExpectWorks();
}

TEST_F(OpenStoreTest, AKillInTheMiddleOfASaveLeavesTheStateBefore) {
  WriteOne("before");
  const auto sizeBefore = fs::file_size(File());
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const StoreOpening opening = Open();
    opening.registry->Begin();
    opening.registry->Write(kUser, "A\\B", "v", Text("after"));
    // More than the cache holds, so that changed pages reach the file before the commit.
    for (int i = 0; i < 30; ++i) {
      opening.registry->Write(kUser, "A\\B", std::to_string(i), Text(std::string(1'000'000, 'x')));
    }
    ::raise(SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  ASSERT_GT(fs::file_size(File()), sizeBefore);
  ASSERT_TRUE(fs::exists(File("-journal")));

  const StoreOpening opening = Open();
  EXPECT_EQ(opening.message, "");
  EXPECT_TRUE(opening.savesChanges);
  EXPECT_EQ(opening.registry->Read(kUser, "A\\B", "v"), Text("before"));
  EXPECT_EQ(opening.registry->Values(kUser, "A\\B").size(), 1U);
  EXPECT_EQ(fs::file_size(File()), sizeBefore);
}

}  // namespace

}  // namespace wattlark
