#pragma once

#include <cstdint>
#include <string>

#include "support/RegistryValues.h"
#include "timezone/clsTimeZone.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {

inline clsSystemTime Relative(int month, int dayOfWeek, int occurrence, int hour) {
  clsSystemTime rule;
  rule.wMonth = static_cast<std::uint16_t>(month);
  rule.wDayOfWeek = static_cast<std::uint16_t>(dayOfWeek);
  rule.wDay = static_cast<std::uint16_t>(occurrence);
  rule.wHour = static_cast<std::uint16_t>(hour);
  return rule;
}

inline clsSystemTime Absolute(int year, int month, int day) {
  clsSystemTime rule = Relative(month, 0, day, 0);
  rule.wYear = static_cast<std::uint16_t>(year);
  return rule;
}

/// Five hours behind UTC; daylight time from the second Sunday of March to the first of November,
/// at 02:00.
inline clsTimeZoneInformation EasternRule() {
  return {300, 0, -60, Relative(11, 0, 1, 2), Relative(3, 0, 2, 2)};
}

/// A zone's keys in a memory registry, as the system lays them out.
class StoredZone {
 public:
  explicit StoredZone(const std::string& name)
      : path_("Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones\\" + name) {}

  MemoryRegistry& Store() { return registry_; }
  void Write(const std::string& name, const RegistryValue& value) {
    registry_.Write(Hive::LocalMachine, path_, name, value);
  }
  void WriteYear(const std::string& name, const RegistryValue& value) {
    registry_.Write(Hive::LocalMachine, path_ + "\\Dynamic DST", name, value);
  }

  static RegistryValue Number(std::uint32_t number) {
    RegistryValue value{RegistryType::DWord, {}};
    for (int i = 0; i < 4; ++i, number >>= 8) {
      value.data.push_back(static_cast<std::uint8_t>(number & 0xFF));
    }
    return value;
  }
  static RegistryValue Rule(const clsTimeZoneInformation& rule) {
    return {RegistryType::Binary, rule.ToBlob()};
  }
  static RegistryValue RuleWithBias(std::int32_t bias) {
    clsTimeZoneInformation rule = EasternRule();
    rule.Bias = bias;
    return Rule(rule);
  }

 private:
  MemoryRegistry registry_;
  std::string path_;
};

}  // namespace wattlark
