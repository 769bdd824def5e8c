#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace wattlark {

inline std::string_view AsText(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// How the bytes of one stored value changed: the new ones are `keep` of the old ones from `drop`
/// on, then `tail`. A series that moved on by some entries, or whose newest entry changed, is a few
/// dozen bytes instead of a thousand.
struct ValueChange {
  std::int64_t value = 0;  ///< the value's row
  std::uint64_t drop = 0;
  std::uint64_t keep = 0;
  std::string_view tail;       ///< lives in the text that it was read from
  std::uint16_t checksum = 0;  ///< of the old bytes and the new ones

  /// The new bytes; nothing when `before` is not what the change was made from, as far as 16 bits
  /// tell.
  std::optional<std::vector<std::uint8_t>> Apply(std::span<const std::uint8_t> before) const;
};

/// Appends the change from `before` to `after` to `record`.
void AppendChange(std::int64_t value, std::span<const std::uint8_t> before,
                  std::span<const std::uint8_t> after, std::string& record);
/// Takes the first change off `record`; nothing when it is empty, or damaged, and then something is
/// left of it.
std::optional<ValueChange> TakeChange(std::string_view& record);

/// The changes in fewer bytes; at most 4 MiB of them can be unpacked again.
std::string PackChanges(std::string_view changes);
/// The changes of a packed record; nothing when it is damaged.
std::optional<std::string> UnpackChanges(std::string_view record);

}  // namespace wattlark
