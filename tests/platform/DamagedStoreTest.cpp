#include <cstddef>
#include <string>

#include "platform/OpenStoreFixture.h"
#include "support/modText.h"
#include "torture/GoodStore.h"

namespace wattlark {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

struct DamagedStoreTest : OpenStoreTest {
  std::string GoodWith(std::size_t at, std::size_t size, const std::string& bytes) const {
    return std::string(good_.Bytes()).replace(at, size, bytes);
  }
  void ExpectSalvaged(const std::string& bad, const StoreOpening& opening) const {
    EXPECT_THAT(opening.message, HasSubstr("damaged"));
    ASSERT_NE(opening.registry, nullptr);
    EXPECT_THAT(good_.Compare({good_.Bytes(), bad}, true, *opening.registry).problems, IsEmpty());
  }

  const GoodStore good_{profile_};
};

TEST_F(DamagedStoreTest, IsSetAsideUntouchedAndANewOneWorks) {
  const std::string& good = good_.Bytes();
  int number = 0;
  for (const std::string& bad :
       {std::string("xyz"), std::string(5000, 'x'), std::string(8192, '\0'), good.substr(0, 100),
        good.substr(0, good.size() - 2048), GoodWith(0, 1, "X"), GoodWith(16, 2, "\x20"),
        GoodWith(good.find("CREATE TABLE"), 6, "CREALE")}) {
    const std::string aside = File(".damaged-" + std::to_string(++number));
    SCOPED_TRACE(aside);
    WriteFile(File(), bad);
    EXPECT_THAT(Open().message,
                AllOf(HasSubstr("\"" + File() + "\""), HasSubstr("\"" + aside + "\"")));
    EXPECT_EQ(FileBytes(aside), bad);
    EXPECT_EQ(ModeOf(File()), 0600);
    ExpectWorks();
  }
}

TEST_F(DamagedStoreTest, ADamagedPageOrByteCostsOnlyWhatStandsThere) {
  const std::string name = modRegistry::AppKeyPath("", "KillAWatts\\" + GoodStore::MeterName(7));
  const std::size_t key = good_.Bytes().find(FoldCase(name) + name);
  ASSERT_NE(key, std::string::npos);
  // The magic, the application's number, and the names of a key: as it is, and folded.
  for (const std::size_t at : {std::size_t{0}, std::size_t{68}, key, key + name.size() + 3}) {
    const std::string bad = GoodWith(at, 1, "#");
    WriteFile(File(), bad);
    ExpectSalvaged(bad, Open());
  }
  for (std::size_t page = 0; page < good_.Bytes().size() / GoodStore::kPageSize; page += 3) {
    SCOPED_TRACE(page);
    const std::string bad = GoodWith(page * GoodStore::kPageSize, GoodStore::kPageSize,
                                     std::string(GoodStore::kPageSize, '\xA5'));
    WriteFile(File(), bad);
    ExpectSalvaged(bad, Open());
  }
}

TEST_F(DamagedStoreTest, ReadsOneThatCannotBeMovedIntoMemory) {
  const std::string bad = GoodWith(good_.Bytes().size() - 4096, 4096, std::string(4096, '\xA5'));
  WriteFile(File(), bad);
  SetModes(0555, 0444);
  {
    const WithoutRoot user;
    const StoreOpening opening = Open();
    EXPECT_FALSE(opening.savesChanges);
    ExpectSalvaged(bad, opening);
  }
  EXPECT_EQ(FileBytes(File()), bad);
}

}  // namespace
}  // namespace wattlark
