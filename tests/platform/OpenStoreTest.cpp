#include "platform/OpenStoreFixture.h"
#include "support/modText.h"
#include "torture/GoodStore.h"
#include "twins/Matchers.h"

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

TEST_F(OpenStoreTest, WhatIsNoStoreIsSetAsideWithItsJournal) {
  fs::create_directories(File());
  WriteFile(File() + "/inside", "1");
  WriteFile(File("-journal"), "2");
  EXPECT_THAT(Open().message, HasSubstr(File(".damaged-1")));
  EXPECT_EQ(FileBytes(File(".damaged-1") + "/inside"), "1");
  EXPECT_EQ(FileBytes(File(".damaged-1-journal")), "2");
  ExpectWorks();
  fs::remove(File());
  RunSql("PRAGMA application_id = 7; CREATE TABLE theirs(x)");
  const std::string theirs = FileBytes(File());
  EXPECT_THAT(Open().message, HasSubstr("another program"));
  EXPECT_EQ(FileBytes(File(".damaged-2")), theirs);
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
}

TEST_F(OpenStoreTest, AStoreWithoutPermissionIsReadWhereItCanBeAndNeverChanged) {
  WriteOne("0");
  const std::unique_ptr<Registry> store = Open().registry;
  store->Begin();
  store->MarkProgress();
  store->Write(kUser, "A\\B", "v", TextValue("1"));
  ASSERT_TRUE(store->Commit());
  const std::string before = FileBytes(File());
  // A file that others may read and write stands for the user's own: the tests may run as root,
  // who owns it.
  using Permissions = std::tuple<int, int, const char*, bool>;
  for (const auto& [folder, file, message, readable] :
       {Permissions{0777, 0444, "can only be read", true},
        Permissions{0555, 0666, "can only be read", true},
        Permissions{0777, 0000, "cannot be", false}, Permissions{0000, 0666, "cannot be", false}}) {
    SetModes(folder, file);
    {
      const WithoutRoot user;
      const StoreOpening opening = Open();
      ASSERT_NE(opening.registry, nullptr);
      EXPECT_FALSE(opening.savesChanges);
      EXPECT_THAT(opening.message, HasSubstr(message));
      const auto expected = readable ? std::optional(TextValue("1")) : std::nullopt;
      EXPECT_EQ(opening.registry->Read(kUser, "A\\B", "v"), expected);
      EXPECT_TRUE(opening.registry->Begin());
      opening.registry->MarkProgress();
      EXPECT_NE(opening.registry->Write(kUser, "A\\B", "v", TextValue("2")), readable);
      EXPECT_NE(opening.registry->Commit(), readable);
      EXPECT_THAT(opening.registry->ErrorText(), HasSubstr(readable ? "can only be read" : ""));
    }
    SetModes(0755, 0600);
    EXPECT_EQ(FileBytes(File()), before) << message;
  }
}

TEST_F(OpenStoreTest, OnAFullDiskOrWithoutAFolderItWorksInMemory) {
  const std::string file = folder_.File("file");
  WriteFile(file, "in place of the folder");
  for (const std::string& folder : {profile_, file}) {
    std::optional<FileSizeLimit> limit(std::in_place);
    const StoreOpening opening = OpenStore(folder, 0);
    limit.reset();
    ASSERT_NE(opening.registry, nullptr);
    EXPECT_FALSE(opening.savesChanges);
    EXPECT_THAT(opening.message, HasSubstr(folder));
    EXPECT_TRUE(opening.registry->Write(kUser, "A", "v", TextValue("1")));
  }
  ExpectWorks();
}

TEST_F(OpenStoreTest, ALockedStoreIsAnErrorUntilItIsFree) {
  WriteOne("1");
  {
    const SqliteDatabase other = RunSql("BEGIN EXCLUSIVE");
    const StoreOpening opening = Open();
    EXPECT_EQ(opening.registry, nullptr);
    EXPECT_THAT(opening.message, HasSubstr("in use by another program"));
  }
  ExpectWorks();
}

struct DamagedStoreTest : OpenStoreTest {
  std::string GoodWith(std::size_t at, std::size_t size, const std::string& bytes) const {
    return std::string(good_.Bytes()).replace(at, size, bytes);
  }
  void ExpectSalvaged(const std::string& bad, const StoreOpening& opening) const {
    EXPECT_THAT(opening.message, HasSubstr("damaged"));
    ASSERT_NE(opening.registry, nullptr);
    EXPECT_THAT(good_.Compare({good_.Bytes(), bad}, true, *opening.registry).problems, IsEmpty());
  }

  const GoodStore good_{profile_};
};

TEST_F(DamagedStoreTest, IsSetAsideUntouchedAndANewOneWorks) {
  const std::string& good = good_.Bytes();
  int number = 0;
  for (const std::string& bad :
       {std::string("xyz"), std::string(8192, '\0'), good.substr(0, good.size() - 2048),
        GoodWith(16, 2, "\x20"), GoodWith(good.find("CREATE TABLE"), 6, "CREALE")}) {
    const std::string aside = File(".damaged-" + std::to_string(++number));
    SCOPED_TRACE(aside);
    WriteFile(File(), bad);
    EXPECT_THAT(Open().message,
                AllOf(HasSubstr("\"" + File() + "\""), HasSubstr("\"" + aside + "\"")));
    EXPECT_EQ(FileBytes(aside), bad);
    ExpectWorks();
  }
}

TEST_F(DamagedStoreTest, ADamagedByteCostsOnlyWhatStandsThere) {
  const std::string name = modRegistry::AppKeyPath("", "KillAWatts\\" + GoodStore::MeterName(7));
  const std::size_t key = good_.Bytes().find(FoldCase(name) + name);
  ASSERT_NE(key, std::string::npos);
  // The magic, the application's number, and the names of a key: as it is, and folded.
  for (const std::size_t at : {std::size_t{0}, std::size_t{68}, key, key + name.size() + 3}) {
    const std::string bad = GoodWith(at, 1, "#");
    WriteFile(File(), bad);
    ExpectSalvaged(bad, Open());
  }
}

TEST_F(DamagedStoreTest, ReadsOneThatCannotBeMovedIntoMemory) {
  const std::string bad = GoodWith(good_.Bytes().size() - 4096, 4096, std::string(4096, '\xA5'));
  WriteFile(File(), bad);
  SetModes(0555, 0444);
  {
    const WithoutRoot user;
    const StoreOpening opening = Open();
    EXPECT_FALSE(opening.savesChanges);
    ExpectSalvaged(bad, opening);
  }
  EXPECT_EQ(FileBytes(File()), bad);
}

}  // namespace
}  // namespace wattlark
