#include "platform/sqlite/CopyStoreFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

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

StoreCondition CopyIntoMemory(SqliteDatabase& source, SqliteDatabase& copy) {
  const StoreCondition condition = ExamineStore(source);
  if (condition != StoreCondition::Usable) return condition;
  int result = copy.Open(":memory:", SQLITE_OPEN_READWRITE, 0);
  if (result == SQLITE_OK) result = CopyDatabase(source, copy);
  return result == SQLITE_OK ? StoreCondition::Usable : ConditionFromError(result);
}

bool NeedsRollback(const SqliteDatabase& database) {
  return sqlite3_extended_errcode(database.Handle()) == SQLITE_READONLY_ROLLBACK;
}

StoreCondition OpenAndCopy(const std::string& file, int flags, int wait, SqliteDatabase& source,
                           SqliteDatabase& copy) {
  const int result = source.Open(file, flags, wait);
  return result == SQLITE_OK ? CopyIntoMemory(source, copy) : ConditionFromError(result);
}

/// Undoes the half-made change in a second copy, on disk.
StoreCondition CopyRolledBack(const std::string& file, int wait, SqliteDatabase& copy,
                              std::string& problem) {
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
  const StoreCondition condition = OpenAndCopy(copied, SQLITE_OPEN_READWRITE, wait, database, copy);
  problem = database.Problem();
  return condition;
}

}  // namespace

std::string StoreFileProblem(const std::string& file, bool& isMissing) {
  struct stat status {};
  isMissing = ::stat(file.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
  if (isMissing) return {};
  if (::faccessat(AT_FDCWD, file.c_str(), R_OK, AT_EACCESS) != 0) {
    return NamedStore(file) + " cannot be read: " + std::strerror(errno) + ".";
  }
  return S_ISREG(status.st_mode) ? std::string() : NamedStore(file) + " is not a file.";
}

StoreCondition CopyStoreFile(const std::string& file, int waitMilliseconds, SqliteDatabase& copy,
                             std::string& problem) {
  SqliteDatabase source;
  const StoreCondition condition =
      OpenAndCopy(file, SQLITE_OPEN_READONLY, waitMilliseconds, source, copy);
  problem = source.Problem();
  return NeedsRollback(source) ? CopyRolledBack(file, waitMilliseconds, copy, problem) : condition;
}

}  // namespace wattlark
