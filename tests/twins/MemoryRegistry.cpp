#include "twins/MemoryRegistry.h"

#include <algorithm>

#include "platform/RegistryPath.h"
#include "support/modText.h"

namespace wattlark {

namespace {

std::vector<NamedRegistryValue>::iterator FindValue(std::vector<NamedRegistryValue>& values,
                                                    const std::string& name) {
  return std::ranges::find_if(
      values, [&](const auto& value) { return FoldCase(value.name) == FoldCase(name); });
}

}  // namespace

bool MemoryRegistry::MayChange() {
  if (!failsWrites && !transactionFailed_) return true;
  transactionFailed_ = beforeTransaction_.has_value();
  errorText_ = "the disk is full";
  return false;
}

MemoryRegistry::Key* MemoryRegistry::Find(Hive hive, const std::string& path) {
  if (failsReads) errorText_ = "another program is using it";
  const auto found =
      std::ranges::find(keys_, std::pair(hive, FoldCase(NormalRegistryPath(path))), &Key::place);
  return failsReads || found == keys_.end() ? nullptr : &*found;
}

MemoryRegistry::Key& MemoryRegistry::FindOrCreate(Hive hive, const std::string& normalPath) {
  if (Key* key = Find(hive, normalPath)) return *key;
  const std::string parent(ParentRegistryPath(normalPath));
  if (!parent.empty()) FindOrCreate(hive, parent);
  return keys_.emplace_back(Key{{hive, FoldCase(normalPath)}, normalPath, {}});
}

bool MemoryRegistry::KeyExists(Hive hive, const std::string& path) {
  return Find(hive, path) != nullptr;
}

bool MemoryRegistry::CreateKey(Hive hive, const std::string& path) {
  const std::string normal = NormalRegistryPath(path);
  if (normal.empty() || !MayChange()) return false;
  FindOrCreate(hive, normal);
  return true;
}

bool MemoryRegistry::DeleteKey(Hive hive, const std::string& path) {
  const Key* key = Find(hive, path);
  if (key == nullptr || !SubKeys(hive, path).empty() || !MayChange()) return false;
  keys_.erase(keys_.begin() + (key - keys_.data()));
  return true;
}

std::vector<std::string> MemoryRegistry::SubKeys(Hive hive, const std::string& path) {
  const std::string parent = FoldCase(NormalRegistryPath(path));
  std::vector<std::string> names;
  for (const Key& key : keys_) {
    const auto& [keyHive, folded] = key.place;
    if (keyHive != hive || ParentRegistryPath(folded) != parent) continue;
    names.emplace_back(RegistryKeyName(key.path));
  }
  return names;
}

std::optional<RegistryValue> MemoryRegistry::Read(Hive hive, const std::string& path,
                                                  const std::string& name) {
  Key* key = Find(hive, path);
  if (key == nullptr) return std::nullopt;
  const auto found = FindValue(key->values, name);
  if (found == key->values.end()) return std::nullopt;
  return found->value;
}

bool MemoryRegistry::Write(Hive hive, const std::string& path, const std::string& name,
                           const RegistryValue& value) {
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

bool MemoryRegistry::DeleteValue(Hive hive, const std::string& path, const std::string& name) {
  Key* key = Find(hive, path);
  if (key == nullptr) return false;
  const auto found = FindValue(key->values, name);
  if (found == key->values.end() || !MayChange()) return false;
  key->values.erase(found);
  return true;
}

std::vector<NamedRegistryValue> MemoryRegistry::Values(Hive hive, const std::string& path) {
  const Key* key = Find(hive, path);
  return key == nullptr ? std::vector<NamedRegistryValue>() : key->values;
}

bool MemoryRegistry::Begin() {
  if (beforeTransaction_) {
    errorText_ = "a transaction is open already";
    return false;
  }
  beforeTransaction_ = keys_;
  errorText_.clear();
  return true;
}

bool MemoryRegistry::Commit() {
  if (!beforeTransaction_) return false;
  if (failsCommit) errorText_ = "the disk is full";
  if (failsCommit || transactionFailed_) {
    Rollback();
    return false;
  }
  beforeTransaction_.reset();
  return true;
}

void MemoryRegistry::Rollback() {
  if (beforeTransaction_) keys_ = std::move(*beforeTransaction_);
  beforeTransaction_.reset();
  transactionFailed_ = false;
}

}  // namespace wattlark
