#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

/// The profile's folder is named so that a careless file address would end inside the name.
class OpenStoreTest : public testing::Test {
 protected:
  static constexpr Hive kUser = Hive::CurrentUser;

  static RegistryValue Text(const std::string& text) {
    return {RegistryType::String, {text.begin(), text.end()}};
  }

  static bool Mentions(const StoreOpening& opening, const std::string& text) {
    return opening.message.find(text) != std::string::npos;
  }

  static int ModeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
  }

  ~OpenStoreTest() override {
    std::error_code ignored;
    std::filesystem::permissions(profile_, std::filesystem::perms(0755), ignored);
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
    std::filesystem::remove(File());
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

}  // namespace wattlark
