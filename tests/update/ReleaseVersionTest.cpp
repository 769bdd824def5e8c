#include <gtest/gtest.h>

#include "update/ReleaseVersion.h"

namespace wattlark {
namespace {

struct Placed {
  const char* version;
  int place;  ///< a version is newer than all of a lower place
  bool isRelease;
};

// Within 2.0: pre-releases by their numbers, then by stage (d, a, b, f); behind them the releases
// by their numbers. A stage is a letter at the fourth position or at the end.
constexpr Placed kOrder[] = {{"", 0, true},          {"0.0", 0, true},
                             {"1.9b7", 1, false},    {"1.9", 2, true},
                             {"2.0d1", 3, false},    {"2.0a1", 4, false},
                             {"2.0b1", 5, false},    {"2.0f1", 6, false},
                             {"2.0d2", 7, false},    {"2.0.2a", 8, false},
                             {"2.0b2", 9, false},    {"2.0b02", 9, false},
                             {"2.0b10", 10, false},  {"2.0", 11, true},
                             {"2.0x", 11, true},     {"2.0.1", 12, true},
                             {"2.0.9", 13, true},    {"2.0.12", 14, true},
                             {"2.1b", 15, false},    {"2.1.1b", 16, false},
                             {"2.1beta", 15, false}, {"2.1.1f", 17, false},
                             {"2.1b999", 18, false}, {"2.1", 19, true},
                             {"2.1.1", 20, true},    {"3.0a1", 21, false},
                             {"3.0", 22, true},      {"9.9.99999999999999999999", 23, true}};

TEST(ReleaseVersionTest, ComparesEveryPair) {
  for (const Placed& a : kOrder) {
    for (const Placed& b : kOrder) {
      const bool isNewer = a.place > b.place;
      EXPECT_EQ(IsNewerVersion(a.version, b.version, false), isNewer)
          << a.version << " after " << b.version;
      EXPECT_EQ(IsNewerVersion(a.version, b.version, true), isNewer && a.isRelease)
          << a.version << " after " << b.version << ", strictly";
    }
  }
}

TEST(ReleaseVersionTest, KnowsWhatIsAVersion) {
  for (const char* text : {"2.1", "2.1b3", "2.0.12", "2.1.3f"}) {
    EXPECT_TRUE(IsVersionText(text)) << text;
  }
  for (const char* text : {"", "2", "2.", "12.0", "v2.1", "2,1", "2.1 b3", "<html>", "2.1\x01",
                           "2.1234567890123456789012345678901"}) {
    EXPECT_FALSE(IsVersionText(text)) << text;
  }
}

}  // namespace
}  // namespace wattlark
