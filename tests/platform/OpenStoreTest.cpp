#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/FileSizeLimit.h"
#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

namespace {

namespace fs = std::filesystem;
constexpr Hive kUser = Hive::CurrentUser;

RegistryValue Text(const std::string& text) {
  return {RegistryType::String, {text.begin(), text.end()}};
}

bool Mentions(const StoreOpening& opening, const std::string& text) {
  return opening.message.find(text) != std::string::npos;
}

int ModeOf(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
}

/// The profile's folder is named so that a careless file address would end inside the name.
class OpenStoreTest : public testing::Test {
 protected:
  ~OpenStoreTest() override {
    std::error_code ignored;
    fs::permissions(profile_, fs::perms(0755), ignored);
  }

  std::string File(const std::string& suffix = "") const {
    return profile_ + "/wattlark.db" + suffix;
  }
  StoreOpening Open() const { return OpenStore(profile_, 0); }
  void RunSql(const char* sql) const {
    SqliteDatabase database;
    ASSERT_EQ(database.Open(File(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, 0), SQLITE_OK);
    ASSERT_EQ(database.Execute(sql), SQLITE_OK) << database.Problem();
  }
  void WriteOne(const std::string& text) const {
    StoreOpening opening = Open();
    ASSERT_EQ(opening.message, "");
    ASSERT_TRUE(opening.registry->Write(kUser, "A\\B", "v", Text(text)));
  }
  void ExpectWorks() const {
    WriteOne("works");
    const StoreOpening opening = Open();
    EXPECT_EQ(opening.message, "");
    EXPECT_TRUE(opening.savesChanges);
    EXPECT_EQ(opening.registry->Read(kUser, "A\\B", "v"), Text("works"));
  }
  /// 60 keys of 10 values of 300 bytes, each of which says where it belongs.
  static constexpr int kManyKeys = 60;
  static constexpr int kManyValues = 10;
  static std::string ManyText(int key, int value) {
    const std::string text = std::to_string(key) + "/" + std::to_string(value) + " ";
    return text + std::string(300 - text.size(), static_cast<char>('a' + value));
  }
  static std::string ManyPath(int key) { return "Software\\Meters\\M" + std::to_string(key); }
  std::string ManyBytes() const {
    {
      StoreOpening opening = Open();
      opening.registry->Begin();
      for (int key = 0; key < kManyKeys; ++key) {
        for (int value = 0; value < kManyValues; ++value) {
          opening.registry->Write(kUser, ManyPath(key), std::to_string(value),
                                  Text(ManyText(key, value)));
        }
      }
      EXPECT_TRUE(opening.registry->Commit());
    }
    std::string bytes = FileBytes(File());
    fs::remove(File());
    return bytes;
  }
  /// How many of the values above the store has; none may be wrong.
  static int CountMany(Registry& registry) {
    int count = 0;
    for (int key = 0; key < kManyKeys; ++key) {
      for (int value = 0; value < kManyValues; ++value) {
        const auto stored = registry.Read(kUser, ManyPath(key), std::to_string(value));
        if (!stored) continue;
        EXPECT_EQ(stored, Text(ManyText(key, value)));
        ++count;
      }
    }
    return count;
  }

  TemporaryFolder folder_;
  std::string profile_ = folder_.File("pro?file#1%20");
};

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

struct BadFile {
  const char* what;
  std::function<std::string(const std::string& good)> make;
};

class BadStore : public OpenStoreTest, public testing::WithParamInterface<BadFile> {};

TEST_P(BadStore, IsSetAsideUntouchedAndANewOneWorks) {
  const std::string bad = GetParam().make(ManyBytes());
  for (const char* aside : {".damaged-1", ".damaged-2"}) {
    WriteFile(File(), bad);
    {
      const StoreOpening opening = Open();
      ASSERT_NE(opening.registry, nullptr);
      EXPECT_TRUE(opening.savesChanges);
      EXPECT_TRUE(Mentions(opening, "\"" + File() + "\"")) << opening.message;
      EXPECT_TRUE(Mentions(opening, "\"" + File(aside) + "\"")) << opening.message;
      CountMany(*opening.registry);
    }
    EXPECT_EQ(FileBytes(File(aside)), bad);
    EXPECT_EQ(ModeOf(File()), 0600);
    ExpectWorks();
  }
}

INSTANTIATE_TEST_SUITE_P(
    , BadStore,
    testing::Values(
        BadFile{"FewBytes", [](const std::string&) { return std::string("xyz"); }},
        BadFile{"Text", [](const std::string&) { return std::string(5000, 'x'); }},
        BadFile{"Zeros", [](const std::string&) { return std::string(8192, '\0'); }},
        BadFile{"HeaderOnly", [](const std::string& good) { return good.substr(0, 100); }},
        BadFile{"HalfAPageShort",
                [](const std::string& good) { return good.substr(0, good.size() - 2048); }},
        BadFile{"WrongMagic", [](const std::string& good) { return "X" + good.substr(1); }},
        BadFile{
            "WrongSchema",
            [](std::string good) { return good.replace(good.find("CREATE TABLE"), 6, "CREALE"); }},
        BadFile{"WrongPageSize", [](std::string good) { return good.replace(16, 2, "\x20"); }}),
    [](const auto& test) { return test.param.what; });

TEST_F(OpenStoreTest, EveryTruncationKeepsWhatCanBeRead) {
  const std::string good = ManyBytes();
  for (std::size_t size = 1500; size < good.size(); size += 4096 + 1024) {
    WriteFile(File(), good.substr(0, size));
    const StoreOpening opening = Open();
    ASSERT_TRUE(opening.savesChanges) << size << opening.message;
    const int count = CountMany(*opening.registry);
    // Ten pages from the end hold some 120 values at most; the tables' roots lie at the start.
    if (size + std::size_t{10} * 4096 > good.size()) {
      EXPECT_GE(count, 450) << size;
    }
    fs::remove(File());
  }
}

TEST_F(OpenStoreTest, ADamagedPageCostsOnlyItsOwnValues) {
  const std::string good = ManyBytes();
  const std::size_t pages = good.size() / 4096;
  for (std::size_t page = 0; page < pages; ++page) {
    std::string bad = good;
    bad.replace(page * 4096, 4096, std::string(4096, '\xA5'));
    WriteFile(File(), bad);
    const StoreOpening opening = Open();
    ASSERT_TRUE(opening.savesChanges) << page << opening.message;
    EXPECT_TRUE(Mentions(opening, "damaged")) << page;
    // A page has room for no more than 13 values of 300 bytes.
    EXPECT_GE(CountMany(*opening.registry), kManyKeys * kManyValues - 13) << page;
    fs::remove(File());
  }
}

struct Flip {
  const char* what;
  std::string before;  ///< the byte after its first place becomes `byte`
  char byte = 0;
};

class FlippedStore : public OpenStoreTest, public testing::WithParamInterface<Flip> {};

TEST_P(FlippedStore, LosesNothingThatStandsElsewhere) {
  std::string bad = ManyBytes();
  const std::size_t at = bad.find(GetParam().before);
  ASSERT_NE(at, std::string::npos);
  bad[at + GetParam().before.size()] = GetParam().byte;
  WriteFile(File(), bad);
  const StoreOpening opening = Open();
  EXPECT_TRUE(Mentions(opening, "damaged")) << opening.message;
  EXPECT_EQ(CountMany(*opening.registry), kManyKeys * kManyValues);
  EXPECT_EQ(opening.registry->SubKeys(kUser, "Software\\Meters").size(), std::size_t{kManyKeys});
}

INSTANTIATE_TEST_SUITE_P(
    , FlippedStore,
    testing::Values(Flip{"Magic", "", 'X'},
                    Flip{"ApplicationId", std::string("\0\0\0\1\0\0\0\2\0\0\0\0", 12), 'X'},
                    Flip{"NameOfAKey", "software\\meters\\m7Software\\Meters\\", 'X'},
                    Flip{"FoldedNameOfAKey", "software\\meters\\", 'x'}),
    [](const auto& test) { return test.param.what; });

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

TEST_F(OpenStoreTest, ADamagedStoreThatCannotBeMovedIsReadIntoMemory) {
  std::string bad = ManyBytes();
  bad.replace(bad.size() - 4096, 4096, std::string(4096, '\xA5'));
  WriteFile(File(), bad);
  fs::permissions(File(), fs::perms(0444));
  fs::permissions(profile_, fs::perms(0555));
  {
    const WithoutRoot user;
    const StoreOpening opening = Open();
    ASSERT_NE(opening.registry, nullptr);
    EXPECT_FALSE(opening.savesChanges);
    EXPECT_TRUE(Mentions(opening, "damaged")) << opening.message;
    EXPECT_GE(CountMany(*opening.registry), kManyKeys * kManyValues - 13);
  }
  EXPECT_EQ(FileBytes(File()), bad);
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
