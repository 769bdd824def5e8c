#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Registry.h"

namespace wattlark {

/// The `Registry` port in memory, with switches that make it fail.
class MemoryRegistry : public Registry {
 public:
  bool failsWrites = false;  ///< every change fails as on a full disk
  bool failsCommit = false;
  bool failsReads = false;  ///< nothing is found, as behind another program's lock

  bool KeyExists(Hive hive, const std::string& path) override;
  bool CreateKey(Hive hive, const std::string& path) override;
  bool DeleteKey(Hive hive, const std::string& path) override;
  std::vector<std::string> SubKeys(Hive hive, const std::string& path) override;
  std::optional<RegistryValue> Read(Hive hive, const std::string& path,
                                    const std::string& name) override;
  bool Write(Hive hive, const std::string& path, const std::string& name,
             const RegistryValue& value) override;
  bool DeleteValue(Hive hive, const std::string& path, const std::string& name) override;
  std::vector<NamedRegistryValue> Values(Hive hive, const std::string& path) override;
  bool Begin() override;
  bool Commit() override;
  void Rollback() override;
  std::string ErrorText() const override { return errorText_; }

 private:
  struct Key {
    std::pair<Hive, std::string> place;  ///< and its folded path
    std::string path;
    std::vector<NamedRegistryValue> values;
  };
  using Keys = std::vector<Key>;  ///< in the order of their creation

  bool MayChange();
  Key* Find(Hive hive, const std::string& path);
  Key& FindOrCreate(Hive hive, const std::string& normalPath);

  Keys keys_;
  std::optional<Keys> beforeTransaction_;
  bool transactionFailed_ = false;
  std::string errorText_;
};

}  // namespace wattlark
