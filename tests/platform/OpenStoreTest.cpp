#include <filesystem>
#include <optional>
#include <string>

#include "platform/FileSizeLimit.h"
#include "platform/OpenStoreFixture.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

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
  ASSERT_TRUE(opening.registry->Write(kUser, "A", "v", TextValue("secret")));
  EXPECT_EQ(ModeOf(File("-journal")), 0600);
}

TEST_F(OpenStoreTest, AnEmptyFileIsANewStoreAndTakenAwayFromOthers) {
  fs::create_directory(profile_);
  WriteFile(File(), "");
  fs::permissions(File(), fs::perms(0664));
  ExpectWorks();
  EXPECT_EQ(ModeOf(File()), 0600);
  EXPECT_FALSE(fs::exists(File(".damaged-1")));
}

TEST_F(OpenStoreTest, WhatIsNoFileIsSetAsideWithItsJournal) {
  fs::create_directories(File());
  WriteFile(File() + "/inside", "1");
  WriteFile(File("-journal"), "2");
  const StoreOpening opening = Open();
  EXPECT_TRUE(opening.savesChanges);
  EXPECT_THAT(opening.message, HasSubstr(File(".damaged-1")));
  EXPECT_EQ(FileBytes(File(".damaged-1") + "/inside"), "1");
  EXPECT_EQ(FileBytes(File(".damaged-1-journal")), "2");
  ExpectWorks();
}

TEST_F(OpenStoreTest, ADatabaseOfAnotherProgramIsSetAside) {
  RunSql("PRAGMA application_id = 7; CREATE TABLE theirs(x); INSERT INTO theirs VALUES(1)");
  const std::string theirs = FileBytes(File());
  const StoreOpening opening = Open();
  EXPECT_TRUE(opening.savesChanges);
  EXPECT_THAT(opening.message, HasSubstr("another program"));
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
    EXPECT_THAT(opening.message, HasSubstr("newer version"));
    EXPECT_THAT(opening.message, HasSubstr("Nothing will be saved"));
    EXPECT_TRUE(opening.registry->Write(kUser, "A\\B", "v", TextValue("2")));
    EXPECT_EQ(opening.registry->Read(kUser, "A\\B", "v"), TextValue("2"));
  }
  EXPECT_EQ(FileBytes(File()), newer);
  EXPECT_FALSE(fs::exists(File(".damaged-1")));
}

TEST_F(OpenStoreTest, AStoreWithoutPermissionIsReadWhereItCanBeAndNeverChanged) {
  WriteOne("0");
  {
    const StoreOpening opening = Open();
    opening.registry->Begin();
    opening.registry->MarkProgress();
    opening.registry->Write(kUser, "A\\B", "v", TextValue("1"));
    ASSERT_TRUE(opening.registry->Commit());
  }
  const std::string before = FileBytes(File());
  // A file that others may read and write stands for the user's own: the tests may run as root,
  // who owns it.
  struct Permissions {
    int folder, file;
    const char* message;
    bool readable;
  };
  for (const auto& [folder, file, message, readable] :
       {Permissions{0777, 0444, "can only be read", true},
        Permissions{0555, 0666, "can only be read", true},
        Permissions{0777, 0000, "cannot be read", false},
        Permissions{0000, 0666, "cannot be", false}}) {
    SetModes(folder, file);
    {
      const WithoutRoot user;
      const StoreOpening opening = Open();
      ASSERT_NE(opening.registry, nullptr);
      EXPECT_FALSE(opening.savesChanges);
      EXPECT_THAT(opening.message, HasSubstr(message));
      const auto expected = readable ? std::optional(TextValue("1")) : std::nullopt;
      EXPECT_EQ(opening.registry->Read(kUser, "A\\B", "v"), expected);
      for (const bool isProgress : {false, true}) {
        if (!readable) break;
        EXPECT_FALSE(opening.registry->Write(kUser, "A\\B", "v", TextValue("2")));
        EXPECT_THAT(opening.registry->ErrorText(), HasSubstr("can only be read"));
        EXPECT_TRUE(opening.registry->Begin());
        if (isProgress) opening.registry->MarkProgress();
        EXPECT_FALSE(opening.registry->Write(kUser, "A\\B", "v", TextValue("2")));
        EXPECT_FALSE(opening.registry->Commit());
      }
    }
    SetModes(0755, 0600);
    EXPECT_EQ(FileBytes(File()), before) << message;
  }
}

TEST_F(OpenStoreTest, OnAFullDiskOrWithoutAFolderItWorksInMemory) {
  for (const bool isFull : {true, false}) {
    if (!isFull) profile_ = folder_.File("file");
    if (!isFull) WriteFile(profile_, "in place of the folder");
    std::optional<FileSizeLimit> limit;
    if (isFull) limit.emplace();
    const StoreOpening opening = Open();
    limit.reset();
    ASSERT_NE(opening.registry, nullptr);
    EXPECT_FALSE(opening.savesChanges);
    EXPECT_THAT(opening.message, HasSubstr(profile_));
    EXPECT_TRUE(opening.registry->Write(kUser, "A", "v", TextValue("1")));
    if (isFull) ExpectWorks();
  }
  EXPECT_EQ(FileBytes(profile_), "in place of the folder");
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
    EXPECT_THAT(opening.message, HasSubstr("in use by another program"));
  }
  EXPECT_FALSE(fs::exists(File(".damaged-1")));
  ExpectWorks();
}

}  // namespace
}  // namespace wattlark
