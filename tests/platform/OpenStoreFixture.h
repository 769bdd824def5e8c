#pragma once

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/sqlite/SqliteDatabase.h"
#include "support/RegistryValues.h"

namespace wattlark {

/// The profile's folder is named so that a careless file address would end inside the name.
struct OpenStoreTest : testing::Test {
  static constexpr Hive kUser = Hive::CurrentUser;

  static int ModeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
  }

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
  void RunSql(const char* sql) const {
    std::filesystem::create_directory(profile_);
    SqliteDatabase database;
    ASSERT_EQ(database.Open(File(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, 0), SQLITE_OK);
    ASSERT_EQ(database.Execute(sql), SQLITE_OK) << database.Problem();
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

}  // namespace wattlark
