#include "timezone/clsTimeZoneInformation.h"

#include <array>

namespace wattlark {

namespace {

using DateField = std::uint16_t clsSystemTime::*;
constexpr std::array<DateField, 8> kDateFields = {
    &clsSystemTime::wYear,   &clsSystemTime::wMonth,        &clsSystemTime::wDayOfWeek,
    &clsSystemTime::wDay,    &clsSystemTime::wHour,         &clsSystemTime::wMinute,
    &clsSystemTime::wSecond, &clsSystemTime::wMilliseconds,
};

class BlobReader {
 public:
  explicit BlobReader(std::span<const std::uint8_t> blob) : rest_(blob) {}

  std::int32_t Bias() { return static_cast<std::int32_t>(Take(4)); }
  clsSystemTime Date() {
    clsSystemTime date;
    for (const DateField field : kDateFields) date.*field = static_cast<std::uint16_t>(Take(2));
    return date;
  }

 private:
  std::uint32_t Take(std::size_t bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = bytes; i-- > 0;) value = value << 8 | rest_[i];
    rest_ = rest_.subspan(bytes);
    return value;
  }

  std::span<const std::uint8_t> rest_;
};

void Append(std::vector<std::uint8_t>& blob, std::uint32_t value, std::size_t bytes) {
  for (; bytes > 0; --bytes, value >>= 8) blob.push_back(static_cast<std::uint8_t>(value & 0xFF));
}

void AppendDate(std::vector<std::uint8_t>& blob, const clsSystemTime& date) {
  for (const DateField field : kDateFields) Append(blob, date.*field, 2);
}

}  // namespace

std::optional<clsTimeZoneInformation> clsTimeZoneInformation::FromBlob(
    std::span<const std::uint8_t> blob) {
  if (blob.size() != BlobLength) return std::nullopt;
  BlobReader reader(blob);
  clsTimeZoneInformation rule;
  rule.Bias = reader.Bias();
  rule.StandardBias = reader.Bias();
  rule.DaylightBias = reader.Bias();
  rule.StandardDate = reader.Date();
  rule.DaylightDate = reader.Date();
  return rule;
}

std::vector<std::uint8_t> clsTimeZoneInformation::ToBlob() const {
  std::vector<std::uint8_t> blob;
  blob.reserve(BlobLength);
  for (const std::int32_t bias : {Bias, StandardBias, DaylightBias}) {
    Append(blob, static_cast<std::uint32_t>(bias), 4);
  }
  AppendDate(blob, StandardDate);
  AppendDate(blob, DaylightDate);
  return blob;
}

}  // namespace wattlark
