#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "platform/OpenStoreFixture.h"
#include "platform/sqlite/ChangeLog.h"
#include "platform/sqlite/ValueChange.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

std::span<const std::uint8_t> Bytes(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

struct ChangeLogTest : OpenedStoreTest {
  static std::string Series(int first) {
    std::string text;
    for (int i = 0; i < 60; ++i) text += (i == 0 ? "" : ",") + std::to_string(first + i) + ".25";
    return text;
  }
  void SaveProgress(int first) {
    ASSERT_TRUE(store_->Begin());
    store_->MarkProgress();
    ASSERT_TRUE(store_->Write(kUser, "A", "hour", TextValue(Series(first))));
    ASSERT_TRUE(store_->Commit());
  }
  void ExpectStored(int first) {
    EXPECT_EQ(store_->Read(kUser, "A", "hour"), TextValue(Series(first)));
    const auto values = store_->Values(kUser, "A");
    ASSERT_FALSE(values.empty());
    EXPECT_EQ(values.front().value, TextValue(Series(first)));
  }
  /// The first column of a query's one row, as the file has it.
  std::int64_t Ask(const char* sql) const {
    const SqliteDatabase database = RunSql("");
    SqliteStatement row(database, sql);
    EXPECT_EQ(row.Step(), SQLITE_ROW);
    return row.Integer(0);
  }
  std::int64_t Records() const { return Ask("SELECT count(*) FROM change"); }
};

TEST_F(ChangeLogTest, HoldsHalfADayOfSavesEveryFiveMinutes) {
  ASSERT_TRUE(store_->Write(kUser, "A", "hour", TextValue(Series(0))));
  for (int save = 1; save <= 144; ++save) SaveProgress(5 * save);
  EXPECT_EQ(Records(), 144);
  EXPECT_LE(Ask("SELECT max(length(changes)) FROM change"), 60);
  Reopen();
  ExpectStored(720);
  SaveProgress(725);
  EXPECT_EQ(Records(), 0);
  ExpectStored(725);
  SaveProgress(730);
  EXPECT_EQ(Records(), 1);
  SaveProgress(730);
  EXPECT_EQ(Records(), 1) << "nothing has changed";
  Reopen();
  ExpectStored(730);
}

TEST_F(ChangeLogTest, AStoreOfTheVersionBeforeGetsOne) {
  ASSERT_TRUE(store_->Write(kUser, "A", "hour", TextValue(Series(0))));
  store_.reset();
  RunSql("DROP TABLE change; DROP TABLE generation; PRAGMA user_version = 1");
  Reopen();
  ExpectStored(0);
  SaveProgress(5);
  EXPECT_EQ(Records(), 1);
  EXPECT_EQ(Ask("PRAGMA user_version"), 2);
  RunSql("DELETE FROM generation");
  EXPECT_THAT(Open().message, testing::HasSubstr("is damaged")) << "it would keep no changes";
}

TEST_F(ChangeLogTest, DamageCostsNoMoreThanTheSavesThatItHit) {
  ASSERT_TRUE(store_->Write(kUser, "A", "hour", TextValue(Series(0))));
  for (const int first : {5, 10, 15}) SaveProgress(first);
  store_.reset();
  RunSql(
      "UPDATE change SET changes = CAST(substr(changes, 1, length(changes) - 1) || x'00' AS BLOB)"
      " WHERE id = 2");
  StoreOpening opening = Open();
  EXPECT_THAT(opening.message, testing::HasSubstr("is damaged"));
  store_ = std::move(opening.registry);
  ExpectStored(5);
}

TEST_F(ChangeLogTest, ASalvageTakesNothingOfALogThatIsOver) {
  std::string record;
  AppendChange(1, Bytes("1"), Bytes("2"), record);
  record = PackChanges(record);
  for (const std::int64_t generation : {0, 1}) {
    ASSERT_TRUE(store_->Write(kUser, "A", "hour", TextValue("1")));
    store_.reset();
    {
      const SqliteDatabase database = RunSql("PRAGMA application_id = 7");
      SqliteStatement insert(database, "INSERT INTO change VALUES(1, ?1, ?2)");
      insert.Bind(1, generation).Bind(2, Bytes(record));
      ASSERT_EQ(insert.Step(), SQLITE_DONE);
    }
    store_ = Open().registry;
    EXPECT_EQ(store_->Read(kUser, "A", "hour"), TextValue(generation == 0 ? "1" : "2"));
  }
}

// Two hives, keys and names in several spellings, values of every type, changes in transactions and
// outside of them, made and seen by two processes.
TEST_F(ChangeLogTest, AnySequenceOfChangesGivesWhatAStoreInMemoryGives) {
  std::mt19937 random(20261123);
  const auto below = [&random](unsigned bound) { return random() % bound; };
  MemoryRegistry expected;
  const auto other = Open().registry;
  const std::string paths[] = {"K", "K\\z", "k\\\\a\\B", "\\K\xC3\xBC\\", "k\xC3\x9C\\ab", ""};
  const std::string names[] = {"u", "v", "V", "not\xFFutf8", ""};
  std::vector<std::uint8_t> everyByte(256);
  std::iota(everyByte.begin(), everyByte.end(), std::uint8_t{0});
  using enum RegistryType;
  const RegistryValue others[] = {{String, {'a', 0, 0xC3}},
                                  {String, std::vector<std::uint8_t>(100'000, 'x')},
                                  {Binary, {}},
                                  {Binary, everyByte},
                                  {DWord, {1, 2, 3, 4}},
                                  {MultiString, {'a', 0, 'b', 0, 0}}};
  const auto compare = [&](Registry& store, int step) {
    for (const Hive hive : {kUser, Hive::LocalMachine}) {
      for (const std::string& path : paths) {
        SCOPED_TRACE(std::to_string(step) + " " + path);
        EXPECT_EQ(store.KeyExists(hive, path), expected.KeyExists(hive, path));
        EXPECT_EQ(store.SubKeys(hive, path), expected.SubKeys(hive, path));
        EXPECT_TRUE(std::ranges::equal(
            store.Values(hive, path), expected.Values(hive, path),
            [](const auto& a, const auto& b) { return a.name == b.name && a.value == b.value; }));
        for (const std::string& name : names) {
          EXPECT_EQ(store.Read(hive, path, name), expected.Read(hive, path, name));
        }
      }
    }
  };
  for (int step = 0; step < 800 && !HasFailure(); ++step) {
    const bool isGrouped = below(8) != 0;
    const bool isProgress = isGrouped && below(3) != 0;
    const bool isKept = below(5) != 0;
    Registry& writer = below(4) == 0 ? *other : *store_;
    // Who has not looked since the other's change must notice it now.
    const std::string& before = names[below(5)];
    if (below(2) == 0) {
      EXPECT_EQ(writer.Read(kUser, "K", before), expected.Read(kUser, "K", before));
    }
    if (isGrouped) {
      ASSERT_TRUE(writer.Begin());
      EXPECT_FALSE(writer.Begin());
      ASSERT_TRUE(expected.Begin());
    }
    if (isProgress) writer.MarkProgress();
    for (auto change = below(6); change > 0; --change) {
      const Hive hive = below(8) == 0 ? Hive::LocalMachine : kUser;
      const std::string& path = paths[below(6)];
      const std::string& name = names[below(5)];
      const RegistryValue value =
          below(8) == 0 ? others[below(6)] : TextValue(Series(static_cast<int>(below(4))));
      const bool isDeletion = below(isProgress ? 30 : 3) == 0;
      if (!isDeletion) {
        EXPECT_EQ(writer.Write(hive, path, name, value), expected.Write(hive, path, name, value));
      } else if (below(2) == 0) {
        EXPECT_EQ(writer.DeleteValue(hive, path, name), expected.DeleteValue(hive, path, name));
      } else if (below(4) == 0) {
        EXPECT_EQ(writer.CreateKey(hive, path), expected.CreateKey(hive, path));
      } else {
        EXPECT_EQ(writer.DeleteKey(hive, path), expected.DeleteKey(hive, path));
      }
    }
    compare(writer, step);
    if (isGrouped && isKept) {
      ASSERT_TRUE(writer.Commit());
      EXPECT_FALSE(writer.Commit());
      ASSERT_TRUE(expected.Commit());
    } else if (isGrouped) {
      writer.Rollback();
      expected.Rollback();
    }
    if (below(4) == 0) Reopen();
    if (below(2) == 0) compare(*store_, step);
    if (below(2) == 0) compare(*other, step);
  }
  EXPECT_EQ(Ask("SELECT count(*) FROM value WHERE key NOT IN (SELECT id FROM key)"), 0);
}

TEST(ValueChangeTest, TellsDamageAndAnotherValueThanItsOwn) {
  const std::string before = "101.5,102.5,103.5";
  const std::string after = "102.5,103.5,104.5";
  std::string record;
  AppendChange(70'000, Bytes(before), Bytes(after), record);
  std::string packed = PackChanges(record);
  EXPECT_EQ(UnpackChanges(packed), record);
  for (char& byte : packed) {
    byte = static_cast<char>(byte ^ 1);
    EXPECT_NE(UnpackChanges(packed), record);
    byte = static_cast<char>(byte ^ 1);
  }
  for (std::size_t size = 0; size < record.size(); ++size) {
    std::string_view part = std::string_view(record).substr(0, size);
    EXPECT_FALSE(TakeChange(part)) << size;
  }
  std::string_view rest = record;
  const auto change = TakeChange(rest);
  ASSERT_TRUE(change);
  EXPECT_EQ(change->Apply(Bytes(before)), TextValue(after).data);
  EXPECT_FALSE(change->Apply(Bytes("x" + before)));
}

}  // namespace
}  // namespace wattlark
