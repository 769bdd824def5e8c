#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/OpenStoreFixture.h"

namespace wattlark {

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;

/// Over a store of 60 keys of 10 values of 300 bytes, each of which says where it belongs.
class DamagedStoreTest : public OpenStoreTest {
 protected:
  static constexpr int kKeys = 60;
  static constexpr int kValues = 10;

  static std::string TextOf(int key, int value) {
    const std::string text = std::to_string(key) + "/" + std::to_string(value) + " ";
    return text + std::string(300 - text.size(), static_cast<char>('a' + value));
  }
  static std::string Path(int key) { return "Software\\Meters\\M" + std::to_string(key); }
  std::string MakeGood() const {
    {
      StoreOpening opening = Open();
      opening.registry->Begin();
      for (int i = 0; i < kKeys * kValues; ++i) {
        opening.registry->Write(kUser, Path(i / kValues), std::to_string(i % kValues),
                                TextValue(TextOf(i / kValues, i % kValues)));
      }
      EXPECT_TRUE(opening.registry->Commit());
    }
    return FileBytes(File());
  }
  /// How many of the values above the store has; none may be wrong.
  static int Count(Registry& registry) {
    int count = 0;
    for (int i = 0; i < kKeys * kValues; ++i) {
      const auto stored = registry.Read(kUser, Path(i / kValues), std::to_string(i % kValues));
      if (!stored) continue;
      EXPECT_EQ(stored, TextValue(TextOf(i / kValues, i % kValues)));
      ++count;
    }
    return count;
  }

  const std::string good_ = MakeGood();
};

TEST_F(DamagedStoreTest, IsSetAsideUntouchedAndANewOneWorks) {
  const std::string wrongSchema =
      std::string(good_).replace(good_.find("CREATE TABLE"), 6, "CREALE");
  int number = 0;
  for (const std::string& bad :
       {std::string("xyz"), std::string(5000, 'x'), std::string(8192, '\0'), good_.substr(0, 100),
        good_.substr(0, good_.size() - 2048), "X" + good_.substr(1), wrongSchema,
        std::string(good_).replace(16, 2, "\x20")}) {
    const std::string aside = File(".damaged-" + std::to_string(++number));
    SCOPED_TRACE(aside);
    WriteFile(File(), bad);
    {
      const StoreOpening opening = Open();
      ASSERT_NE(opening.registry, nullptr);
      EXPECT_TRUE(opening.savesChanges);
      EXPECT_THAT(opening.message,
                  AllOf(HasSubstr("\"" + File() + "\""), HasSubstr("\"" + aside + "\"")));
      Count(*opening.registry);
    }
    EXPECT_EQ(FileBytes(aside), bad);
    EXPECT_EQ(ModeOf(File()), 0600);
    ExpectWorks();
  }
}

TEST_F(DamagedStoreTest, ADamagedPageCostsOnlyItsOwnValues) {
  for (std::size_t page = 0; page < good_.size() / 4096; ++page) {
    WriteFile(File(), std::string(good_).replace(page * 4096, 4096, std::string(4096, '\xA5')));
    const StoreOpening opening = Open();
    ASSERT_TRUE(opening.savesChanges) << page << opening.message;
    EXPECT_THAT(opening.message, HasSubstr("damaged")) << page;
    // A page has room for no more than 13 values of 300 bytes.
    EXPECT_GE(Count(*opening.registry), kKeys * kValues - 13) << page;
  }
}

TEST_F(DamagedStoreTest, AFlippedByteLosesNothingThatStandsElsewhere) {
  using std::string_literals::operator""s;
  // The byte after the first place of a text is another: in the header, and in the names of keys.
  for (const auto& [before, byte] :
       std::vector<std::pair<std::string, char>>{{"", 'X'},
                                                 {"\0\0\0\1\0\0\0\2\0\0\0\0"s, 'X'},
                                                 {"software\\meters\\m7Software\\Meters\\", 'X'},
                                                 {"software\\meters\\", 'x'}}) {
    SCOPED_TRACE(before);
    std::string bad = good_;
    const std::size_t at = bad.find(before);
    ASSERT_NE(at, std::string::npos);
    bad[at + before.size()] = byte;
    WriteFile(File(), bad);
    const StoreOpening opening = Open();
    EXPECT_THAT(opening.message, HasSubstr("damaged"));
    EXPECT_EQ(Count(*opening.registry), kKeys * kValues);
    EXPECT_EQ(opening.registry->SubKeys(kUser, "Software\\Meters").size(), std::size_t{kKeys});
  }
}

TEST_F(DamagedStoreTest, ReadsOneThatCannotBeMovedIntoMemory) {
  const std::string bad =
      std::string(good_).replace(good_.size() - 4096, 4096, std::string(4096, '\xA5'));
  WriteFile(File(), bad);
  SetModes(0555, 0444);
  {
    const WithoutRoot user;
    const StoreOpening opening = Open();
    ASSERT_NE(opening.registry, nullptr);
    EXPECT_FALSE(opening.savesChanges);
    EXPECT_THAT(opening.message, HasSubstr("damaged"));
    EXPECT_GE(Count(*opening.registry), kKeys * kValues - 13);
  }
  EXPECT_EQ(FileBytes(File()), bad);
}

}  // namespace

}  // namespace wattlark
