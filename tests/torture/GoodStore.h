#pragma once

#include <algorithm>
#include <set>

#include "app/ProfileData.h"
#include "config/modRegistry.h"
#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/sqlite/SqliteDatabase.h"
#include "twins/HandClock.h"
#include "twins/Meters.h"

namespace wattlark {

/// The usage to date of each meter that a store has, by name, as the program reads it.
inline std::map<std::string, double> StoredTotals(Registry& registry) {
  const RegionalSettings regional = RegionalSettings::UnitedStates();
  modRegistry store(registry);
  ProfileData profile(regional);
  profile.Load(store, "log.csv", At("2026-11-16T20:10:00"));
  std::map<std::string, double> totals;
  for (const auto& meter : profile.Meters()) {
    totals[meter->Name()] = meter->Statistics().Usage(ToDate);
  }
  return totals;
}

/// A store of many meters, some values of which stand in its log, and what damage may take of it.
/// Where its rows lie in the file is found by searching for their bytes: what a damaged place can
/// cost is thus known without a database.
class GoodStore {
 public:
  static constexpr int kMeters = 20;
  static constexpr std::size_t kPageSize = 4096;

  static std::string MeterName(int number) { return "Meter " + std::to_string(10 + number); }
  /// Energy of a meter that no other one has.
  static double ToDateOf(int number) { return 1000.5 + 77 * number; }

  /// Where a file differs from a good one. Of a page that was cut off nothing is taken.
  struct Damage {
    Damage(const std::string& good, const std::string& bad) {
      for (std::size_t at = 0; at < bad.size(); ++at) {
        if (bad[at] != good[at]) offsets.insert(at), pages.insert(at / kPageSize);
      }
      for (std::size_t page = bad.size() / kPageSize; page * kPageSize < good.size(); ++page) {
        pages.insert(page);
      }
    }
    std::set<std::size_t> offsets;
    std::set<std::size_t> pages;
  };
  struct Loss {
    std::size_t missing = 0;
    std::size_t changed = 0;
    std::vector<std::string> problems;  ///< what the damage does not account for
  };

  /// Makes the store in the folder `profile`.
  explicit GoodStore(std::string profile) : profile_(std::move(profile)) {
    Make();
    bytes_ = FileBytes(File());
    FindRows();
  }

  const std::string& Bytes() const { return bytes_; }

  /// Holds what was read from the damaged store against this one.
  Loss Compare(const Damage& damage, bool isSetAside, Registry& registry) const {
    Loss loss;
    const auto isDamaged = [&](Place place) { return damage.pages.contains(place.Page()); };
    const bool isLogDamaged = std::ranges::any_of(
        logPages_, [&](std::size_t page) { return damage.pages.contains(page); });
    for (const auto& [path, key] : keys_) {
      const bool isKeyGone = isSetAside && std::ranges::all_of(key.copies, isDamaged);
      for (const Value& value : key.values) {
        const auto stored = registry.Read(Hive::CurrentUser, path, value.name);
        const auto damaged = damage.offsets.lower_bound(value.place.begin - kHead);
        const bool holdsDamage = damaged != damage.offsets.end() && *damaged < value.place.end;
        if (!stored) {
          ++loss.missing;
          if (!isKeyGone && !(isSetAside && isDamaged(value.place)) && !holdsDamage) {
            loss.problems.push_back("lost " + path + "\\" + value.name);
          }
          continue;
        }
        const bool isNewer = value.name == kNewerValue;
        const std::string text(stored->data.begin(), stored->data.end());
        if (text == (isNewer ? newer_.at(path) : value.data)) continue;
        ++loss.changed;
        // Without its log a store falls back to its rows, and says that it is damaged.
        const bool isFallback = isNewer && text == value.data && isSetAside && isLogDamaged;
        if (!isFallback && !holdsDamage) {
          loss.problems.push_back("wrong " + path + "\\" + value.name + ": " + text);
        }
      }
    }
    const std::string meters = modRegistry::AppKeyPath("", "KillAWatts");
    for (std::string name : registry.SubKeys(Hive::CurrentUser, meters)) {
      if (name.starts_with('m')) name[0] = 'M';  // as an index has it
      if (!keys_.contains(meters + "\\" + name)) {
        loss.problems.push_back("a meter that never was: " + name);
      }
    }
    return loss;
  }

  /// Whether no page with a row of the meter has any damage.
  bool IsWhole(int number, const Damage& damage) const {
    const Key& key = keys_.at(modRegistry::AppKeyPath("", "KillAWatts\\" + MeterName(number)));
    const auto isWhole = [&](Place place) { return !damage.pages.contains(place.Page()); };
    return std::ranges::any_of(key.copies, isWhole) &&
           std::ranges::all_of(key.values, isWhole, &Value::place);
  }

 private:
  struct Place {
    std::size_t begin = 0;  ///< the record's bytes in the file; the few before are the cell's head
    std::size_t end = 0;
    std::size_t Page() const { return begin / kPageSize; }
  };
  struct Value {
    std::string name;
    std::string data;
    Place place;
  };
  struct Key {
    std::vector<Place> copies;  ///< in the table and in an index: either is enough
    std::vector<Value> values;
  };
  static constexpr std::size_t kHead = 16;
  static constexpr const char* kNewerValue = "PeakToDate";

  std::string File() const { return profile_ + "/wattlark.db"; }

  void Make() {
    const RegionalSettings regional = RegionalSettings::UnitedStates();
    const StoreOpening opening = OpenStore(profile_);
    Registry& registry = *opening.registry;
    modRegistry store(registry);
    ProfileData profile(regional);
    profile.Load(store, "log.csv", At("2026-11-16T20:10:00"));
    for (int number = 0; number < kMeters; ++number) {
      MeterStatistics& statistics =
          AddMeter(profile.Meters(), MeterName(number), static_cast<std::int16_t>(number + 1))
              .Statistics();
      statistics.SetTimestamp(At("2026-11-16T20:10:00"));
      for (int period = 0; period < PeriodCount; ++period) {
        statistics.SetUsage(period, ToDateOf(number) + (period == ToDate ? 0 : 1 + period));
        statistics.SetPeak(period, 612.25 + number);
      }
      for (int interval = 0; interval < IntervalCount; ++interval) {
        std::ranges::fill(statistics.DemandRecent(interval), 100.125 + number);
        std::ranges::fill(statistics.UsageRecent(interval), 200.5 + number);
      }
    }
    registry.Begin();
    bool isMade = profile.SaveAll(store) && registry.Commit();
    // A value of each meter is newer than its row.
    registry.Begin();
    registry.MarkProgress();
    for (int number = 0; number < kMeters; ++number) {
      const std::string section = "KillAWatts\\" + MeterName(number);
      const std::string peak = "999.25" + std::to_string(number);
      store.SaveAppSetting("", section, kNewerValue, peak);
      newer_[modRegistry::AppKeyPath("", section)] = peak + '\0';
    }
    isMade = isMade && registry.Commit();
    if (!isMade) throw std::runtime_error("the good store cannot be made");
  }

  void FindRows() {
    SqliteDatabase database;
    database.Open(File(), SQLITE_OPEN_READONLY, 0);
    SqliteStatement root(
        database, "SELECT rootpage FROM sqlite_schema WHERE name IN ('change', 'generation')");
    while (root.Step() == SQLITE_ROW) {
      logPages_.insert(static_cast<std::size_t>(root.Integer(0)) - 1);
    }
    if (logPages_.size() != 2) throw std::runtime_error("the good store has no log");
    std::map<std::int64_t, std::string> paths;
    SqliteStatement key(database, "SELECT id, parent, folded, path FROM key");
    while (key.Step() == SQLITE_ROW) {
      const std::string folded = key.Text(2);
      const std::string path = key.Text(3);
      // The names of the keys above are part of every path below.
      if (path.find("KillAWatts\\") == std::string::npos) continue;
      paths[key.Integer(0)] = path;
      keys_[path].copies = {Find(Number(key.Integer(1)) + folded + path),
                            Find(folded + Number(key.Integer(0)), folded + path)};
    }
    SqliteStatement row(database, "SELECT key, folded, name, type, data FROM value");
    while (row.Step() == SQLITE_ROW) {
      const auto path = paths.find(row.Integer(0));
      if (path == paths.end()) continue;
      const auto data = row.Bytes(4);
      const std::string text(data.begin(), data.end());
      keys_.at(path->second)
          .values.push_back({row.Text(2), text,
                             Find(Number(row.Integer(0)) + row.Text(1) + row.Text(2) +
                                  Number(row.Integer(3)) + text)});
    }
  }
  /// A small whole number as a record's body holds it: 0 and 1 are kept in the record's head.
  static std::string Number(std::int64_t value) {
    if (value == 0 || value == 1) return {};
    if (value < 128) return {static_cast<char>(value)};
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
  }
  /// The only place of `text` in the file that is not one of `except`.
  Place Find(const std::string& text, const std::string& except = "\xFF\xFF") const {
    std::vector<std::size_t> found;
    for (std::size_t at = 0; (at = bytes_.find(text, at)) != std::string::npos; ++at) {
      if (bytes_.compare(at, except.size(), except) != 0) found.push_back(at);
    }
    if (found.size() != 1) throw std::runtime_error("a row is not there once: " + text);
    return {found[0], found[0] + text.size()};
  }

  std::string profile_;
  std::string bytes_;
  std::map<std::string, Key> keys_;
  std::map<std::string, std::string> newer_;  ///< values in the log, by the meter's path
  std::set<std::size_t> logPages_;
};

}  // namespace wattlark
