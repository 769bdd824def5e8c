#include "config/WindowPlacement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "support/modText.h"

namespace wattlark {

namespace {

constexpr std::size_t kFields = 5;
constexpr double kCentred = -1;
constexpr double kLeastSize = 200 * TwipsPerPixel;
// What window systems hold in a coordinate; anything beyond never was a window's.
constexpr double kMost = 32767 * TwipsPerPixel;

bool IsPlausible(const WindowPlacement& placement) {
  const auto isPlace = [](double value) { return std::fabs(value) <= kMost; };
  const auto isSize = [](double value) { return value >= 0 && value <= kMost; };
  return isPlace(placement.left) && isPlace(placement.top) && isSize(placement.width) &&
         isSize(placement.height) && placement.state >= NormalWindow &&
         placement.state <= MaximizedWindow;
}

std::optional<WindowPlacement> ParsePlausible(std::string_view text) {
  const auto placement = ParseWindowPlacement(text);
  return placement && IsPlausible(*placement) ? placement : std::nullopt;
}

/// A size that the user can see and use: neither a splinter nor larger than the screen.
double UsableSize(double stored, double present, double screen) {
  const double size = std::min(stored == 0 ? present : stored, screen);
  return std::max(size, std::min(kLeastSize, present));
}

/// Where one edge goes, in one direction.
double UsablePlace(double stored, double size, double screen) {
  if (stored == kCentred) return screen / 2 - size / 2;
  if (stored >= screen) return std::max(0.0, screen - size);
  return stored + size <= 0 ? 0 : stored;
}

}  // namespace

std::optional<WindowPlacement> ParseWindowPlacement(std::string_view text) {
  const auto fields = Split(text, ',');
  if (fields.size() != kFields) return std::nullopt;
  std::array<double, kFields - 1> numbers;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto number = TextToDouble(fields[i]);
    if (!number) return std::nullopt;
    numbers[i] = *number;
  }
  const auto state = TextToInteger(fields.back(), std::numeric_limits<int>::min(),
                                   std::numeric_limits<int>::max());
  if (!state) return std::nullopt;
  return WindowPlacement{numbers[0], numbers[1], numbers[2], numbers[3], static_cast<int>(*state)};
}

std::string WindowPlacementText(const WindowPlacement& placement) {
  std::string text;
  for (const double number : {placement.left, placement.top, placement.width, placement.height}) {
    AppendDouble(text, number);
    text += ',';
  }
  return text + std::to_string(placement.state);
}

WindowPlacement RestoredPlacement(std::string_view stored, int defaultState,
                                  const WindowPlacement& screen, const WindowPlacement& present) {
  WindowPlacement placement =
      ParsePlausible(stored).value_or(WindowPlacement{kCentred, kCentred, 0, 0, defaultState});
  placement.width = UsableSize(placement.width, present.width, screen.width);
  placement.height = UsableSize(placement.height, present.height, screen.height);
  placement.left = UsablePlace(placement.left, placement.width, screen.width);
  placement.top = UsablePlace(placement.top, placement.height, screen.height);
  return placement;
}

WindowPlacement SavedPlacement(std::string_view stored, const WindowPlacement& present) {
  if (present.state == NormalWindow) return present;
  WindowPlacement placement = ParsePlausible(stored).value_or(WindowPlacement());
  placement.state = present.state;
  return placement;
}

}  // namespace wattlark
