#include "app/ProfileData.h"

#include <algorithm>
#include <unordered_set>

#include "config/MeterEdit.h"
#include "config/modRegistry.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr const char* kMetersSection = "KillAWatts";
constexpr const char* kTotalSection = "TotalKillAWatt";
constexpr const char* kUnreadableSection = "Unreadable";
constexpr const char* kSettingsSection = "Settings";
constexpr const char* kHeaderPending = "CSVHeaderPending";

std::string MeterSection(const std::string& name) {
  return std::string(kMetersSection) + "\\" + name;
}

std::string UnreadableSection(const std::string& section) {
  return std::string(kUnreadableSection) + "\\" + section;
}

}  // namespace

ProfileData::ProfileData(const RegionalSettings& regional) : regional_(regional), text_(regional) {}

void ProfileData::Load(modRegistry& store, const std::string& csvFilenameDefault, DateTime now) {
  text_ = StoreText::Load(store, regional_);
  problems_ = LoadAppSettings(store, text_, csvFilenameDefault, settings_);
  for (std::string& problem : LoadServiceEndpoints(store, endpoints_)) {
    problems_.push_back(std::move(problem));
  }
  settings_.CSVFileChanged =
      store.GetAppSetting("", kSettingsSection, kHeaderPending, "") == StoreText::FromBoolean(true);
  LoadMeters(store);
  LoadTotal(store, now);
}

bool ProfileData::RequestCSVHeader(modRegistry& store) {
  return store.SaveAppSetting("", kSettingsSection, kHeaderPending, StoreText::FromBoolean(true));
}

void ProfileData::LoadMeters(const modRegistry& store) {
  std::vector<std::string> names;
  store.EnumSubKeys(Hive::CurrentUser, modRegistry::AppKeyPath("", kMetersSection), names);
  std::unordered_set<std::string> keys;
  for (const std::string& name : names) keys.insert(FoldCase(name));
  for (const std::string& name : names) {
    const std::string section = MeterSection(name);
    auto meter = std::make_unique<clsKillAWatt>();
    meter->SetName(name);
    std::vector<UnreadableValue> unreadable;
    if (!meter->LoadSettings(store, text_, section, &unreadable)) continue;
    // The key's name is unique; a stored name that is not, or is no key, would overwrite a meter.
    if (FoldCase(meter->Name()) != FoldCase(name) &&
        (!IsMeterKeyName(meter->Name()) || meters_.FindName(meter->Name()) != nullptr ||
         keys.contains(FoldCase(meter->Name())))) {
      meter->SetName(name);
    }
    if (meters_.Add(std::move(meter))) {
      NoteUnreadable(section, unreadable);
      continue;
    }
    SkippedMeter skipped{name, {}};
    std::vector<std::string> valueNames;
    std::vector<std::string> texts;
    store.EnumStringValues(Hive::CurrentUser, modRegistry::AppKeyPath("", section), valueNames,
                           texts);
    for (std::size_t i = 0; i < valueNames.size(); ++i) {
      skipped.values.emplace_back(valueNames[i], texts[i]);
    }
    skipped_.push_back(std::move(skipped));
  }
}

void ProfileData::LoadTotal(const modRegistry& store, DateTime now) {
  std::vector<UnreadableValue> unreadable;
  total_.SetName("Total");
  if (total_.LoadSettings(store, text_, kTotalSection, &unreadable)) {
    NoteUnreadable(kTotalSection, unreadable);
  } else {
    InitTotalKillAWatt(total_, meters_, now);
  }
}

void ProfileData::NoteUnreadable(const std::string& section,
                                 const std::vector<UnreadableValue>& values) {
  for (const auto& value : values) {
    unreadable_.emplace_back(section, value);
    problems_.push_back("The stored value \"" + value.name + "\" of " + section +
                        " could not be read: \"" + value.text + "\"");
  }
}

bool ProfileData::SaveAll(modRegistry& store) {
  const bool saved = SaveSettings(store);
  return SaveMeters(store) && saved;
}

bool ProfileData::SaveSettings(modRegistry& store) {
  text_.Save(store);
  const bool saved = SaveAppSettingsAtExit(store, text_, settings_);
  if (!settings_.CSVFileChanged) store.DeleteAppSetting("", kSettingsSection, kHeaderPending);
  return saved;
}

bool ProfileData::HasStoredMeters(const modRegistry& store) const {
  std::vector<std::string> names;
  for (const auto& meter : meters_) names.push_back(meter->Name());
  for (const auto& meter : skipped_) {
    if (IsNameTaken(meter)) return false;
    names.push_back(meter.name);
  }
  std::vector<std::string> stored;
  store.EnumSubKeys(Hive::CurrentUser, modRegistry::AppKeyPath("", kMetersSection), stored);
  return stored == names;
}

bool ProfileData::SaveProgress(modRegistry& store) const {
  bool saved = SaveUnreadable(store);
  for (const auto& meter : meters_) {
    const std::string section = MeterSection(meter->Name());
    saved = meter->SaveSettings(store, text_, section, SaveExtent::Progress) && saved;
  }
  return total_.SaveSettings(store, text_, kTotalSection, SaveExtent::Progress) && saved;
}

bool ProfileData::SaveMeters(modRegistry& store) {
  text_.Save(store);
  store.DeleteAppSection("", kMetersSection);
  bool saved = true;
  for (const auto& meter : meters_) {
    saved = meter->SaveSettings(store, text_, MeterSection(meter->Name())) && saved;
  }
  for (const auto& meter : skipped_) {
    const std::string own = MeterSection(meter.name);
    const std::string section = IsNameTaken(meter) ? UnreadableSection(own) : own;
    for (const auto& [name, value] : meter.values) {
      saved = store.SaveAppSetting("", section, name, value) && saved;
    }
  }
  saved = SaveUnreadable(store) && saved;
  return total_.SaveSettings(store, text_, kTotalSection) && saved;
}

bool ProfileData::SaveUnreadable(modRegistry& store) const {
  bool saved = true;
  for (const auto& [section, value] : unreadable_) {
    saved = store.SaveAppSetting("", UnreadableSection(section), value.name, value.text) && saved;
  }
  return saved;
}

/// A meter that has been given the name of a skipped one meanwhile owns its key.
bool ProfileData::IsNameTaken(const SkippedMeter& meter) const {
  return meters_.FindName(meter.name) != nullptr;
}

std::vector<std::string> ProfileData::SkippedMeters() const {
  std::vector<std::string> names;
  for (const auto& meter : skipped_) names.push_back(meter.name);
  return names;
}

bool ProfileData::RemoveSkipped(const std::string& name) {
  return std::erase_if(skipped_, [&](const SkippedMeter& meter) {
           return FoldCase(meter.name) == FoldCase(name);
         }) != 0;
}

void InitTotalKillAWatt(clsKillAWatt& total, const MeterCollection& meters, DateTime now) {
  total.SetName("Total");
  MeterStatistics& sums = total.Statistics();
  for (const auto& meter : meters) {
    for (const int period : {SinceReset, Today, ToDate, Yesterday}) {
      const double usage = meter->Statistics().Usage(period);
      if (HasValue(usage)) sums.SetUsage(period, sums.Usage(period) + usage);
    }
  }
  sums.SetTimestamp(now);
}

void UpdateTotalKillAWatt(clsKillAWatt& total, const MeterCollection& meters, DateTime time,
                          std::uint32_t ticks) {
  double voltsSum = 0;
  double ampsSum = 0;
  double watts = 0;
  int voltsCount = 0;
  int ampsCount = 0;
  for (const auto& meter : meters) {
    if (!meter->IsReceiving(time)) continue;
    if (HasValue(meter->ShownVolts())) {
      voltsSum += meter->Volts();
      ++voltsCount;
    }
    if (HasValue(meter->ShownAmps())) {
      ampsSum += meter->Amps();
      ++ampsCount;
    }
    watts += meter->KillAWattType() == LoadMeter ? meter->Watts() : -meter->Watts();
  }
  total.AddReading(voltsCount == 0 ? NoValue : voltsSum / voltsCount,
                   ampsCount == 0 ? NoValue : ampsSum / ampsCount, watts, time, ticks);
}

}  // namespace wattlark
