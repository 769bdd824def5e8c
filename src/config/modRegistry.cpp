#include "config/modRegistry.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace wattlark {

namespace {

constexpr Hive kUser = Hive::CurrentUser;

std::string ApplicationOrTitle(const std::string& applicationName) {
  return applicationName.empty() ? ApplicationTitle : applicationName;
}

std::string ValueNameOrUnnamed(const std::string& valueName) {
  return valueName == "*" ? std::string() : valueName;
}

bool IsText(RegistryType type) {
  return type == RegistryType::String || type == RegistryType::ExpandString ||
         type == RegistryType::MultiString;
}

std::string TextUpToNul(const RegistryValue& value) {
  return {value.data.begin(), std::find(value.data.begin(), value.data.end(), std::uint8_t{0})};
}

RegistryValue StringValue(const std::string& text) {
  return {RegistryType::String, {text.begin(), text.end()}};
}

}  // namespace

std::string modRegistry::AppKeyPath(const std::string& applicationName,
                                    const std::string& section) {
  std::string path = "Software\\" + std::string(CompanyName) + "\\";
  path += ApplicationOrTitle(applicationName);
  if (!section.empty()) path += "\\" + section;
  return path;
}

std::string modRegistry::GetAppSetting(const std::string& applicationName,
                                       const std::string& section, const std::string& valueName,
                                       const std::string& defaultText) const {
  const std::optional<RegistryValue> value =
      registry_.Read(kUser, AppKeyPath(applicationName, section), ValueNameOrUnnamed(valueName));
  if (!value || !IsText(value->type)) return defaultText;
  std::string text = TextUpToNul(*value);
  return text.empty() ? defaultText : text;
}

bool modRegistry::SaveAppSetting(const std::string& applicationName, const std::string& section,
                                 const std::string& valueName, const std::string& text) {
  RegistryValue value = StringValue(text);
  value.data.push_back(0);
  return registry_.Write(kUser, AppKeyPath(applicationName, section), ValueNameOrUnnamed(valueName),
                         value);
}

bool modRegistry::DeleteAppSetting(const std::string& applicationName, const std::string& section,
                                   const std::string& valueName) {
  return registry_.DeleteValue(kUser, AppKeyPath(applicationName, section),
                               ValueNameOrUnnamed(valueName));
}

bool modRegistry::DeleteAppSection(const std::string& applicationName, const std::string& section) {
  const std::string path = AppKeyPath(applicationName, section);
  for (const std::string& child : registry_.SubKeys(kUser, path)) {
    const std::string childPath = path + "\\" + child;
    for (const std::string& grandchild : registry_.SubKeys(kUser, childPath)) {
      const std::string grandchildPath = childPath + "\\" + grandchild;
      for (const std::string& lowest : registry_.SubKeys(kUser, grandchildPath)) {
        registry_.DeleteKey(kUser, grandchildPath + "\\" + lowest);
      }
      registry_.DeleteKey(kUser, grandchildPath);
    }
    registry_.DeleteKey(kUser, childPath);
  }
  return registry_.DeleteKey(kUser, path);
}

bool modRegistry::AppSectionExists(const std::string& applicationName,
                                   const std::string& section) const {
  return KeyExists(kUser, AppKeyPath(applicationName, section));
}

bool modRegistry::KeyExists(Hive hive, const std::string& path) const {
  return registry_.KeyExists(hive, path);
}

bool modRegistry::EnumSubKeys(Hive hive, const std::string& path,
                              std::vector<std::string>& names) const {
  names = registry_.SubKeys(hive, path);
  return !names.empty();
}

bool modRegistry::EnumStringValues(Hive hive, const std::string& path,
                                   std::vector<std::string>& names,
                                   std::vector<std::string>& texts) const {
  if (!registry_.KeyExists(hive, path)) return false;
  for (const NamedRegistryValue& entry : registry_.Values(hive, path)) {
    if (entry.value.type != RegistryType::String) continue;
    names.push_back(entry.name);
    texts.push_back(TextUpToNul(entry.value));
  }
  return true;
}

bool modRegistry::QueryValue(Hive hive, const std::string& path, const std::string& valueName,
                             RegistryValue& value) const {
  std::optional<RegistryValue> found = registry_.Read(hive, path, valueName);
  if (!found) return false;
  value = std::move(*found);
  if (IsText(value.type) && !value.data.empty() && value.data.back() == 0) value.data.pop_back();
  return true;
}

bool modRegistry::SetStringValue(Hive hive, const std::string& path, const std::string& valueName,
                                 const std::string& text) {
  return registry_.Write(hive, path, valueName, StringValue(text));
}

bool modRegistry::DeleteValue(Hive hive, const std::string& path, const std::string& valueName) {
  return registry_.DeleteValue(hive, path, valueName);
}

bool modRegistry::DeleteKey(Hive hive, const std::string& path) {
  return registry_.DeleteKey(hive, path);
}

void modRegistry::MigrateLegacySettings(const std::string& applicationName, bool overwrite) {
  if (AppSectionExists(applicationName, "") && !overwrite) return;
  const std::string oldPath = OlderSettingsKey + ApplicationOrTitle(applicationName);
  std::vector<std::string> sections;
  if (!EnumSubKeys(kUser, oldPath, sections)) return;
  for (const std::string& section : sections) {
    std::vector<std::string> names;
    std::vector<std::string> texts;
    EnumStringValues(kUser, oldPath + "\\" + section, names, texts);
    for (std::size_t i = 0; i < names.size(); ++i) {
      SaveAppSetting(applicationName, section, names[i], texts[i]);
    }
  }
}

}  // namespace wattlark
