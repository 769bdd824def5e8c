#pragma once

#include <string>

#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

/// A sound store as a whole, as it was at one moment, in memory: what a backup is made from and a
/// store is restored from. Operations answer an empty text, or why they failed, as a sentence.
class StoreSnapshot {
 public:
  /// Takes the store `file`, of a profile or a backup, which is only read; a program may be using
  /// it. Fails unless the store is whole and of a version that this program knows. A lock is waited
  /// for up to `waitMilliseconds`.
  std::string Take(const std::string& file, int waitMilliseconds = 2000);

  /// Writes it as a file of its own, whole or not at all, for its user alone. Without `replaces`, a
  /// file that is there already stays, and this fails.
  std::string Write(const std::string& file, bool replaces) const;

  /// Puts it in the place of the profile's store, which must not be in use. The store that was
  /// there is kept untouched under another name, `aside`, which stays empty when there was none. At
  /// every moment one or the other is in place.
  std::string Restore(const std::string& profileFolder, std::string& aside) const;

 private:
  SqliteDatabase database_;
};

}  // namespace wattlark
