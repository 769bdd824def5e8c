#pragma once

#include <cstdint>
#include <span>

namespace wattlark {

/// One entry of a dialog's fixed list: shown text and carried number.
struct ListEntry {
  const char* text;
  std::int32_t number;
};

/// Index of the first entry that carries `number`, or -1.
int FindEntry(std::span<const ListEntry> entries, double number);
/// Carried number of the selected entry, 0 without a selection.
std::int32_t NumberAt(std::span<const ListEntry> entries, int index);

}  // namespace wattlark
