#include "timezone/TimeZoneRegistry.h"

#include <cstdint>
#include <utility>

#include "platform/RegistryPath.h"
#include "support/modText.h"
#include "timezone/modTimeZone.h"

namespace wattlark {

namespace {

NamedRegistryValue Text(const char* name, const std::string& text) {
  RegistryValue value{RegistryType::String, {text.begin(), text.end()}};
  value.data.push_back(0);
  return {name, std::move(value)};
}

NamedRegistryValue Number(const char* name, std::int32_t number) {
  RegistryValue value{RegistryType::DWord, {}};
  for (int shift = 0; shift < 32; shift += 8) {
    value.data.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(number) >> shift));
  }
  return {name, std::move(value)};
}

NamedRegistryValue Rule(std::string name, const clsTimeZoneInformation& rule) {
  return {std::move(name), {RegistryType::Binary, rule.ToBlob()}};
}

}  // namespace

void TimeZoneRegistry::Serve(const std::string& keyName, const ZoneTexts& texts,
                             const TimeZoneRules& rules) {
  keys_.clear();
  const std::string path = NormalRegistryPath(TimeZoneKeyPath(keyName));
  AddKey(path, {Text("Display", texts.display), Text("Std", texts.standardName),
                Text("Dlt", texts.daylightName), Text("MapID", ""), Number("Index", 0),
                Rule("TZI", rules.standard)});
  if (rules.years.empty()) return;
  const auto count = static_cast<std::int32_t>(rules.years.size());
  std::vector<NamedRegistryValue> years = {Number("FirstEntry", rules.firstYear),
                                           Number("LastEntry", rules.firstYear + count - 1)};
  std::int32_t year = rules.firstYear;
  for (const clsTimeZoneInformation& rule : rules.years) {
    years.push_back(Rule(std::to_string(year++), rule));
  }
  AddKey(path + "\\Dynamic DST", std::move(years));
}

void TimeZoneRegistry::AddKey(const std::string& path, std::vector<NamedRegistryValue> values) {
  const std::string parent(ParentRegistryPath(path));
  if (!parent.empty() && Find(Hive::LocalMachine, parent) == nullptr) AddKey(parent, {});
  keys_.push_back({path, std::move(values)});
}

const TimeZoneRegistry::Key* TimeZoneRegistry::Find(Hive hive, const std::string& path) const {
  if (hive != Hive::LocalMachine) return nullptr;
  const std::string wanted = FoldCase(NormalRegistryPath(path));
  for (const Key& key : keys_) {
    if (FoldCase(key.path) == wanted) return &key;
  }
  return nullptr;
}

bool TimeZoneRegistry::Refuse() {
  errorText_ = "the time zones of this system cannot be changed";
  return false;
}

bool TimeZoneRegistry::KeyExists(Hive hive, const std::string& path) {
  return Find(hive, path) != nullptr;
}

std::vector<std::string> TimeZoneRegistry::SubKeys(Hive hive, const std::string& path) {
  std::vector<std::string> names;
  if (hive != Hive::LocalMachine) return names;
  const std::string parent = FoldCase(NormalRegistryPath(path));
  for (const Key& key : keys_) {
    if (FoldCase(ParentRegistryPath(key.path)) == parent) {
      names.emplace_back(RegistryKeyName(key.path));
    }
  }
  return names;
}

std::optional<RegistryValue> TimeZoneRegistry::Read(Hive hive, const std::string& path,
                                                    const std::string& name) {
  const Key* key = Find(hive, path);
  if (key == nullptr) return std::nullopt;
  const std::string wanted = FoldCase(name);
  for (const NamedRegistryValue& entry : key->values) {
    if (FoldCase(entry.name) == wanted) return entry.value;
  }
  return std::nullopt;
}

std::vector<NamedRegistryValue> TimeZoneRegistry::Values(Hive hive, const std::string& path) {
  const Key* key = Find(hive, path);
  return key == nullptr ? std::vector<NamedRegistryValue>() : key->values;
}

}  // namespace wattlark
