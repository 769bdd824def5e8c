#include <gtest/gtest.h>

#include "config/WindowPlacement.h"

namespace wattlark {
namespace {

// 1280 by 960 pixels.
const WindowPlacement kScreen{0, 0, 19200, 14400};
const WindowPlacement kPresent{150, 300, 4815, 6630, NormalWindow};

struct RestoreCase {
  const char* stored;
  const char* restored;
};

class RestoreTest : public testing::TestWithParam<RestoreCase> {};

TEST_P(RestoreTest, FindsThePlace) {
  const auto placement = RestoredPlacement(GetParam().stored, MaximizedWindow, kScreen, kPresent);
  EXPECT_EQ(WindowPlacementText(placement), GetParam().restored) << GetParam().stored;
}

constexpr const char* kFallback = "7192.5,3885,4815,6630,2";

INSTANTIATE_TEST_SUITE_P(
    WellFormed, RestoreTest,
    testing::Values(RestoreCase{"1200,900,4815,6630,0", "1200,900,4815,6630,0"},
                    RestoreCase{" 1200 , 900 , 4800.5 , 6.6E3 , 1 ", "1200,900,4800.5,6600,1"},
                    RestoreCase{"1200,900,0,0,0", "1200,900,4815,6630,0"},
                    RestoreCase{"-1,300,4800,6600,0", "7200,300,4800,6600,0"},
                    RestoreCase{"300,-1,4800,6600,2", "300,3900,4800,6600,2"},
                    // Beyond the right or bottom edge, its far edge meets that of the screen.
                    RestoreCase{"30000,200,4800,6600,0", "14400,200,4800,6600,0"},
                    RestoreCase{"19200,200,4800,6600,0", "14400,200,4800,6600,0"},
                    RestoreCase{"19185,200,4800,6600,0", "19185,200,4800,6600,0"},
                    RestoreCase{"200,14400,4800,6600,0", "200,7800,4800,6600,0"},
                    RestoreCase{"-120,-120,4800,6600,0", "-120,-120,4800,6600,0"}));

INSTANTIATE_TEST_SUITE_P(
    Unusable, RestoreTest,
    testing::Values(RestoreCase{"-4800,200,4800,6600,0", "0,200,4800,6600,0"},
                    RestoreCase{"-4785,200,4800,6600,0", "-4785,200,4800,6600,0"},
                    RestoreCase{"200,-9000,4800,6600,0", "200,0,4800,6600,0"},
                    RestoreCase{"200,300,15,30,0", "200,300,3000,3000,0"},
                    RestoreCase{"200,300,30000,6600,0", "200,300,19200,6600,0"},
                    RestoreCase{"20000,15000,30000,30000,0", "0,0,19200,14400,0"}));

INSTANTIATE_TEST_SUITE_P(Malformed, RestoreTest,
                         testing::Values(RestoreCase{"", kFallback}, RestoreCase{"a,b", kFallback},
                                         RestoreCase{",,,,", kFallback},
                                         RestoreCase{"1200,900,4815,6630", kFallback},
                                         RestoreCase{"1200,900,4815,6630,0,0", kFallback},
                                         RestoreCase{"1200,900,4815,6630,", kFallback},
                                         RestoreCase{"1200,900,4815,6630,normal", kFallback},
                                         RestoreCase{"1200,900,4815,6630,0.5", kFallback},
                                         RestoreCase{"1200,900,4815,6630,3", kFallback},
                                         RestoreCase{"1200,900,4815,6630,-1", kFallback},
                                         RestoreCase{"1200,900,4815,6630,99999999999", kFallback},
                                         RestoreCase{"nan,900,4815,6630,0", kFallback},
                                         RestoreCase{"1200,inf,4815,6630,0", kFallback},
                                         RestoreCase{"1200,900,1e400,6630,0", kFallback},
                                         RestoreCase{"1200,900,1e30,6630,0", kFallback},
                                         RestoreCase{"1200,900,4815,-6630,0", kFallback},
                                         RestoreCase{"-1e30,900,4815,6630,0", kFallback},
                                         RestoreCase{"1200,1e30,4815,6630,0", kFallback}));

TEST(RestoredPlacement, KeepsASmallWindowSmall) {
  const WindowPlacement small{0, 0, 1500, 1200, NormalWindow};
  EXPECT_EQ(WindowPlacementText(RestoredPlacement("200,300,15,0,0", 0, kScreen, small)),
            "200,300,1500,1200,0");
}

struct SaveCase {
  const char* stored;
  int state;
  const char* saved;
};

class SaveTest : public testing::TestWithParam<SaveCase> {};

TEST_P(SaveTest, KeepsTheBoundsOfTheNormalState) {
  WindowPlacement present = kPresent;
  present.state = GetParam().state;
  EXPECT_EQ(WindowPlacementText(SavedPlacement(GetParam().stored, present)), GetParam().saved);
}

INSTANTIATE_TEST_SUITE_P(
    States, SaveTest,
    testing::Values(SaveCase{"1200,900,4815,6630,2", NormalWindow, "150,300,4815,6630,0"},
                    SaveCase{"1200,900,4800,6600,0", MinimizedWindow, "1200,900,4800,6600,1"},
                    SaveCase{"1200,900,4800,6600,1", MaximizedWindow, "1200,900,4800,6600,2"},
                    SaveCase{"", MinimizedWindow, "0,0,0,0,1"},
                    SaveCase{"a,b", MaximizedWindow, "0,0,0,0,2"},
                    SaveCase{"1,2,1e300,4,0", MaximizedWindow, "0,0,0,0,2"}));

}  // namespace
}  // namespace wattlark
