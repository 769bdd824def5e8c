#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "config/RegistryTextReader.h"
#include "platform/Registry.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// Writes the application key of the store with all below it as a registry text, each key before
/// its subkeys, in the order of the store. `copy` is first made what a start of the program would
/// make of it: settings of the older location are taken over, and the regional form of its values
/// is recorded, `regional` where none is. False, with nothing written, when it has no application
/// key then.
bool WriteStoreText(Registry& copy, const RegionalSettings& regional, std::ostream& output);

/// What a registry text holds for a store.
///
/// That is the application key of the current user with all below it. A text without one may come
/// from an older release: what it has at the older location is then taken for the application key.
class StoreImport {
 public:
  /// Reads a whole text. Answers an empty text, or "NAME:LINE: what is wrong".
  std::string Read(std::istream& input, const std::string& name);

  /// Whether there is nothing for this program.
  bool IsEmpty() const { return entries_.empty(); }
  /// Values that it brings.
  std::size_t Values() const;
  /// Keys of other programs, which are left out.
  std::size_t OtherKeys() const { return otherKeys_; }
  bool IsFromOlderLocation() const { return isOlder_; }

  /// Merges into the store what the text holds, as the registry editor does: its keys and values
  /// are written over those of the same name, its deletions carried out, all else stays. With
  /// `replaces`, everything below the application key goes first. Belongs into a transaction.
  ///
  /// Answers an empty text, or why the store must be left as it was: a write failed, or date-times
  /// would be misread from then on, those of the text or of the store. A text that does not say its
  /// regional form is taken to have that of the store, else `regional`, which is then recorded.
  std::string Apply(Registry& store, const RegionalSettings& regional, bool replaces) const;

 private:
  std::vector<RegistryTextEntry> entries_;
  std::size_t otherKeys_ = 0;
  bool isOlder_ = false;
};

}  // namespace wattlark
