#pragma once

#include <gmock/gmock.h>

#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/sqlite/SqliteDatabase.h"
#include "support/RegistryValues.h"

namespace wattlark {

/// The profile's folder is named so that a careless file address would end inside the name.
struct OpenStoreTest : testing::Test {
  static constexpr Hive kUser = Hive::CurrentUser;

  ~OpenStoreTest() override { SetModes(0755, 0600); }
  void SetModes(int folder, int file) const {
    std::error_code ignored;
    std::filesystem::permissions(File(), std::filesystem::perms(file), ignored);
    std::filesystem::permissions(profile_, std::filesystem::perms(folder), ignored);
  }
  std::string File(const std::string& suffix = "") const {
    return profile_ + "/wattlark.db" + suffix;
  }
  StoreOpening Open() const { return OpenStore(profile_, 0); }
  /// The file, open to a program that has done this with it.
  SqliteDatabase RunSql(const char* sql) const {
    std::filesystem::create_directory(profile_);
    SqliteDatabase database;
    EXPECT_EQ(database.Open(File(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, 0), SQLITE_OK);
    EXPECT_EQ(database.Execute(sql), SQLITE_OK) << database.Problem();
    return database;
  }
  void WriteOne(const std::string& text) const {
    StoreOpening opening = Open();
    ASSERT_EQ(opening.message, "");
    ASSERT_TRUE(opening.registry->Write(kUser, "A\\B", "v", TextValue(text)));
  }
  void ExpectWorks() const {
    WriteOne("works");
    const StoreOpening opening = Open();
    EXPECT_EQ(opening.message, "");
    EXPECT_TRUE(opening.savesChanges);
    EXPECT_EQ(opening.registry->Read(kUser, "A\\B", "v"), TextValue("works"));
  }

  TemporaryFolder folder_;
  std::string profile_ = folder_.File("pro?file#1%20");
};

/// A store that is open, and that another start may open again.
struct OpenedStoreTest : OpenStoreTest {
  void Reopen() {
    store_.reset();
    StoreOpening opening = Open();
    EXPECT_EQ(opening.message, "");
    store_ = std::move(opening.registry);
  }

  std::unique_ptr<Registry> store_ = Open().registry;
};

}  // namespace wattlark
