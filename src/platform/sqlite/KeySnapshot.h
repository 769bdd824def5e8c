#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Registry.h"

namespace wattlark {

/// The values of one key as they were a moment ago. A program that reads a key value by value gets
/// them from one look at the file instead of locking it for each. Every value is handed out once,
/// and for a tenth of a second, so that no later read misses what another process has changed.
class KeySnapshot {
 public:
  void Clear() { values_.clear(), isFilled_ = false; }
  /// Begins a snapshot; names and paths are folded ones.
  void Start(Hive hive, const std::string& path) {
    Clear();
    hive_ = hive;
    path_ = path;
    time_ = std::chrono::steady_clock::now();
    isFilled_ = true;
    next_ = 0;
  }
  void Add(std::string name, std::optional<RegistryValue> value) {
    values_.push_back({std::move(name), std::move(value), false});
  }

  /// Whether it is of this key and young enough to be used.
  bool Covers(Hive hive, const std::string& path) const {
    const auto age = std::chrono::steady_clock::now() - time_;
    return isFilled_ && age <= std::chrono::milliseconds(100) && hive == hive_ && path == path_;
  }
  /// False when the value has to be read from the file; else `value` is the stored one or nothing
  /// when there is none. Whatever its age: a process may be held up right after it has looked.
  bool Take(const std::string& name, std::optional<RegistryValue>& value) {
    if (!isFilled_) return false;
    // Values are mostly read in the order in which they were written.
    for (std::size_t step = 0; step < values_.size(); ++step, ++next_) {
      if (next_ >= values_.size()) next_ = 0;
      Entry& entry = values_[next_];
      if (entry.name != name) continue;
      if (entry.isTaken) return false;
      entry.isTaken = true;
      value = std::move(entry.value);
      return true;
    }
    value.reset();
    return true;
  }

 private:
  struct Entry {
    std::string name;
    std::optional<RegistryValue> value;
    bool isTaken;
  };

  bool isFilled_ = false;
  Hive hive_ = Hive::CurrentUser;
  std::string path_;
  std::chrono::steady_clock::time_point time_;
  std::vector<Entry> values_;
  std::size_t next_ = 0;
};

}  // namespace wattlark
