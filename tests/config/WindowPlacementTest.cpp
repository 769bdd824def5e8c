#include <gtest/gtest.h>

#include "config/WindowPlacement.h"

namespace wattlark {
namespace {

// 1280 by 960 pixels.
const WindowPlacement kScreen{0, 0, 19200, 14400};
const WindowPlacement kPresent{150, 300, 4815, 6630, NormalWindow};

std::string Restored(const char* stored) {
  return WindowPlacementText(RestoredPlacement(stored, MaximizedWindow, kScreen, kPresent));
}

TEST(RestoredPlacement, LiesWithinReachAndStaysSmall) {
  using Row = std::pair<const char*, const char*>;
  for (const auto& [stored, restored] :
       {Row{"1200,900,4815,6630,0", "1200,900,4815,6630,0"},
        Row{" 1200 , 900 , 4800.5 , 6.6E3 , 1 ", "1200,900,4800.5,6600,1"},
        Row{"1200,900,0,0,0", "1200,900,4815,6630,0"},
        Row{"-1,300,4800,6600,0", "7200,300,4800,6600,0"},
        Row{"300,-1,4800,6600,2", "300,3900,4800,6600,2"},
        // Beyond the right or bottom edge, its far edge meets that of the screen.
        Row{"19200,200,4800,6600,0", "14400,200,4800,6600,0"},
        Row{"19185,200,4800,6600,0", "19185,200,4800,6600,0"},
        Row{"200,14400,4800,6600,0", "200,7800,4800,6600,0"},
        Row{"-120,-120,4800,6600,0", "-120,-120,4800,6600,0"},
        Row{"-4800,200,4800,6600,0", "0,200,4800,6600,0"},
        Row{"-4785,200,4800,6600,0", "-4785,200,4800,6600,0"},
        Row{"200,-9000,4800,6600,0", "200,0,4800,6600,0"},
        Row{"200,300,15,30,0", "200,300,3000,3000,0"},
        Row{"200,300,30000,6600,0", "200,300,19200,6600,0"},
        Row{"20000,15000,30000,30000,0", "0,0,19200,14400,0"}}) {
    EXPECT_EQ(Restored(stored), restored) << stored;
  }
  const WindowPlacement small{0, 0, 1500, 1200, NormalWindow};
  EXPECT_EQ(WindowPlacementText(RestoredPlacement("200,300,15,0,0", 0, kScreen, small)),
            "200,300,1500,1200,0");
}

TEST(RestoredPlacement, FallsBackForAMalformedText) {
  for (const char* stored :
       {"", "a,b", "1200,900,4815,6630", "1200,900,4815,6630,0,0", "1200,900,4815,6630,0.5",
        "1200,900,4815,6630,3", "nan,900,4815,6630,0", "1200,900,1e30,6630,0",
        "1200,900,4815,-6630,0", "-1e30,900,4815,6630,0"}) {
    EXPECT_EQ(Restored(stored), "7192.5,3885,4815,6630,2") << stored;
  }
}

TEST(SavedPlacement, KeepsTheBoundsOfTheNormalState) {
  using Row = std::tuple<const char*, int, const char*>;
  for (const auto& [stored, state, saved] :
       {Row{"1200,900,4815,6630,2", NormalWindow, "150,300,4815,6630,0"},
        Row{"1200,900,4800,6600,0", MinimizedWindow, "1200,900,4800,6600,1"},
        Row{"1200,900,4800,6600,1", MaximizedWindow, "1200,900,4800,6600,2"},
        Row{"", MinimizedWindow, "0,0,0,0,1"}, Row{"a,b", MaximizedWindow, "0,0,0,0,2"},
        Row{"1,2,1e300,4,0", MaximizedWindow, "0,0,0,0,2"}}) {
    WindowPlacement present = kPresent;
    present.state = state;
    EXPECT_EQ(WindowPlacementText(SavedPlacement(stored, present)), saved);
  }
}

}  // namespace
}  // namespace wattlark
