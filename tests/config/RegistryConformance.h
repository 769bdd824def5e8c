#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Registry.h"

namespace wattlark {

/// An adapter of the `Registry` port with what the suite needs to put it to the test.
class RegistryUnderTest {
 public:
  virtual ~RegistryUnderTest() = default;
  virtual Registry& Get() = 0;
  /// Ends the process's use of the store and takes it up again.
  virtual void Reopen() = 0;
  /// Runs `work` while nothing can be stored.
  virtual void WhileWritesFail(const std::function<void()>& work) = 0;
};

using RegistryFactory = std::function<std::unique_ptr<RegistryUnderTest>()>;

/// What every adapter of the port promises. Include this header in one file of a test program and
/// instantiate the suite there.
class RegistryConformance : public testing::TestWithParam<RegistryFactory> {
 protected:
  static constexpr Hive kUser = Hive::CurrentUser;

  void SetUp() override {
    subject_ = GetParam()();
    ASSERT_NE(subject_, nullptr);
  }
  Registry& Store() { return subject_->Get(); }

  static RegistryValue Text(const std::string& text) {
    return {RegistryType::String, {text.begin(), text.end()}};
  }
  bool WriteText(const std::string& path, const std::string& name, const std::string& text) {
    return Store().Write(kUser, path, name, Text(text));
  }
  std::string ReadText(const std::string& path, const std::string& name) {
    const auto value = Store().Read(kUser, path, name);
    return value ? std::string(value->data.begin(), value->data.end()) : "(missing)";
  }
  std::vector<std::string> ValueNames(const std::string& path) {
    std::vector<std::string> names;
    for (const auto& value : Store().Values(kUser, path)) names.push_back(value.name);
    return names;
  }

  std::unique_ptr<RegistryUnderTest> subject_;
};

using Names = std::vector<std::string>;

TEST_P(RegistryConformance, KeepsTypesAndBytesExactly) {
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
  for (const auto& [name, value] : values) EXPECT_TRUE(Store().Write(kUser, "K", name, value));
  subject_->Reopen();
  for (const auto& [name, value] : values) EXPECT_EQ(Store().Read(kUser, "K", name), value) << name;
  const auto stored = Store().Values(kUser, "K");
  ASSERT_EQ(stored.size(), values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(stored[i].name, values[i].name);
    EXPECT_EQ(stored[i].value, values[i].value) << values[i].name;
  }
}

TEST_P(RegistryConformance, MissingKeysAndValuesAnswerSo) {
  ASSERT_TRUE(WriteText("A\\B", "v", "1"));
  EXPECT_FALSE(Store().KeyExists(kUser, "A\\C"));
  EXPECT_FALSE(Store().KeyExists(kUser, "B"));
  EXPECT_FALSE(Store().KeyExists(Hive::LocalMachine, "A\\B"));
  EXPECT_EQ(Store().Read(kUser, "A\\B", "w"), std::nullopt);
  EXPECT_EQ(Store().Read(kUser, "A\\C", "v"), std::nullopt);
  EXPECT_FALSE(Store().DeleteValue(kUser, "A\\B", "w"));
  EXPECT_FALSE(Store().DeleteValue(kUser, "A\\C", "v"));
  EXPECT_FALSE(Store().DeleteKey(kUser, "A\\C"));
  EXPECT_TRUE(Store().SubKeys(kUser, "A\\B").empty());
  EXPECT_TRUE(Store().SubKeys(kUser, "C").empty());
  EXPECT_TRUE(Store().Values(kUser, "C").empty());
  EXPECT_EQ(Store().ErrorText(), "");
}

TEST_P(RegistryConformance, ComparesNamesWithoutCaseAndKeepsTheFirstSpelling) {
  ASSERT_TRUE(
      WriteText("Software\\K\xC3\xBC"
                "che",
                "Stra\xC3\x9F"
                "e",
                "1"));
  ASSERT_TRUE(
      WriteText("SOFTWARE\\k\xC3\x9C"
                "CHE",
                "stra\xC3\x9F"
                "E",
                "2"));
  EXPECT_EQ(ReadText("software\\K\xC3\x9C"
                     "che",
                     "STRA\xC3\x9F"
                     "E"),
            "2");
  EXPECT_EQ(Store().SubKeys(kUser, "sOFTWARE"), Names{"K\xC3\xBC"
                                                      "che"});
  EXPECT_EQ(ValueNames("Software\\K\xC3\xBC"
                       "che"),
            Names{"Stra\xC3\x9F"
                  "e"});
}

TEST_P(RegistryConformance, EnumeratesInOrderOfCreation) {
  for (const char* name : {"zebra", "apple", "Mango"}) {
    ASSERT_TRUE(Store().CreateKey(kUser, std::string("Top\\") + name));
    ASSERT_TRUE(WriteText("Top", name, "1"));
  }
  ASSERT_TRUE(WriteText("Top", "ZEBRA", "2"));
  subject_->Reopen();
  EXPECT_EQ(Store().SubKeys(kUser, "Top"), (Names{"zebra", "apple", "Mango"}));
  EXPECT_EQ(ValueNames("Top"), (Names{"zebra", "apple", "Mango"}));
  ASSERT_TRUE(Store().DeleteKey(kUser, "Top\\zebra"));
  ASSERT_TRUE(Store().DeleteValue(kUser, "Top", "zebra"));
  ASSERT_TRUE(Store().CreateKey(kUser, "Top\\zebra"));
  ASSERT_TRUE(WriteText("Top", "zebra", "3"));
  EXPECT_EQ(Store().SubKeys(kUser, "Top"), (Names{"apple", "Mango", "zebra"}));
  EXPECT_EQ(ValueNames("Top"), (Names{"apple", "Mango", "zebra"}));
}

TEST_P(RegistryConformance, WritingCreatesTheWholePath) {
  ASSERT_TRUE(WriteText("A\\B\\C", "v", "1"));
  EXPECT_TRUE(Store().KeyExists(kUser, "A"));
  EXPECT_TRUE(Store().KeyExists(kUser, "a\\b"));
  EXPECT_EQ(Store().SubKeys(kUser, "A"), Names{"B"});
  EXPECT_EQ(Store().SubKeys(kUser, ""), Names{"A"});
  EXPECT_TRUE(Store().CreateKey(kUser, "A\\B\\C"));
  EXPECT_EQ(ReadText("A\\B\\C", "v"), "1");
}

TEST_P(RegistryConformance, PathsWithEmptyPartsMeanTheKeyWithoutThem) {
  ASSERT_TRUE(WriteText("\\A\\\\B\\", "v", "1"));
  EXPECT_EQ(ReadText("A\\B", "v"), "1");
  for (const char* nothing : {"", "\\", "\\\\"}) {
    EXPECT_FALSE(Store().CreateKey(kUser, nothing));
    EXPECT_FALSE(WriteText(nothing, "v", "1"));
    EXPECT_FALSE(Store().KeyExists(kUser, nothing));
  }
}

TEST_P(RegistryConformance, DeletesOnlyKeysWithoutSubkeys) {
  ASSERT_TRUE(WriteText("A", "v", "1"));
  ASSERT_TRUE(WriteText("A\\B", "v", "2"));
  ASSERT_TRUE(WriteText("AB", "v", "3"));
  EXPECT_FALSE(Store().DeleteKey(kUser, "A"));
  EXPECT_EQ(ReadText("A", "v"), "1");
  EXPECT_TRUE(Store().DeleteKey(kUser, "A\\b"));
  EXPECT_TRUE(Store().DeleteKey(kUser, "a"));
  EXPECT_EQ(ReadText("AB", "v"), "3");
  ASSERT_TRUE(Store().CreateKey(kUser, "A"));
  EXPECT_EQ(ReadText("A", "v"), "(missing)") << "values go with their key";
}

TEST_P(RegistryConformance, CommitKeepsAndRollbackForgets) {
  ASSERT_TRUE(WriteText("A", "v", "before"));
  ASSERT_TRUE(Store().Begin());
  EXPECT_FALSE(Store().Begin());
  EXPECT_NE(Store().ErrorText(), "");
  ASSERT_TRUE(WriteText("A", "v", "after"));
  ASSERT_TRUE(WriteText("A\\New", "v", "1"));
  EXPECT_EQ(ReadText("A", "v"), "after");
  Store().Rollback();
  EXPECT_EQ(ReadText("A", "v"), "before");
  EXPECT_FALSE(Store().KeyExists(kUser, "A\\New"));

  ASSERT_TRUE(Store().Begin());
  ASSERT_TRUE(Store().DeleteKey(kUser, "A"));
  ASSERT_TRUE(WriteText("A\\New", "v", "2"));
  ASSERT_TRUE(WriteText("A\\New", "w", "3"));
  EXPECT_FALSE(Store().DeleteKey(kUser, "Missing"));
  ASSERT_TRUE(Store().Commit());
  EXPECT_FALSE(Store().Commit());
  subject_->Reopen();
  EXPECT_EQ(ReadText("A", "v"), "(missing)");
  EXPECT_EQ(ReadText("A\\New", "v"), "2");
  EXPECT_EQ(ReadText("A\\New", "w"), "3");
}

TEST_P(RegistryConformance, ProgressIsStoredLikeAnyOtherChange) {
  ASSERT_TRUE(WriteText("A", "v", "1,2,3,4"));
  ASSERT_TRUE(Store().Begin());
  Store().MarkProgress();
  ASSERT_TRUE(WriteText("A", "V", "2,3,4,5"));
  ASSERT_TRUE(WriteText("A\\New", "w", "1"));
  EXPECT_EQ(ReadText("A", "v"), "2,3,4,5");
  Store().Rollback();
  EXPECT_EQ(ReadText("A", "v"), "1,2,3,4");
  EXPECT_FALSE(Store().KeyExists(kUser, "A\\New"));

  subject_->WhileWritesFail([&] {
    ASSERT_TRUE(Store().Begin());
    Store().MarkProgress();
    WriteText("A", "v", "2,3,4,5");
    EXPECT_FALSE(Store().Commit());
  });
  EXPECT_NE(Store().ErrorText(), "");
  EXPECT_EQ(ReadText("A", "v"), "1,2,3,4");

  ASSERT_TRUE(Store().Begin());
  Store().MarkProgress();
  ASSERT_TRUE(WriteText("A", "v", "3,4,5,6"));
  ASSERT_TRUE(WriteText("A\\New", "w", "1"));
  ASSERT_TRUE(Store().Commit());
  EXPECT_EQ(ReadText("A", "v"), "3,4,5,6");
  subject_->Reopen();
  EXPECT_EQ(ReadText("A", "v"), "3,4,5,6");
  EXPECT_EQ(ReadText("A\\New", "w"), "1");
  EXPECT_EQ(ValueNames("A"), Names{"v"});
}

TEST_P(RegistryConformance, WritingAgainAfterDeletingTheKeyInOneTransaction) {
  ASSERT_TRUE(Store().Begin());
  ASSERT_TRUE(WriteText("A\\B", "v", "1"));
  ASSERT_TRUE(Store().DeleteKey(kUser, "A\\B"));
  ASSERT_TRUE(WriteText("A\\B", "w", "2"));
  ASSERT_TRUE(Store().Commit());
  EXPECT_EQ(ValueNames("A\\B"), Names{"w"});
}

TEST_P(RegistryConformance, FailedWritesChangeNothingAndSayWhy) {
  ASSERT_TRUE(WriteText("A", "v", "before"));
  subject_->WhileWritesFail([&] {
    EXPECT_FALSE(WriteText("A", "v", "after"));
    EXPECT_FALSE(WriteText("B", "v", "after"));
    EXPECT_FALSE(Store().DeleteValue(kUser, "A", "v"));
    EXPECT_FALSE(Store().DeleteKey(kUser, "A"));
  });
  EXPECT_NE(Store().ErrorText(), "");
  EXPECT_EQ(ReadText("A", "v"), "before");
  EXPECT_FALSE(Store().KeyExists(kUser, "B"));
  EXPECT_TRUE(WriteText("A", "v", "later"));
  subject_->Reopen();
  EXPECT_EQ(ReadText("A", "v"), "later");
}

TEST_P(RegistryConformance, OneFailedWriteFailsTheTransactionAndTheNextOneWorks) {
  ASSERT_TRUE(WriteText("A", "v", "before"));
  const std::string big(3'000'000, 'x');
  ASSERT_TRUE(Store().Begin());
  ASSERT_TRUE(WriteText("A", "v", "after"));
  subject_->WhileWritesFail([&] {
    WriteText("A", "big", big);
    EXPECT_FALSE(WriteText("A", "big2", std::string(40'000'000, 'x')));
  });
  EXPECT_FALSE(WriteText("A", "w", "after"));
  EXPECT_FALSE(Store().Commit());
  EXPECT_NE(Store().ErrorText(), "");
  EXPECT_EQ(ReadText("A", "v"), "before");
  EXPECT_EQ(ReadText("A", "w"), "(missing)");

  ASSERT_TRUE(Store().Begin());
  EXPECT_TRUE(WriteText("A", "v", "later"));
  EXPECT_TRUE(Store().Commit());
  subject_->Reopen();
  EXPECT_EQ(ValueNames("A"), Names{"v"});
  EXPECT_EQ(ReadText("A", "v"), "later");
}

TEST_P(RegistryConformance, AFailedCommitChangesNothingAndTheNextOneWorks) {
  ASSERT_TRUE(WriteText("A", "v", "before"));
  subject_->WhileWritesFail([&] {
    ASSERT_TRUE(Store().Begin());
    WriteText("A", "v", "after");
    EXPECT_FALSE(Store().Commit());
  });
  EXPECT_NE(Store().ErrorText(), "");
  EXPECT_EQ(ReadText("A", "v"), "before");
  ASSERT_TRUE(Store().Begin());
  EXPECT_TRUE(WriteText("A", "v", "later"));
  EXPECT_TRUE(Store().Commit());
  EXPECT_EQ(ReadText("A", "v"), "later");
}

}  // namespace wattlark
