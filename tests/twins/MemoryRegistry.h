#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Registry.h"
#include "platform/RegistryPath.h"
#include "support/modText.h"

namespace wattlark {

/// The `Registry` port in memory, with switches that make it fail.
class MemoryRegistry : public Registry {
 public:
  bool failsWrites = false;  ///< every change fails as on a full disk
  bool failsCommit = false;
  bool failsReads = false;  ///< nothing is found, as behind another program's lock

  bool KeyExists(Hive hive, const std::string& path) override {
    return Find(hive, path) != nullptr;
  }
  bool CreateKey(Hive hive, const std::string& path) override {
    const std::string normal = NormalRegistryPath(path);
    if (normal.empty() || !MayChange()) return false;
    FindOrCreate(hive, normal);
    return true;
  }
  bool DeleteKey(Hive hive, const std::string& path) override {
    const Key* key = Find(hive, path);
    if (key == nullptr || !SubKeys(hive, path).empty() || !MayChange()) return false;
    keys_.erase(keys_.begin() + (key - keys_.data()));
    return true;
  }
  std::vector<std::string> SubKeys(Hive hive, const std::string& path) override {
    const std::string parent = FoldCase(NormalRegistryPath(path));
    std::vector<std::string> names;
    for (const Key& key : keys_) {
      const auto& [keyHive, folded] = key.place;
      if (keyHive != hive || ParentRegistryPath(folded) != parent) continue;
      names.emplace_back(RegistryKeyName(key.path));
    }
    return names;
  }
  std::optional<RegistryValue> Read(Hive hive, const std::string& path,
                                    const std::string& name) override {
    Key* key = Find(hive, path);
    if (key == nullptr) return std::nullopt;
    const auto found = FindValue(key->values, name);
    if (found == key->values.end()) return std::nullopt;
    return found->value;
  }
  bool Write(Hive hive, const std::string& path, const std::string& name,
             const RegistryValue& value) override {
    const std::string normal = NormalRegistryPath(path);
    if (normal.empty() || !MayChange()) return false;
    Key& key = FindOrCreate(hive, normal);
    const auto found = FindValue(key.values, name);
    if (found == key.values.end()) {
      key.values.push_back({name, value});
    } else {
      found->value = value;
    }
    return true;
  }
  bool DeleteValue(Hive hive, const std::string& path, const std::string& name) override {
    Key* key = Find(hive, path);
    if (key == nullptr) return false;
    const auto found = FindValue(key->values, name);
    if (found == key->values.end() || !MayChange()) return false;
    key->values.erase(found);
    return true;
  }
  std::vector<NamedRegistryValue> Values(Hive hive, const std::string& path) override {
    const Key* key = Find(hive, path);
    return key == nullptr ? std::vector<NamedRegistryValue>() : key->values;
  }
  bool Begin() override {
    if (beforeTransaction_) {
      errorText_ = "a transaction is open already";
      return false;
    }
    beforeTransaction_ = keys_;
    errorText_.clear();
    return true;
  }
  bool Commit() override {
    if (!beforeTransaction_) return false;
    if (failsCommit) errorText_ = "the disk is full";
    if (failsCommit || transactionFailed_) {
      Rollback();
      return false;
    }
    beforeTransaction_.reset();
    return true;
  }
  void Rollback() override {
    if (beforeTransaction_) keys_ = std::move(*beforeTransaction_);
    beforeTransaction_.reset();
    transactionFailed_ = false;
  }
  std::string ErrorText() const override { return errorText_; }

 private:
  struct Key {
    std::pair<Hive, std::string> place;  ///< and its folded path
    std::string path;
    std::vector<NamedRegistryValue> values;
  };
  using Keys = std::vector<Key>;  ///< in the order of their creation

  static std::vector<NamedRegistryValue>::iterator FindValue(
      std::vector<NamedRegistryValue>& values, const std::string& name) {
    return std::ranges::find_if(
        values, [&](const auto& value) { return FoldCase(value.name) == FoldCase(name); });
  }
  bool MayChange() {
    if (!failsWrites && !transactionFailed_) return true;
    transactionFailed_ = beforeTransaction_.has_value();
    errorText_ = "the disk is full";
    return false;
  }
  Key* Find(Hive hive, const std::string& path) {
    if (failsReads) errorText_ = "another program is using it";
    const auto found =
        std::ranges::find(keys_, std::pair(hive, FoldCase(NormalRegistryPath(path))), &Key::place);
    return failsReads || found == keys_.end() ? nullptr : &*found;
  }
  Key& FindOrCreate(Hive hive, const std::string& normalPath) {
    if (Key* key = Find(hive, normalPath)) return *key;
    const std::string parent(ParentRegistryPath(normalPath));
    if (!parent.empty()) FindOrCreate(hive, parent);
    return keys_.emplace_back(Key{{hive, FoldCase(normalPath)}, normalPath, {}});
  }

  Keys keys_;
  std::optional<Keys> beforeTransaction_;
  bool transactionFailed_ = false;
  std::string errorText_;
};

}  // namespace wattlark
