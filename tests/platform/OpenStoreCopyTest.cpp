#include <filesystem>
#include <map>
#include <string>

#include "platform/OpenStoreFixture.h"
#include "platform/sqlite/OpenStoreCopy.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

struct OpenStoreCopyTest : OpenStoreTest {
  StoreOpening Copy() const { return OpenStoreCopy(profile_, 0); }
  /// The names and bytes of everything in the profile's folder.
  std::map<std::string, std::string> Everything() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(profile_)) {
      files[entry.path().filename()] = entry.is_regular_file() ? FileBytes(entry.path()) : "";
    }
    return files;
  }
  /// Looks at a copy, and expects that the profile stays as it is.
  void ExpectCopy(const char* message, const std::optional<RegistryValue>& value) const {
    const auto before = Everything();
    const StoreOpening copy = Copy();
    EXPECT_THAT(copy.message, HasSubstr(message));
    EXPECT_EQ(copy.message.empty(), *message == 0);
    ASSERT_NE(copy.registry, nullptr);
    EXPECT_EQ(copy.registry->Read(kUser, "A\\B", "v"), value);
    EXPECT_EQ(Everything(), before);
  }
  void ExpectRefused(const std::string& reason) const {
    const auto before = Everything();
    const StoreOpening copy = Copy();
    EXPECT_EQ(copy.registry, nullptr);
    EXPECT_THAT(copy.message, HasSubstr(reason));
    EXPECT_EQ(Everything(), before);
  }
};

TEST_F(OpenStoreCopyTest, ChangesStayInTheCopy) {
  WriteOne("stored");
  const auto before = Everything();
  const StoreOpening copy = Copy();
  EXPECT_EQ(copy.message, "");
  ASSERT_NE(copy.registry, nullptr);
  EXPECT_FALSE(copy.savesChanges);
  EXPECT_EQ(copy.registry->Read(kUser, "a\\b", "V"), TextValue("stored"));
  ASSERT_TRUE(copy.registry->Begin());
  EXPECT_TRUE(copy.registry->Write(kUser, "A\\B", "v", TextValue("changed")));
  EXPECT_TRUE(copy.registry->Commit());
  EXPECT_EQ(copy.registry->Read(kUser, "A\\B", "v"), TextValue("changed"));
  EXPECT_EQ(Everything(), before);
  EXPECT_EQ(Copy().registry->Read(kUser, "A\\B", "v"), TextValue("stored"));
}

TEST_F(OpenStoreCopyTest, ReadsBesideAnOpenTransaction) {
  WriteOne("stored");
  StoreOpening running = OpenStore(profile_, 0);
  ASSERT_TRUE(running.registry->Begin());
  ASSERT_TRUE(running.registry->Write(kUser, "A\\B", "v", TextValue("half made")));
  const StoreOpening copy = Copy();
  ASSERT_NE(copy.registry, nullptr) << copy.message;
  EXPECT_EQ(copy.registry->Read(kUser, "A\\B", "v"), TextValue("stored"));
  EXPECT_TRUE(running.registry->Commit());
}

TEST_F(OpenStoreCopyTest, HalfMadeChangeIsUndoneInTheCopyAlone) {
  WriteOne("stored");
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
  ExpectCopy("", TextValue("stored"));
}

TEST_F(OpenStoreCopyTest, GivesWhatCanBeRead) {
  WriteOne("stored");
  std::string bytes = FileBytes(File());
  bytes.replace(28, 4, std::string("\0\0\0\x63", 4));  // pages, by the header
  WriteFile(File(), bytes);
  ExpectCopy("is damaged. 1 values that could still be read", TextValue("stored"));
  WriteFile(File(), std::string(5000, 'x'));
  ExpectCopy("is damaged. No value could be read", std::nullopt);
  WriteFile(File(), "");
  ExpectCopy("", std::nullopt);
}

TEST_F(OpenStoreCopyTest, RefusesWhatIsNotItsStore) {
  WriteOne("stored");
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
  WriteOne("stored");
  {
    SqliteDatabase other;
    ASSERT_EQ(other.Open(File(), SQLITE_OPEN_READWRITE, 0), SQLITE_OK);
    ASSERT_EQ(other.Execute("BEGIN EXCLUSIVE"), SQLITE_OK);
    ExpectRefused("in use");
  }
  SetModes(0777, 0);
  const WithoutRoot asUser;
  EXPECT_THAT(Copy().message, HasSubstr("cannot be read"));
  EXPECT_EQ(Copy().registry, nullptr);
}

}  // namespace
}  // namespace wattlark
