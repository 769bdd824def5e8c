#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStoreCopy.h"
#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

namespace {

namespace fs = std::filesystem;
constexpr Hive kUser = Hive::CurrentUser;

RegistryValue Text(const std::string& text) {
  return {RegistryType::String, {text.begin(), text.end()}};
}

class OpenStoreCopyTest : public testing::Test {
 protected:
  std::string File(const std::string& suffix = "") const {
    return profile_ + "/wattlark.db" + suffix;
  }
  StoreOpening Copy() const { return OpenStoreCopy(profile_, 0); }
  /// The names and bytes of everything in the profile's folder.
  std::map<std::string, std::string> Everything() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(profile_)) {
      files[entry.path().filename()] = entry.is_regular_file() ? FileBytes(entry.path()) : "";
    }
    return files;
  }
  void WriteStore() const {
    StoreOpening opening = OpenStore(profile_, 0);
    ASSERT_TRUE(opening.registry->Write(kUser, "A\\B", "v", Text("stored")));
  }
  void RunSql(const char* sql) const {
    SqliteDatabase database;
    ASSERT_EQ(database.Open(File(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, 0), SQLITE_OK);
    ASSERT_EQ(database.Execute(sql), SQLITE_OK) << database.Problem();
  }
  void ExpectRefused(const std::string& reason) const {
    const auto before = Everything();
    const StoreOpening copy = Copy();
    EXPECT_EQ(copy.registry, nullptr);
    EXPECT_NE(copy.message.find(reason), std::string::npos) << copy.message;
    EXPECT_EQ(Everything(), before);
  }

  TemporaryFolder folder_;
  std::string profile_ = folder_.File("profile");
};

TEST_F(OpenStoreCopyTest, MissingStoreIsEmptyAndNotCreated) {
  const StoreOpening copy = Copy();
  EXPECT_EQ(copy.message, "");
  ASSERT_NE(copy.registry, nullptr);
  EXPECT_TRUE(copy.registry->SubKeys(kUser, "").empty());
  EXPECT_TRUE(copy.registry->Write(kUser, "A", "v", Text("x")));
  EXPECT_FALSE(fs::exists(profile_));
}

TEST_F(OpenStoreCopyTest, EmptyFileIsAnEmptyStore) {
  fs::create_directory(profile_);
  WriteFile(File(), "");
  const StoreOpening copy = Copy();
  EXPECT_EQ(copy.message, "");
  ASSERT_NE(copy.registry, nullptr);
  EXPECT_TRUE(copy.registry->SubKeys(kUser, "").empty());
  EXPECT_EQ(FileBytes(File()), "");
}

TEST_F(OpenStoreCopyTest, ChangesStayInTheCopy) {
  WriteStore();
  const auto before = Everything();
  const StoreOpening copy = Copy();
  EXPECT_EQ(copy.message, "");
  ASSERT_NE(copy.registry, nullptr);
  EXPECT_FALSE(copy.savesChanges);
  EXPECT_EQ(copy.registry->Read(kUser, "a\\b", "V"), Text("stored"));
  ASSERT_TRUE(copy.registry->Begin());
  EXPECT_TRUE(copy.registry->Write(kUser, "A\\B", "v", Text("changed")));
  EXPECT_TRUE(copy.registry->Commit());
  EXPECT_EQ(copy.registry->Read(kUser, "A\\B", "v"), Text("changed"));
  EXPECT_EQ(Everything(), before);
  EXPECT_EQ(Copy().registry->Read(kUser, "A\\B", "v"), Text("stored"));
}

TEST_F(OpenStoreCopyTest, ReadsBesideAnOpenTransaction) {
  WriteStore();
  StoreOpening running = OpenStore(profile_, 0);
  ASSERT_TRUE(running.registry->Begin());
  ASSERT_TRUE(running.registry->Write(kUser, "A\\B", "v", Text("half made")));
  const StoreOpening copy = Copy();
  ASSERT_NE(copy.registry, nullptr) << copy.message;
  EXPECT_EQ(copy.registry->Read(kUser, "A\\B", "v"), Text("stored"));
  EXPECT_TRUE(running.registry->Commit());
}

TEST_F(OpenStoreCopyTest, HalfMadeChangeIsUndoneInTheCopyAlone) {
  WriteStore();
  const std::string crashed = folder_.File("crashed");
  {
    SqliteDatabase writer;
    ASSERT_EQ(writer.Open(File(), SQLITE_OPEN_READWRITE, 0), SQLITE_OK);
    // Pages that do not fit into a cache this small reach the file before the commit.
    ASSERT_EQ(writer.Execute("PRAGMA cache_size = 1; BEGIN; UPDATE value SET data = 'broken';"
                             "INSERT INTO value(key, folded, name, type, data)"
                             " WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n"
                             " WHERE i < 500) SELECT 1, i, i, 1, zeroblob(500) FROM n;"),
              SQLITE_OK)
        << writer.Problem();
    fs::copy(profile_, crashed);
  }
  profile_ = crashed;
  ASSERT_TRUE(fs::exists(File("-journal")));
  ASSERT_NE(FileBytes(File()).find("broken"), std::string::npos);
  const auto before = Everything();
  const StoreOpening copy = Copy();
  EXPECT_EQ(copy.message, "");
  ASSERT_NE(copy.registry, nullptr);
  EXPECT_EQ(copy.registry->Read(kUser, "A\\B", "v"), Text("stored"));
  EXPECT_EQ(Everything(), before);
}

TEST_F(OpenStoreCopyTest, DamagedStoreGivesWhatCanBeRead) {
  WriteStore();
  std::string bytes = FileBytes(File());
  bytes.replace(28, 4, std::string("\0\0\0\x63", 4));  // pages, by the header
  WriteFile(File(), bytes);
  const auto before = Everything();
  const StoreOpening copy = Copy();
  EXPECT_NE(copy.message.find("is damaged. 1 values that could still be read"), std::string::npos)
      << copy.message;
  ASSERT_NE(copy.registry, nullptr);
  EXPECT_EQ(copy.registry->Read(kUser, "A\\B", "v"), Text("stored"));
  EXPECT_EQ(Everything(), before);
}

TEST_F(OpenStoreCopyTest, FileThatIsNoDatabaseGivesAnEmptyCopyAndAMessage) {
  fs::create_directory(profile_);
  WriteFile(File(), std::string(5000, 'x'));
  const StoreOpening copy = Copy();
  EXPECT_NE(copy.message.find("is damaged. No value could be read"), std::string::npos)
      << copy.message;
  EXPECT_NE(copy.registry, nullptr);
  EXPECT_EQ(FileBytes(File()), std::string(5000, 'x'));
}

TEST_F(OpenStoreCopyTest, RefusesWhatIsNotItsStore) {
  WriteStore();
  RunSql("PRAGMA user_version = 1000");
  ExpectRefused("newer version");
  fs::remove(File());
  RunSql("CREATE TABLE other(x)");
  ExpectRefused("another program");
  fs::remove(File());
  fs::create_directory(File());
  ExpectRefused("is not a file");
}

TEST_F(OpenStoreCopyTest, RefusesWhatItMayNotReadAndWhatStaysLocked) {
  WriteStore();
  {
    SqliteDatabase other;
    ASSERT_EQ(other.Open(File(), SQLITE_OPEN_READWRITE, 0), SQLITE_OK);
    ASSERT_EQ(other.Execute("BEGIN EXCLUSIVE"), SQLITE_OK);
    ExpectRefused("in use");
  }
  fs::permissions(File(), fs::perms::none);
  const WithoutRoot asUser;
  const StoreOpening copy = Copy();
  EXPECT_EQ(copy.registry, nullptr);
  EXPECT_NE(copy.message.find("cannot be read"), std::string::npos) << copy.message;
}

}  // namespace

}  // namespace wattlark
