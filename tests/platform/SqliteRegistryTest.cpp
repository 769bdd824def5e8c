#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/FileSizeLimit.h"
#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "support/RegistryValues.h"

namespace wattlark {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A store that two processes have open.
class SqliteRegistryTest : public testing::Test {
 protected:
  static constexpr Hive kUser = Hive::CurrentUser;

  std::unique_ptr<Registry> Open() const {
    StoreOpening opening = OpenStore(folder_.Path(), 0);
    EXPECT_EQ(opening.message, "");
    return std::move(opening.registry);
  }
  void Reopen() {
    store_.reset();
    store_ = Open();
  }
  bool WriteText(const std::string& path, const std::string& name, const std::string& text) {
    return store_->Write(kUser, path, name, TextValue(text));
  }
  std::string ReadText(const std::string& path, const std::string& name) {
    const auto value = store_->Read(kUser, path, name);
    return value ? std::string(value->data.begin(), value->data.end()) : "(missing)";
  }
  std::vector<std::string> ValueNames(const std::string& path) {
    std::vector<std::string> names;
    for (const auto& value : store_->Values(kUser, path)) names.push_back(value.name);
    return names;
  }

  TemporaryFolder folder_;
  std::unique_ptr<Registry> store_ = Open();
  std::unique_ptr<Registry> other_ = Open();
};

TEST_F(SqliteRegistryTest, KeepsTypesAndBytesExactly) {
  std::vector<std::uint8_t> everyByte;
  for (int byte = 0; byte < 256; ++byte) everyByte.push_back(static_cast<std::uint8_t>(byte));
  const std::vector<NamedRegistryValue> values = {
      {"text", {RegistryType::String, {'a', 0, 'b', 0}}},
      {"expand", {RegistryType::ExpandString, {'%', 'X', '%'}}},
      {"bytes", {RegistryType::Binary, everyByte}},
      {"none", {RegistryType::Binary, {}}},
      {"number", {RegistryType::DWord, {1, 2, 3, 4}}},
      {"big", {RegistryType::DWordBigEndian, {4, 3, 2, 1}}},
      {"list", {RegistryType::MultiString, {'a', 0, 'b', 0, 0}}},
      {"", {RegistryType::String, {'u'}}},
      {"not\xFFutf8", {RegistryType::String, {0xC3}}},
      {"long", {RegistryType::String, std::vector<std::uint8_t>(100'000, 'x')}},
  };
  for (const auto& [name, value] : values) EXPECT_TRUE(store_->Write(kUser, "K", name, value));
  Reopen();
  const auto stored = store_->Values(kUser, "K");
  ASSERT_EQ(stored.size(), values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(store_->Read(kUser, "K", values[i].name), values[i].value) << values[i].name;
    EXPECT_EQ(stored[i].name, values[i].name);
    EXPECT_EQ(stored[i].value, values[i].value) << values[i].name;
  }
}

TEST_F(SqliteRegistryTest, MissingKeysAndValuesAnswerSo) {
  ASSERT_TRUE(WriteText("A\\B", "v", "1"));
  EXPECT_FALSE(store_->KeyExists(kUser, "A\\C"));
  EXPECT_FALSE(store_->KeyExists(kUser, "B"));
  EXPECT_FALSE(store_->KeyExists(Hive::LocalMachine, "A\\B"));
  for (const auto& [path, name] : {std::pair("A\\B", "w"), std::pair("A\\C", "v")}) {
    EXPECT_EQ(store_->Read(kUser, path, name), std::nullopt);
    EXPECT_FALSE(store_->DeleteValue(kUser, path, name));
  }
  EXPECT_FALSE(store_->DeleteKey(kUser, "A\\C"));
  for (const char* path : {"A\\B", "C"}) EXPECT_THAT(store_->SubKeys(kUser, path), IsEmpty());
  EXPECT_THAT(store_->Values(kUser, "C"), IsEmpty());
  EXPECT_EQ(store_->ErrorText(), "");
}

TEST_F(SqliteRegistryTest, ComparesNamesWithoutCaseAndKeepsTheFirstSpelling) {
  ASSERT_TRUE(WriteText("Software\\Küche", "Straße", "1"));
  ASSERT_TRUE(WriteText("SOFTWARE\\kÜCHE", "straßE", "2"));
  EXPECT_EQ(ReadText("software\\KÜche", "STRAßE"), "2");
  EXPECT_THAT(store_->SubKeys(kUser, "sOFTWARE"), ElementsAre("Küche"));
  EXPECT_THAT(ValueNames("Software\\Küche"), ElementsAre("Straße"));
}

TEST_F(SqliteRegistryTest, EnumeratesInOrderOfCreation) {
  for (const char* name : {"zebra", "apple", "Mango"}) {
    ASSERT_TRUE(store_->CreateKey(kUser, std::string("Top\\") + name));
    ASSERT_TRUE(WriteText("Top", name, "1"));
  }
  ASSERT_TRUE(WriteText("Top", "ZEBRA", "2"));
  Reopen();
  EXPECT_THAT(store_->SubKeys(kUser, "Top"), ElementsAre("zebra", "apple", "Mango"));
  EXPECT_THAT(ValueNames("Top"), ElementsAre("zebra", "apple", "Mango"));
  ASSERT_TRUE(store_->DeleteKey(kUser, "Top\\zebra"));
  ASSERT_TRUE(store_->DeleteValue(kUser, "Top", "zebra"));
  ASSERT_TRUE(store_->CreateKey(kUser, "Top\\zebra"));
  ASSERT_TRUE(WriteText("Top", "zebra", "3"));
  EXPECT_THAT(store_->SubKeys(kUser, "Top"), ElementsAre("apple", "Mango", "zebra"));
  EXPECT_THAT(ValueNames("Top"), ElementsAre("apple", "Mango", "zebra"));
}

TEST_F(SqliteRegistryTest, WritingCreatesTheWholePathWithoutItsEmptyParts) {
  ASSERT_TRUE(WriteText("\\A\\\\B\\C\\", "v", "1"));
  EXPECT_TRUE(store_->KeyExists(kUser, "a\\b"));
  EXPECT_THAT(store_->SubKeys(kUser, ""), ElementsAre("A"));
  EXPECT_THAT(store_->SubKeys(kUser, "A"), ElementsAre("B"));
  EXPECT_TRUE(store_->CreateKey(kUser, "A\\B\\C"));
  EXPECT_EQ(ReadText("A\\B\\C", "v"), "1");
  for (const char* nothing : {"", "\\", "\\\\"}) {
    EXPECT_FALSE(store_->CreateKey(kUser, nothing));
    EXPECT_FALSE(WriteText(nothing, "v", "1"));
    EXPECT_FALSE(store_->KeyExists(kUser, nothing));
  }
}

TEST_F(SqliteRegistryTest, DeletesOnlyKeysWithoutSubkeys) {
  ASSERT_TRUE(WriteText("A", "v", "1"));
  ASSERT_TRUE(WriteText("A\\B", "v", "2"));
  ASSERT_TRUE(WriteText("AB", "v", "3"));
  EXPECT_FALSE(store_->DeleteKey(kUser, "A"));
  EXPECT_EQ(ReadText("A", "v"), "1");
  EXPECT_TRUE(store_->DeleteKey(kUser, "A\\b"));
  EXPECT_TRUE(store_->DeleteKey(kUser, "a"));
  EXPECT_EQ(ReadText("AB", "v"), "3");
  ASSERT_TRUE(store_->CreateKey(kUser, "A"));
  EXPECT_EQ(ReadText("A", "v"), "(missing)") << "values go with their key";
}

TEST_F(SqliteRegistryTest, CommitKeepsAndRollbackForgets) {
  for (const bool isProgress : {false, true}) {
    ASSERT_TRUE(WriteText("A", "v", "1,2,3,4"));
    ASSERT_TRUE(store_->Begin());
    EXPECT_FALSE(store_->Begin());
    EXPECT_NE(store_->ErrorText(), "");
    if (isProgress) store_->MarkProgress();
    ASSERT_TRUE(WriteText("A", "V", "2,3,4,5"));
    ASSERT_TRUE(WriteText("A\\New", "v", "1"));
    EXPECT_EQ(ReadText("A", "v"), "2,3,4,5");
    store_->Rollback();
    EXPECT_EQ(ReadText("A", "v"), "1,2,3,4");
    EXPECT_FALSE(store_->KeyExists(kUser, "A\\New"));

    ASSERT_TRUE(store_->Begin());
    if (isProgress) store_->MarkProgress();
    ASSERT_TRUE(WriteText("A", "v", "3,4,5,6"));
    ASSERT_TRUE(WriteText("A\\New", "w", "2"));
    EXPECT_FALSE(store_->DeleteKey(kUser, "Missing"));
    ASSERT_TRUE(store_->Commit());
    EXPECT_FALSE(store_->Commit());
    Reopen();
    EXPECT_EQ(ReadText("A", "v"), "3,4,5,6");
    EXPECT_EQ(ReadText("A\\New", "w"), "2");
    ASSERT_TRUE(store_->DeleteKey(kUser, "A\\New"));
  }
}

TEST_F(SqliteRegistryTest, FailedWritesChangeNothingAndSayWhy) {
  ASSERT_TRUE(WriteText("A", "v", "before"));
  {
    const FileSizeLimit limit;
    EXPECT_FALSE(WriteText("A", "v", "after"));
    EXPECT_FALSE(WriteText("B", "v", "after"));
    EXPECT_FALSE(store_->DeleteValue(kUser, "A", "v"));
    EXPECT_FALSE(store_->DeleteKey(kUser, "A"));
  }
  EXPECT_NE(store_->ErrorText(), "");
  EXPECT_EQ(ReadText("A", "v"), "before");
  EXPECT_FALSE(store_->KeyExists(kUser, "B"));
  EXPECT_TRUE(WriteText("A", "v", "later"));
  Reopen();
  EXPECT_EQ(ReadText("A", "v"), "later");
}

TEST_F(SqliteRegistryTest, WhatFailsInATransactionFailsAllOfItAndTheNextOneWorks) {
  enum Failing { TheCommit, ItOfProgress, AWrite };
  for (const Failing failing : {TheCommit, ItOfProgress, AWrite}) {
    ASSERT_TRUE(WriteText("A", "v", "before"));
    ASSERT_TRUE(store_->Begin());
    if (failing == ItOfProgress) store_->MarkProgress();
    ASSERT_TRUE(WriteText("A", "v", "after"));
    {
      const FileSizeLimit limit;
      if (failing == AWrite) {
        WriteText("A", "big", std::string(3'000'000, 'x'));
        EXPECT_FALSE(WriteText("A", "big2", std::string(40'000'000, 'x')));
      } else {
        EXPECT_FALSE(store_->Commit());
      }
    }
    if (failing == AWrite) {
      EXPECT_FALSE(WriteText("A", "w", "after"));
      EXPECT_FALSE(store_->Commit());
    }
    EXPECT_NE(store_->ErrorText(), "");
    EXPECT_EQ(ReadText("A", "v"), "before");
    ASSERT_TRUE(store_->Begin());
    EXPECT_TRUE(WriteText("A", "v", "later"));
    EXPECT_TRUE(store_->Commit());
    Reopen();
    EXPECT_THAT(ValueNames("A"), ElementsAre("v"));
    EXPECT_EQ(ReadText("A", "v"), "later");
  }
}

TEST_F(SqliteRegistryTest, TwoProcessesSeeEachOthersChanges) {
  for (const char* text : {"1", "2", "1"}) {
    ASSERT_TRUE(WriteText("A", "v", text));
    EXPECT_EQ(other_->Read(kUser, "a", "V"), TextValue(text));
  }
  ASSERT_TRUE(store_->DeleteKey(kUser, "A"));
  ASSERT_TRUE(other_->Write(kUser, "A", "w", TextValue("t")));
  EXPECT_EQ(ReadText("A", "w"), "t");
  EXPECT_EQ(ReadText("A", "v"), "(missing)");
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
