#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

#include "platform/OpenStoreFixture.h"

namespace wattlark {

namespace {

namespace fs = std::filesystem;

class DamagedStoreTest : public OpenStoreTest {};

struct BadFile {
  const char* what;
  std::function<std::string(const std::string& good)> make;
};

class BadStore : public OpenStoreTest, public testing::WithParamInterface<BadFile> {};

TEST_P(BadStore, IsSetAsideUntouchedAndANewOneWorks) {
  const std::string bad = GetParam().make(ManyBytes());
  for (const char* aside : {".damaged-1", ".damaged-2"}) {
    WriteFile(File(), bad);
    {
      const StoreOpening opening = Open();
      ASSERT_NE(opening.registry, nullptr);
      EXPECT_TRUE(opening.savesChanges);
      EXPECT_TRUE(Mentions(opening, "\"" + File() + "\"")) << opening.message;
      EXPECT_TRUE(Mentions(opening, "\"" + File(aside) + "\"")) << opening.message;
      CountMany(*opening.registry);
    }
    EXPECT_EQ(FileBytes(File(aside)), bad);
    EXPECT_EQ(ModeOf(File()), 0600);
    ExpectWorks();
  }
}

INSTANTIATE_TEST_SUITE_P(
    , BadStore,
    testing::Values(
        BadFile{"FewBytes", [](const std::string&) { return std::string("xyz"); }},
        BadFile{"Text", [](const std::string&) { return std::string(5000, 'x'); }},
        BadFile{"Zeros", [](const std::string&) { return std::string(8192, '\0'); }},
        BadFile{"HeaderOnly", [](const std::string& good) { return good.substr(0, 100); }},
        BadFile{"HalfAPageShort",
                [](const std::string& good) { return good.substr(0, good.size() - 2048); }},
        BadFile{"WrongMagic", [](const std::string& good) { return "X" + good.substr(1); }},
        BadFile{
            "WrongSchema",
            [](std::string good) { return good.replace(good.find("CREATE TABLE"), 6, "CREALE"); }},
        BadFile{"WrongPageSize", [](std::string good) { return good.replace(16, 2, "\x20"); }}),
    [](const auto& test) { return test.param.what; });

TEST_F(DamagedStoreTest, EveryTruncationKeepsWhatCanBeRead) {
  const std::string good = ManyBytes();
  for (std::size_t size = 1500; size < good.size(); size += 4096 + 1024) {
    WriteFile(File(), good.substr(0, size));
    const StoreOpening opening = Open();
    ASSERT_TRUE(opening.savesChanges) << size << opening.message;
    const int count = CountMany(*opening.registry);
    // Ten pages from the end hold some 120 values at most; the tables' roots lie at the start.
    if (size + std::size_t{10} * 4096 > good.size()) {
      EXPECT_GE(count, 450) << size;
    }
    fs::remove(File());
  }
}

TEST_F(DamagedStoreTest, ADamagedPageCostsOnlyItsOwnValues) {
  const std::string good = ManyBytes();
  const std::size_t pages = good.size() / 4096;
  for (std::size_t page = 0; page < pages; ++page) {
    std::string bad = good;
    bad.replace(page * 4096, 4096, std::string(4096, '\xA5'));
    WriteFile(File(), bad);
    const StoreOpening opening = Open();
    ASSERT_TRUE(opening.savesChanges) << page << opening.message;
    EXPECT_TRUE(Mentions(opening, "damaged")) << page;
    // A page has room for no more than 13 values of 300 bytes.
    EXPECT_GE(CountMany(*opening.registry), kManyKeys * kManyValues - 13) << page;
    fs::remove(File());
  }
}

struct Flip {
  const char* what;
  std::string before;  ///< the byte after its first place becomes `byte`
  char byte = 0;
};

class FlippedStore : public OpenStoreTest, public testing::WithParamInterface<Flip> {};

TEST_P(FlippedStore, LosesNothingThatStandsElsewhere) {
  std::string bad = ManyBytes();
  const std::size_t at = bad.find(GetParam().before);
  ASSERT_NE(at, std::string::npos);
  bad[at + GetParam().before.size()] = GetParam().byte;
  WriteFile(File(), bad);
  const StoreOpening opening = Open();
  EXPECT_TRUE(Mentions(opening, "damaged")) << opening.message;
  EXPECT_EQ(CountMany(*opening.registry), kManyKeys * kManyValues);
  EXPECT_EQ(opening.registry->SubKeys(kUser, "Software\\Meters").size(), std::size_t{kManyKeys});
}

INSTANTIATE_TEST_SUITE_P(
    , FlippedStore,
    testing::Values(Flip{"Magic", "", 'X'},
                    Flip{"ApplicationId", std::string("\0\0\0\1\0\0\0\2\0\0\0\0", 12), 'X'},
                    Flip{"NameOfAKey", "software\\meters\\m7Software\\Meters\\", 'X'},
                    Flip{"FoldedNameOfAKey", "software\\meters\\", 'x'}),
    [](const auto& test) { return test.param.what; });

TEST_F(DamagedStoreTest, ADamagedStoreThatCannotBeMovedIsReadIntoMemory) {
  std::string bad = ManyBytes();
  bad.replace(bad.size() - 4096, 4096, std::string(4096, '\xA5'));
  WriteFile(File(), bad);
  fs::permissions(File(), fs::perms(0444));
  fs::permissions(profile_, fs::perms(0555));
  {
    const WithoutRoot user;
    const StoreOpening opening = Open();
    ASSERT_NE(opening.registry, nullptr);
    EXPECT_FALSE(opening.savesChanges);
    EXPECT_TRUE(Mentions(opening, "damaged")) << opening.message;
    EXPECT_GE(CountMany(*opening.registry), kManyKeys * kManyValues - 13);
  }
  EXPECT_EQ(FileBytes(File()), bad);
}

}  // namespace

}  // namespace wattlark
