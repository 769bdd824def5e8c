#include "timezone/modTimeZone.h"

#include <algorithm>

#include "support/modText.h"

namespace wattlark {

namespace {

constexpr Hive kMachine = Hive::LocalMachine;
constexpr std::int64_t kEpsilon = 864;  // milliseconds: 0.00001 day
// No date lies outside as many years, so more rules than that could not be asked for.
constexpr std::int32_t kMostYears = 10'000;

std::string ReadText(const modRegistry& registry, const std::string& path, const char* name) {
  RegistryValue value;
  if (!registry.QueryValue(kMachine, path, name, value) || value.type != RegistryType::String) {
    return {};
  }
  return {value.data.begin(), std::find(value.data.begin(), value.data.end(), std::uint8_t{0})};
}

std::optional<std::int32_t> ReadNumber(const modRegistry& registry, const std::string& path,
                                       const char* name) {
  RegistryValue value;
  if (!registry.QueryValue(kMachine, path, name, value) || value.type != RegistryType::DWord ||
      value.data.size() != 4) {
    return std::nullopt;
  }
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | value.data[i];
  return static_cast<std::int32_t>(number);
}

std::optional<clsTimeZoneInformation> ReadRule(const modRegistry& registry, const std::string& path,
                                               const std::string& name) {
  RegistryValue value;
  if (!registry.QueryValue(kMachine, path, name, value) || value.type != RegistryType::Binary) {
    return std::nullopt;
  }
  return clsTimeZoneInformation::FromBlob(value.data);
}

void ReadYears(const modRegistry& registry, const std::string& path, clsTimeZone& zone) {
  const auto first = ReadNumber(registry, path, "FirstEntry");
  if (!first) return;
  zone.FirstTZI = *first;
  const auto last = ReadNumber(registry, path, "LastEntry");
  if (!last) return;
  zone.LastTZI = *last;
  const std::int64_t end = std::min(std::int64_t{*last} + 1, std::int64_t{*first} + kMostYears);
  for (std::int64_t year = *first; year < end; ++year) {
    const auto rule = ReadRule(registry, path, std::to_string(year));
    if (!rule) return;
    zone.AddDynamicTZI(static_cast<std::int32_t>(year)) = *rule;
  }
}

std::optional<DateTime> DayOfAbsoluteRule(const clsSystemTime& rule) {
  return DateTime::FromCivil({.year = rule.wYear, .month = rule.wMonth, .day = rule.wDay});
}

std::optional<DateTime> DayOfRelativeRule(std::int32_t year, const clsSystemTime& rule) {
  if (rule.wDayOfWeek > 6 || rule.wDay < 1 || rule.wDay > 5) return std::nullopt;
  const auto monthStart = DateTime::FromCivil({.year = year, .month = rule.wMonth, .day = 1});
  if (!monthStart) return std::nullopt;
  const int firstOccurrence = 1 + (rule.wDayOfWeek - monthStart->DayOfWeek() + 7) % 7;
  int day = firstOccurrence + 7 * (rule.wDay - 1);
  std::optional<DateTime> date;
  for (; !date; day -= 7) {
    date = DateTime::FromCivil({.year = year, .month = rule.wMonth, .day = day});
  }
  return date;
}

}  // namespace

std::string TimeZoneKeyPath(const std::string& name) {
  const std::string root = modRegistry::IsWindowsNT()
                               ? "Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones\\"
                               : "Software\\Microsoft\\Windows\\CurrentVersion\\Time Zones\\";
  return root + std::string(Trim(name));
}

clsTimeZone GetTimeZoneByName(const modRegistry& registry, const std::string& name) {
  const std::string path = TimeZoneKeyPath(name);
  clsTimeZone zone;
  zone.DisplayName = ReadText(registry, path, "Display");
  zone.StandardName = ReadText(registry, path, "Std");
  zone.DaylightName = ReadText(registry, path, "Dlt");
  zone.MapID = ReadText(registry, path, "MapID");
  zone.Index = ReadNumber(registry, path, "Index").value_or(0);
  const auto rule = ReadRule(registry, path, "TZI");
  if (!rule) return zone;
  zone.StandardRule = *rule;
  ReadYears(registry, path + "\\Dynamic DST", zone);
  return zone;
}

std::optional<clsTimeZone> GetCurrentTimeZone(TimeZoneSource& source) {
  const std::optional<std::string> name = source.CurrentZone();
  if (!name) return std::nullopt;
  return GetTimeZoneByName(modRegistry(source.Zones()), *name);
}

DateTime TransitionDate(std::int32_t year, const clsSystemTime& rule) {
  if (rule.wMonth == 0) return {};
  const auto day = rule.wYear != 0 ? DayOfAbsoluteRule(rule) : DayOfRelativeRule(year, rule);
  if (!day) return {};
  return day->PlusHours(rule.wHour).PlusMinutes(rule.wMinute).PlusSeconds(rule.wSecond);
}

bool IsDaylightTime(DateTime local, const clsTimeZone& zone, bool repeatedHourIsStandard) {
  if (!zone.ObserveDST() || local.IsNever()) return false;
  const std::int32_t year = local.Civil().year;
  const DateTime start = TransitionDate(year, zone.DaylightDate(year));
  const DateTime end = TransitionDate(year, zone.StandardDate(year));
  if (end.IsNever()) return false;
  const DateTime endReached = end.PlusMilliseconds(-kEpsilon);
  const DateTime repeatedFrom = endReached.PlusMinutes(zone.DaylightBias(year));
  if (repeatedFrom < local && local < endReached) return !repeatedHourIsStandard;
  // A start that never comes lies before every date.
  const bool started = start.IsNever() || start.PlusMilliseconds(-kEpsilon) < local;
  return started && local < endReached;
}

DateTime LocalToUTC(DateTime local, const clsTimeZone& zone) {
  if (local.IsNever()) return local;
  const DateTime utc = local.PlusMinutes(zone.Bias(0));
  if (!IsDaylightTime(local, zone, false)) return utc;
  return utc.PlusMinutes(zone.DaylightBias(local.Civil().year));
}

}  // namespace wattlark
