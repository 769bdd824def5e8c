#include "platform/sqlite/ValueChange.h"

#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <new>

namespace wattlark {

namespace {

constexpr std::size_t kChecksumBytes = 2;
constexpr std::uint64_t kMostUnpacked = std::uint64_t{1} << 22;

/// Tells a change that was applied to other bytes than it was made from; damage to the record
/// itself is found by zlib.
std::uint16_t Checksum(std::string_view before, std::string_view after) {
  uLong sum = crc32_z(0, reinterpret_cast<const Bytef*>(before.data()), before.size());
  sum = crc32_z(sum, reinterpret_cast<const Bytef*>(after.data()), after.size());
  return static_cast<std::uint16_t>(sum);
}

// Seven bits to a byte, the lowest first; the highest bit says that more follow.
void AppendNumber(std::uint64_t number, std::string& record) {
  while (number >= 0x80) {
    record += static_cast<char>(0x80 | (number & 0x7F));
    number >>= 7;
  }
  record += static_cast<char>(number);
}

std::optional<std::uint64_t> TakeNumber(std::string_view& record) {
  std::uint64_t number = 0;
  for (unsigned shift = 0; shift < 63 && !record.empty(); shift += 7) {
    const auto byte = static_cast<std::uint8_t>(record.front());
    record.remove_prefix(1);
    number |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
    if (byte < 0x80) return number;
  }
  return std::nullopt;
}

std::size_t CommonLength(std::string_view a, std::string_view b) {
  const auto [end, ignored] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  return static_cast<std::size_t>(end - a.begin());
}

struct Overlap {
  std::size_t drop = 0;
  std::size_t keep = 0;
};

// The longest beginning of `after` among the first places of `before` at which one of some length
// is found: a series without data has the same text everywhere.
Overlap LongestOverlap(std::string_view before, std::string_view after) {
  constexpr std::size_t kProbe = 24;
  constexpr int kPlaces = 100;
  Overlap longest{0, CommonLength(before, after)};
  if (after.size() < kProbe) return longest;
  const std::string_view probe = after.substr(0, kProbe);
  std::size_t at = 0;
  for (int place = 0; place < kPlaces; ++place) {
    at = before.find(probe, at + 1);
    if (at == std::string_view::npos) break;
    const std::size_t keep = CommonLength(before.substr(at), after);
    if (keep > longest.keep) longest = {at, keep};
  }
  return longest;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> ValueChange::Apply(
    std::span<const std::uint8_t> before) const {
  if (drop > before.size() || keep > before.size() - drop) return std::nullopt;
  std::string after(AsText(before).substr(drop, keep));
  after += tail;
  if (Checksum(AsText(before), after) != checksum) return std::nullopt;
  return std::vector<std::uint8_t>(after.begin(), after.end());
}

void AppendChange(std::int64_t value, std::span<const std::uint8_t> before,
                  std::span<const std::uint8_t> after, std::string& record) {
  const std::string_view text = AsText(after);
  const Overlap overlap = LongestOverlap(AsText(before), text);
  const std::string_view tail = text.substr(overlap.keep);
  AppendNumber(static_cast<std::uint64_t>(value), record);
  AppendNumber(overlap.drop, record);
  AppendNumber(overlap.keep, record);
  AppendNumber(tail.size(), record);
  record += tail;
  const std::uint16_t checksum = Checksum(AsText(before), text);
  for (std::size_t i = 0; i < kChecksumBytes; ++i) {
    record += static_cast<char>(checksum >> (8 * i));
  }
}

std::optional<ValueChange> TakeChange(std::string_view& record) {
  std::string_view rest = record;
  const auto value = TakeNumber(rest);
  const auto drop = TakeNumber(rest);
  const auto keep = TakeNumber(rest);
  const auto size = TakeNumber(rest);
  if (!value || !drop || !keep || !size || rest.size() < kChecksumBytes ||
      *size > rest.size() - kChecksumBytes) {
    return std::nullopt;
  }
  ValueChange change{static_cast<std::int64_t>(*value), *drop, *keep, rest.substr(0, *size), 0};
  rest.remove_prefix(*size);
  for (std::size_t i = 0; i < kChecksumBytes; ++i) {
    const auto byte = static_cast<std::uint8_t>(rest[i]);
    change.checksum = static_cast<std::uint16_t>(change.checksum | byte << (8 * i));
  }
  rest.remove_prefix(kChecksumBytes);
  record = rest;
  return change;
}

std::string PackChanges(std::string_view changes) {
  std::string record;
  AppendNumber(changes.size(), record);
  const std::size_t head = record.size();
  uLongf size = compressBound(static_cast<uLong>(changes.size()));
  record.resize(head + size);
  const int result = compress2(reinterpret_cast<Bytef*>(&record[head]), &size,
                               reinterpret_cast<const Bytef*>(changes.data()),
                               static_cast<uLong>(changes.size()), Z_BEST_COMPRESSION);
  if (result != Z_OK) throw std::bad_alloc();  // the only reason with a buffer of this size
  record.resize(head + size);
  return record;
}

std::optional<std::string> UnpackChanges(std::string_view record) {
  const auto size = TakeNumber(record);
  if (!size || *size > kMostUnpacked) return std::nullopt;
  std::string changes(*size, '\0');
  uLongf unpacked = static_cast<uLongf>(*size);
  const int result =
      uncompress(reinterpret_cast<Bytef*>(changes.data()), &unpacked,
                 reinterpret_cast<const Bytef*>(record.data()), static_cast<uLong>(record.size()));
  if (result != Z_OK || unpacked != *size) return std::nullopt;
  return changes;
}

}  // namespace wattlark
