#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "timezone/clsSystemTime.h"

namespace wattlark {

/// One rule set of a zone. Biases are minutes, any value: UTC = local time + `Bias` + the extra
/// bias in force.
struct clsTimeZoneInformation {
  std::int32_t Bias = 0;
  std::int32_t StandardBias = 0;
  std::int32_t DaylightBias = 0;
  clsSystemTime StandardDate;  ///< when standard time begins
  clsSystemTime DaylightDate;  ///< when daylight time begins

  static constexpr std::size_t BlobLength = 44;
  /// Reads the form of the registry (little-endian: the three biases, then both dates of eight
  /// 16-bit fields each). Nothing when `blob` is not of exactly `BlobLength` bytes.
  static std::optional<clsTimeZoneInformation> FromBlob(std::span<const std::uint8_t> blob);
  std::vector<std::uint8_t> ToBlob() const;
};

}  // namespace wattlark
