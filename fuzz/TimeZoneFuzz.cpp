// A zone's keys from any bytes: reading ends, and a conversion differs from local time by the
// biases alone. Rules made of any offsets that a zone could have are right at the moment they are
// made.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "Require.h"
#include "timezone/TimeZoneRegistry.h"
#include "timezone/TimeZoneRules.h"
#include "timezone/modTimeZone.h"

namespace {

using namespace wattlark;

/// Numbers from the input, and zeros behind its end.
class Input {
 public:
  explicit Input(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  bool AtEnd() const { return rest_.empty(); }
  std::uint64_t Number(std::size_t bytes) {
    std::uint64_t number = 0;
    for (const std::uint8_t byte : Bytes(bytes)) number = number << 8 | byte;
    return number;
  }
  std::vector<std::uint8_t> Bytes(std::size_t count) {
    const auto taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return {taken.begin(), taken.end()};
  }

 private:
  std::span<const std::uint8_t> rest_;
};

/// Answers for every key with the same values.
class HostileRegistry final : public Registry {
 public:
  std::map<std::string, RegistryValue> values;

  std::optional<RegistryValue> Read(Hive, const std::string&, const std::string& name) override {
    const auto found = values.find(name);
    if (found == values.end()) return std::nullopt;
    return found->second;
  }
  bool KeyExists(Hive, const std::string&) override { return true; }
  std::vector<std::string> SubKeys(Hive, const std::string&) override { return {}; }
  std::vector<NamedRegistryValue> Values(Hive, const std::string&) override { return {}; }
  bool CreateKey(Hive, const std::string&) override { return false; }
  bool DeleteKey(Hive, const std::string&) override { return false; }
  bool Write(Hive, const std::string&, const std::string&, const RegistryValue&) override {
    return false;
  }
  bool DeleteValue(Hive, const std::string&, const std::string&) override { return false; }
  bool Begin() override { return false; }
  bool Commit() override { return false; }
  void Rollback() override {}
  std::string ErrorText() const override { return {}; }
};

/// A local time by its year and second in it; then the first and last year; then one rule after
/// the other, each with the length of its blob before it.
void ReadStoredZone(Input input) {
  const int year = static_cast<int>(input.Number(2) % 9999) + 1;
  const DateTime local = DateTime::FromCivil({.year = year})
                             ->PlusSeconds(static_cast<std::int64_t>(input.Number(4) % 31'536'000));
  HostileRegistry registry;
  registry.values["FirstEntry"] = {RegistryType::DWord, input.Bytes(4)};
  registry.values["LastEntry"] = {RegistryType::DWord, input.Bytes(4)};
  const RegistryValue& first = registry.values["FirstEntry"];
  std::uint32_t ruleYear = 0;
  for (std::size_t i = first.data.size(); i-- > 0;) ruleYear = ruleYear << 8 | first.data[i];
  for (std::string name = "TZI"; !input.AtEnd(); name = std::to_string(ruleYear++)) {
    const std::vector<std::uint8_t> blob = input.Bytes(input.Number(1));
    const auto rule = clsTimeZoneInformation::FromBlob(blob);
    Require(rule.has_value() == (blob.size() == clsTimeZoneInformation::BlobLength));
    Require(!rule || rule->ToBlob() == blob);
    registry.values["Display"] = registry.values["Std"] = {RegistryType::String, blob};
    registry.values[name] = {RegistryType::Binary, blob};
  }

  const clsTimeZone zone = GetTimeZoneByName(modRegistry(registry), "Zone");
  Require(zone.DynamicTZI.size() <= registry.values.size());
  Require(zone.DisplayName.find('\0') == std::string::npos);
  const DateTime standard = local.PlusMinutes(zone.Bias(0));
  const DateTime daylight = standard.PlusMinutes(zone.DaylightBias(year));
  const DateTime utc = LocalToUTC(local, zone);
  Require(utc == (IsDaylightTime(local, zone, false) ? daylight : standard));
  if (IsDaylightTime(local, zone, true)) Require(utc == daylight);
}

std::int32_t OffsetAt(const ZoneOffsets& zone, DateTime utc) {
  std::int32_t offset = zone.firstOffset;
  for (const OffsetChange& change : zone.changes) {
    if (change.utc <= utc) offset = change.offset;
  }
  return offset;
}

/// The first offset and the moment; then changes, each by its distance from the one before (hours,
/// more than any two offsets differ) and its offset.
void MakeRules(Input input) {
  constexpr int kFirstYear = 2016;
  constexpr int kLastYear = 2036;
  constexpr std::int64_t kSpan = std::int64_t{20} * 365 * 86'400'000;
  constexpr std::int64_t kLeastDistance = 49;
  const auto nextOffset = [&] { return static_cast<std::int32_t>(input.Number(2) % 2881) - 1440; };
  const DateTime begin = *DateTime::FromCivil({.year = kFirstYear, .day = 3});
  ZoneOffsets zone;
  zone.firstOffset = nextOffset();
  const DateTime now = begin.PlusMilliseconds(static_cast<std::int64_t>(input.Number(5)) % kSpan);
  DateTime change = begin;
  while (!input.AtEnd() && zone.changes.size() < 100) {
    change = change.PlusHours(kLeastDistance + static_cast<std::int64_t>(input.Number(2)));
    zone.changes.push_back({change, nextOffset()});
  }

  const std::int32_t offset = OffsetAt(zone, now);
  const DateTime local = now.PlusMinutes(offset);
  TimeZoneRegistry registry;
  registry.Serve("Zone", {}, MakeTimeZoneRules(zone, kFirstYear, kLastYear, local));
  const clsTimeZone rules = GetTimeZoneByName(modRegistry(registry), "Zone");
  Require(rules.FirstTZI == kFirstYear && rules.LastTZI == kLastYear);
  const auto shows = [&](std::int32_t other) {
    const DateTime utc = local.PlusMinutes(-other);
    return utc != now && OffsetAt(zone, utc) == other;
  };
  bool repeated = shows(zone.firstOffset);
  for (const OffsetChange& other : zone.changes) repeated = repeated || shows(other.offset);
  if (!repeated) Require(LocalToUTC(local, rules) == now);
}

}  // namespace

// An even first byte has the others read as a stored zone, an odd one as offsets.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Input input(std::span(data, size).subspan(1));
  if (data[0] % 2 == 0) {
    ReadStoredZone(input);
  } else {
    MakeRules(input);
  }
  return 0;
}
