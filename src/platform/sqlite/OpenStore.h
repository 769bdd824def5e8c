#pragma once

#include <memory>
#include <string>

#include "platform/Registry.h"

namespace wattlark {

struct StoreOpening {
  /// Null only while another program has locked the store.
  std::unique_ptr<Registry> registry;
  /// What the user must know, in words; empty when all is well.
  std::string message;
  /// False when changes are refused, or last no longer than the process.
  bool savesChanges = false;
};

/// Opens the store of a profile, the file "wattlark.db", and creates it and the folder when they
/// are missing (modes 0600 and 0700).
///
/// - A damaged store, and whatever else stands in its place, is set aside untouched under another
///   name; a new store takes over every value that can still be read.
/// - A store of a newer version of the program, or one that cannot be read or created, is left
/// alone;
///   the registry then lies in memory and nothing is saved.
/// - A store that can be read but not written refuses changes.
/// - A store that another program has locked is waited for up to `waitMilliseconds`, at the opening
///   and for every later change.
StoreOpening OpenStore(const std::string& profileFolder, int waitMilliseconds = 2000);

}  // namespace wattlark
