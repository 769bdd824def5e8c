#include "cli/ProfileStore.h"

#include <utility>

#include "cli/CommandEnvironment.h"
#include "cli/DefaultFiles.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/sqlite/OpenStoreCopy.h"

namespace wattlark {

bool LockForChanges(ProfileLock& lock, const std::string& profileFolder, std::ostream& messages) {
  if (lock.TryAcquire()) return true;
  if (lock.Problem().empty()) {
    TellUser(messages, "A running program has the profile \"" + profileFolder +
                           "\" open. End it before the profile is changed.");
  } else {
    TellUser(messages, "The profile cannot be changed: " + lock.Problem() + ".");
  }
  return false;
}

bool ProfileStore::OpenForChanges(std::ostream& messages) {
  lock_.emplace(folder_);
  if (!LockForChanges(*lock_, folder_, messages)) return false;
  StoreOpening opening = OpenStore(folder_);
  if (!opening.message.empty()) TellUser(messages, opening.message);
  if (!opening.savesChanges || !Take(std::move(opening.registry))) return false;
  // A change makes the application key, behind which older settings would never be taken over.
  if (registry_->Begin()) {
    values_->MigrateLegacySettings(ApplicationTitle, false);
    registry_->Commit();
  }
  return true;
}

bool ProfileStore::OpenCopy(std::ostream& messages) {
  StoreOpening opening = OpenStoreCopy(folder_);
  if (!opening.message.empty()) TellUser(messages, opening.message);
  return Take(std::move(opening.registry));
}

bool ProfileStore::Load(ProfileData& profile, std::ostream& messages) {
  // Within a transaction a lock of another process cannot make stored meters look missing, which
  // a save would then delete.
  bool loaded = registry_->Begin();
  if (loaded) {
    profile.Load(*values_, DefaultCSVFilename(folder_), DateTime());
    loaded = registry_->ErrorText().empty();
    registry_->Rollback();
  }
  if (!loaded) TellUser(messages, "The meters could not be read: " + registry_->ErrorText());
  for (const std::string& problem : profile.Problems()) TellUser(messages, problem);
  return loaded;
}

bool ProfileStore::Take(std::unique_ptr<Registry> registry) {
  if (registry == nullptr) return false;
  registry_ = std::move(registry);
  values_.emplace(*registry_);
  return true;
}

}  // namespace wattlark
