#pragma once

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include "support/DateTime.h"
#include "timezone/TimeZoneRules.h"

namespace wattlark {

/// A zone as the C library knows it, which shares nothing with the program's own conversions. One
/// at a time: it is the zone of the process.
class SystemZone {
 public:
  explicit SystemZone(const std::string& name) {
    ::setenv("TZ", name.c_str(), 1);
    ::tzset();
  }
  static bool IsKnown(const std::string& name) {
    return std::filesystem::exists("/usr/share/zoneinfo/" + name);
  }

  /// Minutes that local time is ahead of UTC.
  static std::int32_t Offset(DateTime utc) {
    const auto seconds = static_cast<std::time_t>(utc.Milliseconds() / 1000);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    return static_cast<std::int32_t>(local.tm_gmtoff / 60);
  }
  static DateTime Local(DateTime utc) { return utc.PlusMinutes(Offset(utc)); }

  /// Every change of the offset, found by looking at each day and halving it.
  static ZoneOffsets Changes(std::int32_t firstYear, std::int32_t lastYear) {
    const DateTime end = *DateTime::FromCivil({.year = lastYear + 1});
    DateTime at = *DateTime::FromCivil({.year = firstYear});
    ZoneOffsets zone{Offset(at), {}};
    for (; at < end; at = at.PlusHours(6)) {
      DateTime before = at;
      DateTime after = at.PlusHours(6);
      if (Offset(before) == Offset(after)) continue;
      while (before.PlusSeconds(1) < after) {
        const DateTime middle = before.PlusSeconds(before.SecondsTo(after) / 2);
        (Offset(middle) == Offset(before) ? before : after) = middle;
      }
      zone.changes.push_back({after, Offset(after)});
    }
    return zone;
  }
};

}  // namespace wattlark
