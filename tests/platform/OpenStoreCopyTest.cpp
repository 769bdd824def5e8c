#include "platform/OpenStoreFixture.h"
#include "platform/sqlite/OpenStoreCopy.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;

struct OpenStoreCopyTest : OpenStoreTest {
  StoreOpening Copy() const { return OpenStoreCopy(profile_, 0); }
  /// Looks at a copy, and expects that the profile stays as it is.
  StoreOpening Look(const std::string& message) const {
    const auto before = FilesIn(profile_);
    StoreOpening copy = Copy();
    EXPECT_THAT(copy.message, HasSubstr(message));
    EXPECT_EQ(copy.message.empty(), message.empty());
    EXPECT_EQ(FilesIn(profile_), before);
    return copy;
  }
  void ExpectCopy(const std::string& message, const std::optional<RegistryValue>& value) const {
    const StoreOpening copy = Look(message);
    ASSERT_NE(copy.registry, nullptr);
    EXPECT_EQ(copy.registry->Read(kUser, "A\\B", "v"), value);
  }
  void ExpectRefused(const std::string& reason) const { EXPECT_EQ(Look(reason).registry, nullptr); }
};

TEST_F(OpenStoreCopyTest, IsReadBesideAnOpenTransactionAndChangesStayInIt) {
  WriteOne("stored");
  StoreOpening running = Open();
  ASSERT_TRUE(running.registry->Begin());
  ASSERT_TRUE(running.registry->Write(kUser, "A\\B", "v", TextValue("half made")));
  const auto before = FilesIn(profile_);
  const StoreOpening copy = Copy();
  ASSERT_NE(copy.registry, nullptr);
  EXPECT_EQ(copy.message, "");
  EXPECT_FALSE(copy.savesChanges);
  EXPECT_EQ(copy.registry->Read(kUser, "a\\b", "V"), TextValue("stored"));
  ASSERT_TRUE(copy.registry->Begin());
  EXPECT_TRUE(copy.registry->Write(kUser, "A\\B", "v", TextValue("changed")));
  EXPECT_TRUE(copy.registry->Commit());
  EXPECT_EQ(copy.registry->Read(kUser, "A\\B", "v"), TextValue("changed"));
  EXPECT_EQ(FilesIn(profile_), before);
  EXPECT_TRUE(running.registry->Commit());
}

TEST_F(OpenStoreCopyTest, HalfMadeChangeIsUndoneInTheCopyAlone) {
  WriteOne("stored");
  const std::string crashed = folder_.File("crashed");
  {
    // Pages that do not fit into a cache this small reach the file before the commit.
    const SqliteDatabase writer = RunSql(
        "PRAGMA cache_size = 1; BEGIN; UPDATE value SET data = 'broken';"
        "INSERT INTO value(key, folded, name, type, data)"
        " WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n"
        " WHERE i < 500) SELECT 1, i, i, 1, zeroblob(500) FROM n;");
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
  WriteFile(File(), "");
  ExpectCopy("", std::nullopt);
}

TEST_F(OpenStoreCopyTest, RefusesWhatIsNotItsStoreStaysLockedOrMayNotBeRead) {
  WriteOne("stored");
  {
    const SqliteDatabase other = RunSql("BEGIN EXCLUSIVE");
    ExpectRefused("in use");
  }
  RunSql("PRAGMA user_version = 1000");
  ExpectRefused("newer version");
  fs::remove(File());
  RunSql("CREATE TABLE other(x)");
  ExpectRefused("another program");
  SetModes(0777, 0);
  const WithoutRoot asUser;
  EXPECT_THAT(Copy().message, HasSubstr("cannot be read"));
  EXPECT_EQ(Copy().registry, nullptr);
}

}  // namespace
}  // namespace wattlark
