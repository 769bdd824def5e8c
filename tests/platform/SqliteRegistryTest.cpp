#include "platform/OpenStoreFixture.h"

namespace wattlark {
namespace {

/// A store that two processes have open.
struct SqliteRegistryTest : OpenedStoreTest {
  bool WriteText(const std::string& path, const std::string& name, const std::string& text) {
    return store_->Write(kUser, path, name, TextValue(text));
  }
  std::string ReadText(const std::string& path, const std::string& name) {
    const auto value = store_->Read(kUser, path, name);
    return value ? std::string(value->data.begin(), value->data.end()) : "(missing)";
  }

  std::unique_ptr<Registry> other_ = Open().registry;
};

TEST_F(SqliteRegistryTest, WhatFailsChangesNothingAndInATransactionAllOfItFails) {
  ASSERT_TRUE(WriteText("A", "v", "before"));
  {
    const FileSizeLimit limit;
    EXPECT_FALSE(WriteText("A", "v", "after"));
    EXPECT_FALSE(store_->DeleteValue(kUser, "A", "v"));
    EXPECT_FALSE(store_->DeleteKey(kUser, "A"));
    EXPECT_EQ(ReadText("A", "v"), "before");
  }
  for (const bool isProgress : {false, true}) {
    ASSERT_TRUE(store_->Begin());
    if (isProgress) store_->MarkProgress();
    ASSERT_TRUE(WriteText("A", "v", "after"));
    const FileSizeLimit limit;
    EXPECT_FALSE(store_->Commit());
    EXPECT_EQ(ReadText("A", "v"), "before");
  }
  ASSERT_TRUE(store_->Begin());
  ASSERT_TRUE(WriteText("A", "v", "after"));
  {
    const FileSizeLimit limit;
    WriteText("A", "big", std::string(3'000'000, 'x'));
    EXPECT_FALSE(WriteText("A", "big2", std::string(40'000'000, 'x')));
  }
  EXPECT_FALSE(WriteText("A", "w", "after"));
  EXPECT_FALSE(store_->Commit());
  EXPECT_NE(store_->ErrorText(), "");
  EXPECT_EQ(ReadText("A", "v"), "before");
  ASSERT_TRUE(store_->Begin());
  EXPECT_TRUE(WriteText("A", "v", "later"));
  EXPECT_TRUE(store_->Commit());
  Reopen();
  EXPECT_EQ(store_->Values(kUser, "A").size(), 1U);
  EXPECT_EQ(ReadText("A", "v"), "later");
}

TEST_F(SqliteRegistryTest, AWriteAgainstAnOpenTransactionFailsWithText) {
  ASSERT_TRUE(store_->Begin());
  ASSERT_TRUE(WriteText("A", "v", "1"));
  EXPECT_FALSE(other_->Write(kUser, "A", "w", TextValue("t")));
  EXPECT_THAT(other_->ErrorText(), testing::HasSubstr("another program is using it"));
  EXPECT_FALSE(other_->Begin());
  EXPECT_TRUE(store_->Commit());
  EXPECT_TRUE(other_->Write(kUser, "A", "w", TextValue("t")));
}

}  // namespace
}  // namespace wattlark
