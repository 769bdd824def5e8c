#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Registry.h"
#include "timezone/TimeZoneRules.h"

namespace wattlark {

/// What a zone's key says beside its rules; UTF-8.
struct ZoneTexts {
  std::string display;
  std::string standardName;
  std::string daylightName;
};

/// A registry in memory with one zone's key and nothing else, so that the reader of the system's
/// zones also serves systems that keep their zones elsewhere. To its users it is read-only: every
/// change is refused.
class TimeZoneRegistry final : public Registry {
 public:
  /// Replaces the zone. `keyName` is the name by which `GetTimeZoneByName` finds it.
  void Serve(const std::string& keyName, const ZoneTexts& texts, const TimeZoneRules& rules);

  bool KeyExists(Hive hive, const std::string& path) override;
  std::vector<std::string> SubKeys(Hive hive, const std::string& path) override;
  std::optional<RegistryValue> Read(Hive hive, const std::string& path,
                                    const std::string& name) override;
  std::vector<NamedRegistryValue> Values(Hive hive, const std::string& path) override;

  bool CreateKey(Hive, const std::string&) override { return Refuse(); }
  bool DeleteKey(Hive, const std::string&) override { return Refuse(); }
  bool Write(Hive, const std::string&, const std::string&, const RegistryValue&) override {
    return Refuse();
  }
  bool DeleteValue(Hive, const std::string&, const std::string&) override { return Refuse(); }
  bool Begin() override { return Refuse(); }
  bool Commit() override { return Refuse(); }
  void Rollback() override {}
  std::string ErrorText() const override { return errorText_; }

 private:
  struct Key {
    std::string path;
    std::vector<NamedRegistryValue> values;
  };

  bool Refuse();
  const Key* Find(Hive hive, const std::string& path) const;
  void AddKey(const std::string& path, std::vector<NamedRegistryValue> values);

  std::vector<Key> keys_;  ///< below the hive `LocalMachine`, every key behind the one above it
  std::string errorText_;
};

}  // namespace wattlark
