#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace wattlark {

/// Twips a pixel at 96 dpi, the unit of stored placements.
inline constexpr double TwipsPerPixel = 15;

enum WindowState { NormalWindow = 0, MinimizedWindow = 1, MaximizedWindow = 2 };

/// Where a window stands, in twips.
struct WindowPlacement {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
  int state = NormalWindow;
};

/// Reads five fields joined by ","; nothing when there are more or fewer, or one is no number.
std::optional<WindowPlacement> ParseWindowPlacement(std::string_view text);
/// left,top,width,height,state.
std::string WindowPlacementText(const WindowPlacement& placement);

/// Where a window goes: the stored placement (present size for 0; centred for -1 and when there is
/// none; pulled back when it lies beyond the screen's right or bottom edge, and brought to the
/// screen when it would not be visible at all), in `defaultState` without a stored one. `screen`
/// and `present` give sizes alone.
WindowPlacement RestoredPlacement(std::string_view stored, int defaultState,
                                  const WindowPlacement& screen, const WindowPlacement& present);
/// What to store: the window's own bounds when it is in the normal state, else those stored before,
/// with the present state.
WindowPlacement SavedPlacement(std::string_view stored, const WindowPlacement& present);

}  // namespace wattlark
