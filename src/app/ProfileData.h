#pragma once

#include <string>
#include <utility>
#include <vector>

#include "acquisition/MeterCollection.h"
#include "config/AppSettings.h"
#include "config/ServiceEndpoints.h"
#include "config/StoreText.h"
#include "support/RegionalSettings.h"

namespace wattlark {

class modRegistry;

/// Everything of a profile that the store keeps: settings, meters and the Total. Loading notes what
/// could not be read; saving never loses it: unreadable texts go to the section "Unreadable", and a
/// meter that shares its address with another one keeps its section as it is, or moves to
/// "Unreadable" when another meter has been given its name.
class ProfileData {
 public:
  /// `regional` must outlive this object.
  explicit ProfileData(const RegionalSettings& regional);

  /// Reads everything; `now` starts the periods of a Total that was never stored and is seeded from
  /// the meters. `csvFilenameDefault` is the default of the setting `CSVFilename`.
  void Load(modRegistry& store, const std::string& csvFilenameDefault, DateTime now);
  /// Settings, meters and Total. False when a write failed; call it within a transaction.
  bool SaveAll(modRegistry& store);
  /// Settings alone, in the same way.
  bool SaveSettings(modRegistry& store);
  /// Whether the store has the keys of these meters alone, in this order, so that `SaveProgress`
  /// loses nothing.
  bool HasStoredMeters(const modRegistry& store) const;
  /// Meters and Total as they are now, over what the store has of them.
  bool SaveProgress(modRegistry& store) const;
  /// Lets the CSV log start with a new header line after the next load: for a change of the meters
  /// or the file while no program runs.
  static bool RequestCSVHeader(modRegistry& store);
  /// Meters and Total alone.
  bool SaveMeters(modRegistry& store);

  AppSettings& Settings() { return settings_; }
  const AppSettings& Settings() const { return settings_; }
  /// Read once, by `Load`.
  const ServiceEndpoints& Endpoints() const { return endpoints_; }
  MeterCollection& Meters() { return meters_; }
  const MeterCollection& Meters() const { return meters_; }
  clsKillAWatt& Total() { return total_; }
  const clsKillAWatt& Total() const { return total_; }
  const StoreText& Text() const { return text_; }

  /// Names of the stored meters that were left out because their address is taken.
  std::vector<std::string> SkippedMeters() const;
  /// Forgets a skipped meter, so that it is not written back; false when there is none of that
  /// name.
  bool RemoveSkipped(const std::string& name);
  /// One readable line for every stored text that did not convert.
  const std::vector<std::string>& Problems() const { return problems_; }

 private:
  struct SkippedMeter {
    std::string name;
    std::vector<std::pair<std::string, std::string>> values;
  };

  bool IsNameTaken(const SkippedMeter& meter) const;
  bool SaveUnreadable(modRegistry& store) const;
  void LoadMeters(const modRegistry& store);
  void LoadTotal(const modRegistry& store, DateTime now);
  void NoteUnreadable(const std::string& section, const std::vector<UnreadableValue>& values);

  const RegionalSettings& regional_;
  StoreText text_;
  AppSettings settings_;
  ServiceEndpoints endpoints_;
  MeterCollection meters_;
  clsKillAWatt total_;
  std::vector<SkippedMeter> skipped_;
  std::vector<std::pair<std::string, UnreadableValue>> unreadable_;
  std::vector<std::string> problems_;
};

/// The Total's periods since reset, today, to date and yesterday start as the sums of the meters'.
void InitTotalKillAWatt(clsKillAWatt& total, const MeterCollection& meters, DateTime now);

/// Feeds the Total one reading combined from all receiving meters: mean volts and amps, the watts
/// of the loads less those of the generators.
void UpdateTotalKillAWatt(clsKillAWatt& total, const MeterCollection& meters, DateTime time,
                          std::uint32_t ticks);

}  // namespace wattlark
