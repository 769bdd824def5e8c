#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/sqlite/ValueChange.h"

namespace wattlark {
namespace {

struct Pair {
  const char* what;
  std::string before;
  std::string after;
  std::size_t longest;  ///< bytes of the change, those of the value's row, lengths and sum included
};

std::span<const std::uint8_t> Bytes(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

TEST(ValueChangeTest, IsShortAndGivesTheNewBytesOfTheOldOnesAlone) {
  const std::string hour = "101.5,102.5,103.5,104.5,105.5,106.5,107.5,108.5,109.5,110.5";
  const Pair pairs[] = {
      {"equal", hour, hour, 8},
      {"newest entry", hour, hour.substr(0, hour.size() - 1) + "75", 10},
      {"moved on", hour, hour.substr(12) + ",111.5,112.5", 20},
      {"no data", "-1,-1,-1,-1,-1,-1,-1,-1,-1,-1", "-1,-1,-1,-1,-1,-1,-1,-1,-1,230.25", 14},
      {"from nothing", "", "230", 11},
      {"to nothing", hour, "", 8},
      {"other", "0", std::string(300, '\xFF'), 310},
  };
  for (const Pair& pair : pairs) {
    SCOPED_TRACE(pair.what);
    std::string record;
    AppendChange(70'000, Bytes(pair.before), Bytes(pair.after), record);
    EXPECT_LE(record.size(), pair.longest);
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
    EXPECT_TRUE(rest.empty());
    EXPECT_EQ(change->value, 70'000);
    const auto after = change->Apply(Bytes(pair.before));
    ASSERT_TRUE(after);
    EXPECT_EQ(std::string(after->begin(), after->end()), pair.after);
    EXPECT_FALSE(change->Apply(Bytes("x" + pair.before)));
  }
}

}  // namespace
}  // namespace wattlark
