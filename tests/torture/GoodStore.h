#pragma once

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "app/ProfileData.h"
#include "config/modRegistry.h"
#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "torture/StoreRows.h"
#include "twins/HandClock.h"

namespace wattlark {

inline void RunSql(const std::string& file, const char* sql) {
  SqliteDatabase database;
  if (database.Open(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, 0) != SQLITE_OK ||
      database.Execute(sql) != SQLITE_OK) {
    throw std::runtime_error("no database: " + database.Problem());
  }
}

/// A store of many meters, some values of which stand in its log, and what damage may take of it.
class GoodStore {
 public:
  static constexpr int kMeters = 20;

  static std::string MeterName(int number) { return "Meter " + std::to_string(10 + number); }
  /// Energy of a meter that no other one has.
  static double ToDateOf(int number) { return 1000.5 + 77 * number; }

  struct Damage {
    std::size_t size;  ///< of the damaged file; what it lacks is damaged as well
    const std::set<std::size_t>& offsets;
  };
  struct Loss {
    std::size_t missing = 0;
    std::size_t changed = 0;
    std::vector<std::string> problems;  ///< what the damage does not account for
  };

  /// Makes the store in the folder `profile`.
  explicit GoodStore(std::string profile) : profile_(std::move(profile)) {
    Make();
    rows_ = std::make_unique<StoreRows>(File(), bytes_);
  }

  const std::string& Bytes() const { return bytes_; }
  std::size_t ValueCount() const { return rows_->ValueCount(); }

  /// Holds what was read from the damaged store against this one.
  Loss Compare(const Damage& damage, bool isSetAside, Registry& registry) const {
    Loss loss;
    const std::set<std::size_t> pages = DamagedPages(damage);
    const auto isDamaged = [&pages](const StoreRows::Place& place) {
      return std::ranges::any_of(
          pages, [&place](std::size_t page) { return place.IsOnPage(page, StoreRows::kPageSize); });
    };
    const auto holdsDamage = [&damage](const StoreRows::Place& place) {
      return std::ranges::any_of(damage.offsets, [&](std::size_t at) { return place.Holds(at); });
    };
    for (const auto& [path, key] : rows_->Keys()) {
      const bool isKeyGone = isSetAside && std::ranges::all_of(key.copies, isDamaged);
      for (const StoreRows::Value& value : key.values) {
        const auto stored = registry.Read(Hive::CurrentUser, path, value.name);
        const bool mayBeGone = isKeyGone || (isSetAside && isDamaged(value.place));
        if (!stored) {
          ++loss.missing;
          if (!mayBeGone && !holdsDamage(value.place)) {
            loss.problems.push_back("lost " + path + "\\" + value.name);
          }
          continue;
        }
        const bool isNewer = value.name == kNewerValue;
        const std::string text(stored->data.begin(), stored->data.end());
        if (text == (isNewer ? newer_.at(path) : value.data)) continue;
        ++loss.changed;
        // Without its log a store falls back to its rows, and says that it is damaged.
        const bool isFallback = isNewer && text == value.data && isSetAside &&
                                std::ranges::any_of(pages, [this](std::size_t page) {
                                  return logPages_.contains(page);
                                });
        if (!isFallback && !holdsDamage(value.place)) {
          loss.problems.push_back("wrong " + path + "\\" + value.name + ": " + text);
        }
      }
    }
    for (const std::string& name :
         registry.SubKeys(Hive::CurrentUser, modRegistry::AppKeyPath("", "KillAWatts"))) {
      if (!IsMeter(name)) loss.problems.push_back("a meter that never was: " + name);
    }
    return loss;
  }

  /// Whether no page with a row of the meter has any damage.
  bool IsWhole(int number, const Damage& damage) const {
    const StoreRows::Key& key =
        rows_->Keys().at(modRegistry::AppKeyPath("", "KillAWatts\\" + MeterName(number)));
    const auto isWhole = [&](const StoreRows::Place& place) {
      const std::size_t page = place.begin / StoreRows::kPageSize;
      return (page + 1) * StoreRows::kPageSize <= damage.size &&
             std::ranges::none_of(damage.offsets, [page](std::size_t offset) {
               return offset / StoreRows::kPageSize == page;
             });
    };
    return std::ranges::any_of(key.copies, isWhole) &&
           std::ranges::all_of(key.values,
                               [&](const StoreRows::Value& value) { return isWhole(value.place); });
  }

 private:
  std::string File() const { return profile_ + "/wattlark.db"; }

  void Make() {
    const RegionalSettings regional = RegionalSettings::UnitedStates();
    {
      const StoreOpening opening = OpenStore(profile_);
      modRegistry store(*opening.registry);
      ProfileData profile(regional);
      profile.Load(store, "log.csv", At("2026-11-16T20:10:00"));
      for (int number = 0; number < kMeters; ++number) {
        auto meter = std::make_unique<clsKillAWatt>();
        meter->SetName(MeterName(number));
        meter->SetXBeeAddress(static_cast<std::int16_t>(number + 1));
        MeterStatistics& statistics = meter->Statistics();
        statistics.SetTimestamp(At("2026-11-16T20:10:00"));
        for (int period = 0; period < PeriodCount; ++period) {
          statistics.SetUsage(period, ToDateOf(number) + (period == ToDate ? 0 : 1 + period));
          statistics.SetPeak(period, 612.25 + number);
        }
        for (int interval = 0; interval < IntervalCount; ++interval) {
          std::ranges::fill(statistics.DemandRecent(interval), 100.125 + number);
          std::ranges::fill(statistics.UsageRecent(interval), 200.5 + number);
        }
        profile.Meters().Add(std::move(meter));
      }
      opening.registry->Begin();
      if (!profile.SaveAll(store) || !opening.registry->Commit()) {
        throw std::runtime_error("the good store cannot be made");
      }
      KeepSomeInTheLog(*opening.registry);
    }
    bytes_ = FileBytes(File());
    for (const char* sql : {"SELECT rootpage FROM sqlite_schema WHERE name = 'change'",
                            "SELECT rootpage FROM sqlite_schema WHERE name = 'generation'"}) {
      SqliteDatabase database;
      database.Open(File(), SQLITE_OPEN_READONLY, 0);
      SqliteStatement row(database, sql);
      if (row.Step() != SQLITE_ROW) throw std::runtime_error("the good store has no log");
      logPages_.insert(static_cast<std::size_t>(row.Integer(0)) - 1);
    }
  }

  /// A value of each meter that is newer than its row.
  void KeepSomeInTheLog(Registry& registry) {
    modRegistry store(registry);
    registry.Begin();
    registry.MarkProgress();
    for (int number = 0; number < kMeters; ++number) {
      const std::string section = "KillAWatts\\" + MeterName(number);
      const std::string peak = "999.25" + std::to_string(number);
      store.SaveAppSetting("", section, kNewerValue, peak);
      newer_[modRegistry::AppKeyPath("", section)] = peak + '\0';
    }
    if (!registry.Commit()) throw std::runtime_error("the good store gets no log");
  }

  /// Of a page that was cut off nothing is taken.
  std::set<std::size_t> DamagedPages(const Damage& damage) const {
    std::set<std::size_t> pages;
    for (const std::size_t offset : damage.offsets) pages.insert(offset / StoreRows::kPageSize);
    for (std::size_t at = damage.size / StoreRows::kPageSize * StoreRows::kPageSize;
         at < bytes_.size(); at += StoreRows::kPageSize) {
      pages.insert(at / StoreRows::kPageSize);
    }
    return pages;
  }

  bool IsMeter(std::string name) const {
    if (!name.empty()) name[0] = static_cast<char>(std::toupper(name[0]));
    return rows_->Keys().contains(modRegistry::AppKeyPath("", "KillAWatts\\" + name));
  }

  static constexpr const char* kNewerValue = "PeakToDate";

  std::string profile_;
  std::string bytes_;
  std::unique_ptr<StoreRows> rows_;
  std::map<std::string, std::string> newer_;  ///< values in the log, by the meter's path
  std::set<std::size_t> logPages_;
};

}  // namespace wattlark
