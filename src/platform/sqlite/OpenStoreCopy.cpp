#include "platform/sqlite/OpenStoreCopy.h"

#include <utility>

#include "platform/sqlite/CopyStoreFile.h"
#include "platform/sqlite/SalvageStore.h"
#include "platform/sqlite/SqliteDatabase.h"
#include "platform/sqlite/SqliteRegistry.h"
#include "platform/sqlite/StoreFile.h"

namespace wattlark {

StoreOpening OpenStoreCopy(const std::string& profileFolder, int waitMilliseconds) {
  const std::string file = StoreFile(profileFolder);
  bool isMissing = false;
  if (std::string problem = StoreFileProblem(file, isMissing); !problem.empty()) {
    return {nullptr, std::move(problem), false};
  }
  if (isMissing) return {MemoryStore(), {}, false};

  StoreOpening opening;
  SqliteDatabase copy;
  std::string problem;
  StoreCondition condition = CopyStoreFile(file, waitMilliseconds, copy, problem);
  if (condition == StoreCondition::Usable) {
    const int result = SqliteRegistry::Attach(std::move(copy), NamedStore(file), opening.registry);
    if (result != SQLITE_OK) condition = ConditionFromError(result);
  }
  switch (condition) {
    case StoreCondition::Usable:
      break;
    case StoreCondition::Empty:
      opening.registry = MemoryStore();
      break;
    case StoreCondition::Damaged:
      opening.registry = MemoryStore();
      opening.message = NamedStore(file) + " is damaged.";
      if (opening.registry != nullptr) {
        opening.message += " " + SalvageText(SalvageStore(file, *opening.registry));
      }
      break;
    case StoreCondition::Foreign:
      opening.message = "\"" + file + "\" is a database of another program.";
      break;
    case StoreCondition::Newer:
      opening.message = NamedStore(file) + " was written by a newer version of the program.";
      break;
    case StoreCondition::Locked:
      opening.message = NamedStore(file) + " is in use by another program.";
      break;
    case StoreCondition::Unreadable:
      opening.message = NamedStore(file) + " cannot be opened: " + problem + ".";
      break;
  }
  return opening;
}

}  // namespace wattlark
