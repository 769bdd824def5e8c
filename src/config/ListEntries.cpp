#include "config/ListEntries.h"

#include <algorithm>
#include <cmath>

namespace wattlark {

int FindEntry(std::span<const ListEntry> entries, double number) {
  const double rounded = std::nearbyint(number);
  const auto found = std::ranges::find_if(
      entries, [rounded](const ListEntry& entry) { return entry.number == rounded; });
  return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

std::int32_t NumberAt(std::span<const ListEntry> entries, int index) {
  const auto at = static_cast<std::size_t>(index);
  return index >= 0 && at < entries.size() ? entries[at].number : 0;
}

}  // namespace wattlark
