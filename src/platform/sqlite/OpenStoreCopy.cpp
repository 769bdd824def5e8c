#include "platform/sqlite/OpenStoreCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/sqlite/SalvageStore.h"
#include "platform/sqlite/SqliteDatabase.h"
#include "platform/sqlite/SqliteRegistry.h"
#include "platform/sqlite/StoreFile.h"

namespace wattlark {

namespace {

namespace fs = std::filesystem;

/// A private folder that is removed with all it holds.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::error_code error;
    std::string path = fs::temp_directory_path(error) / "wattlark-XXXXXX";
    if (!error && ::mkdtemp(path.data()) != nullptr) path_ = path;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  bool IsThere() const { return !path_.empty(); }
  std::string File(const std::string& name) const { return path_ / name; }

 private:
  fs::path path_;
};

/// What is wrong with the file as such, or an empty text.
std::string FileProblem(const std::string& file, bool& isMissing) {
  struct stat status {};
  isMissing = ::stat(file.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
  if (isMissing) return {};
  if (::faccessat(AT_FDCWD, file.c_str(), R_OK, AT_EACCESS) != 0) {
    return NamedStore(file) + " cannot be read: " + std::strerror(errno) + ".";
  }
  return S_ISREG(status.st_mode) ? std::string() : NamedStore(file) + " is not a file.";
}

StoreCondition CopyIntoMemory(const SqliteDatabase& source, const std::string& file,
                              std::unique_ptr<Registry>& registry) {
  const StoreCondition condition = ExamineStore(source);
  if (condition != StoreCondition::Usable) return condition;
  SqliteDatabase copy;
  int result = copy.Open(":memory:", SQLITE_OPEN_READWRITE, 0);
  if (result == SQLITE_OK) {
    sqlite3_backup* backup = sqlite3_backup_init(copy.Handle(), "main", source.Handle(), "main");
    sqlite3_backup_step(backup, -1);
    result = sqlite3_backup_finish(backup);
  }
  if (result == SQLITE_OK) {
    result = SqliteRegistry::Attach(std::move(copy), NamedStore(file), registry);
  }
  return result == SQLITE_OK ? StoreCondition::Usable : ConditionFromError(result);
}

bool NeedsRollback(const SqliteDatabase& database) {
  return sqlite3_extended_errcode(database.Handle()) == SQLITE_READONLY_ROLLBACK;
}

/// Undoes the half-made change in a second copy, on disk.
StoreCondition CopyRolledBack(const std::string& file, int wait, std::string& problem,
                              std::unique_ptr<Registry>& registry) {
  const ScratchFolder scratch;
  const std::string copied = scratch.File("wattlark.db");
  std::error_code error;
  if (scratch.IsThere()) {
    fs::copy_file(file, copied, error);
    if (!error) fs::copy_file(file + "-journal", copied + "-journal", error);
  }
  if (!scratch.IsThere() || error) {
    problem = "no temporary copy can be made" + (error ? ": " + error.message() : std::string());
    return StoreCondition::Unreadable;
  }
  SqliteDatabase database;
  const int result = database.Open(copied, SQLITE_OPEN_READWRITE, wait);
  const StoreCondition condition =
      result == SQLITE_OK ? CopyIntoMemory(database, file, registry) : ConditionFromError(result);
  problem = database.Problem();
  return condition;
}

}  // namespace

StoreOpening OpenStoreCopy(const std::string& profileFolder, int waitMilliseconds) {
  const std::string file = StoreFile(profileFolder);
  bool isMissing = false;
  if (std::string problem = FileProblem(file, isMissing); !problem.empty()) {
    return {nullptr, std::move(problem), false};
  }
  if (isMissing) return {MemoryStore(), {}, false};

  StoreOpening opening;
  SqliteDatabase database;
  const int result = database.Open(file, SQLITE_OPEN_READONLY, waitMilliseconds);
  StoreCondition condition = result == SQLITE_OK ? CopyIntoMemory(database, file, opening.registry)
                                                 : ConditionFromError(result);
  std::string problem = database.Problem();
  if (NeedsRollback(database)) {
    condition = CopyRolledBack(file, waitMilliseconds, problem, opening.registry);
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
