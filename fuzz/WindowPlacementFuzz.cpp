// Stored placements of any text: the window goes where it can be seen and used, and what is saved
// from it is read again as the same. The first byte chooses the screen and the window's state.

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "config/WindowPlacement.h"

namespace {

using namespace wattlark;

bool IsSame(const WindowPlacement& a, const WindowPlacement& b) {
  return a.left == b.left && a.top == b.top && a.width == b.width && a.height == b.height &&
         a.state == b.state;
}

bool IsVisible(double place, double size, double screen) {
  return std::isfinite(place) && size > 0 && size <= screen && place < screen && place + size > 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view stored = TextOf(data + 1, size - 1);
  constexpr std::array<WindowPlacement, 4> kScreens{{{0, 0, 19200, 14400, 0},
                                                     {0, 0, 28800, 16200, 0},
                                                     {0, 0, 5400, 9600, 0},
                                                     {0, 0, 115200, 32400, 0}}};
  const WindowPlacement& screen = kScreens[data[0] & 3];
  const int state = (data[0] >> 2) % 3;
  const WindowPlacement present{150, 300, 4815, 6630, state};

  if (const auto parsed = ParseWindowPlacement(stored)) {
    const auto again = ParseWindowPlacement(WindowPlacementText(*parsed));
    Require(again.has_value() && IsSame(*again, *parsed));
  }
  const WindowPlacement restored = RestoredPlacement(stored, state, screen, present);
  Require(IsVisible(restored.left, restored.width, screen.width));
  Require(IsVisible(restored.top, restored.height, screen.height));
  Require(restored.state >= NormalWindow && restored.state <= MaximizedWindow);

  const WindowPlacement saved = SavedPlacement(stored, present);
  Require(saved.state == state);
  const auto read = ParseWindowPlacement(WindowPlacementText(saved));
  Require(read.has_value() && IsSame(*read, saved));
  return 0;
}
