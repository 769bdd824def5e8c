#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include "app/ProfileData.h"
#include "config/modRegistry.h"
#include "platform/Registry.h"
#include "platform/linux/ProfileLock.h"

namespace wattlark {

/// Takes the profile for this process. False, with the reason in `messages`, when that fails, as it
/// does while a program runs with it.
bool LockForChanges(ProfileLock& lock, const std::string& profileFolder, std::ostream& messages);

/// The store of a profile folder as a command has it open.
class ProfileStore {
 public:
  explicit ProfileStore(std::string profileFolder) : folder_(std::move(profileFolder)) {}

  /// Takes the profile for this process and opens its store, which is created as needed. False,
  /// with the reason in `messages`, when a running program has the profile or changes could not be
  /// saved.
  bool OpenForChanges(std::ostream& messages);
  /// Opens a copy in memory: the store is neither created nor locked nor changed. False, with the
  /// reason in `messages`, when there is a store that cannot be read.
  bool OpenCopy(std::ostream& messages);

  const std::string& Folder() const { return folder_; }
  // What follows is valid after one of the two succeeded.

  /// Loads the profile and tells what could not be read; false when that is the store itself. A
  /// Total that was never stored is not seeded with the present moment: that is left to the first
  /// start.
  bool Load(ProfileData& profile, std::ostream& messages);
  Registry& Port() { return *registry_; }
  modRegistry& Values() { return *values_; }

 private:
  bool Take(std::unique_ptr<Registry> registry);

  std::string folder_;
  std::optional<ProfileLock> lock_;
  std::unique_ptr<Registry> registry_;
  std::optional<modRegistry> values_;
};

}  // namespace wattlark
