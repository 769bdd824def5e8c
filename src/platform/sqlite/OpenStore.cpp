#include "platform/sqlite/OpenStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include "platform/linux/PrivateFolder.h"
#include "platform/sqlite/SalvageStore.h"
#include "platform/sqlite/SqliteDatabase.h"
#include "platform/sqlite/SqliteRegistry.h"

namespace wattlark {

namespace {

enum class Condition { Usable, Empty, Damaged, Foreign, Newer, Locked, Unreadable };

std::string Named(const std::string& file) {
  return "The settings store \"" + file + "\"";
}

std::string SystemError() {
  return std::strerror(errno);
}

bool Exists(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

bool MayAccess(const std::string& path, int mode) {
  return ::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
}

/// Creates the file when it is missing and keeps others from reading it. Empty on success.
std::string PrepareFile(const std::string& folder, const std::string& file) {
  if (const std::string problem = CreatePrivateFolder(folder); !problem.empty()) return problem;
  const int created = ::open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (created >= 0) {
    ::fchmod(created, 0600);
    ::close(created);
    return {};
  }
  if (errno != EEXIST) return "\"" + file + "\" cannot be created: " + SystemError();
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) {
    return "\"" + file + "\" cannot be opened: " + SystemError();
  }
  if (S_ISREG(status.st_mode) && (status.st_mode & 077) != 0) {
    ::chmod(file.c_str(), status.st_mode & 0700);
  }
  return {};
}

Condition FromError(int result) {
  switch (result & 0xFF) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
    case SQLITE_ERROR:  // a file format of the future, for one
      return Condition::Damaged;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return Condition::Locked;
    default:
      return Condition::Unreadable;
  }
}

/// The first column of a query's one row; false, with the error's meaning, when it cannot be had.
bool Query(const SqliteDatabase& database, const char* sql, SqliteStatement& row,
           Condition& condition) {
  int result = row.Prepare(database, sql);
  if (result == SQLITE_OK) result = row.Step();
  if (result == SQLITE_ROW) return true;
  condition = FromError(result);
  return false;
}

Condition Examine(const SqliteDatabase& database) {
  Condition condition = Condition::Unreadable;
  SqliteStatement tables;
  SqliteStatement application;
  SqliteStatement version;
  SqliteStatement check;
  if (!Query(database, "SELECT count(*) FROM sqlite_schema", tables, condition) ||
      !Query(database, "PRAGMA application_id", application, condition) ||
      !Query(database, "PRAGMA user_version", version, condition)) {
    return condition;
  }
  const bool ours = application.Integer(0) == SqliteRegistry::kApplicationId;
  if (ours && version.Integer(0) > SqliteRegistry::kSchemaVersion) return Condition::Newer;
  if (!Query(database, "PRAGMA integrity_check(1)", check, condition)) return condition;
  if (check.Text(0) != "ok") return Condition::Damaged;
  if (tables.Integer(0) == 0) return Condition::Empty;
  if (!ours) return Condition::Foreign;
  return version.Integer(0) == SqliteRegistry::kSchemaVersion ? Condition::Usable
                                                              : Condition::Damaged;
}

/// Renames the file and what belongs to it to a free name, which is the result; empty, with the
/// reason in errno, when that fails.
std::string SetAside(const std::string& file) {
  // The journal goes first: left behind, it would be played back into the new store.
  constexpr const char* kParts[] = {"-journal", "-wal", "-shm", ""};
  for (int number = 1;; ++number) {
    const std::string target = file + ".damaged-" + std::to_string(number);
    bool isFree = true;
    for (const char* part : kParts) isFree = isFree && !Exists(target + part);
    if (!isFree) continue;
    for (const char* part : kParts) {
      if (!Exists(file + part)) continue;
      if (std::rename((file + part).c_str(), (target + part).c_str()) != 0) return {};
    }
    return target;
  }
}

StoreOpening InMemory(const std::string& message) {
  StoreOpening opening;
  SqliteDatabase database;
  if (database.Open(":memory:", SQLITE_OPEN_READWRITE, 0) == SQLITE_OK &&
      SqliteRegistry::CreateTables(database) == SQLITE_OK) {
    SqliteRegistry::Attach(std::move(database), "The settings store in memory", opening.registry);
  }
  opening.message = message + " Nothing will be saved.";
  return opening;
}

std::string SalvageText(const Salvage& salvage) {
  if (!salvage.problem.empty())
    return "Its values could not be taken over: " + salvage.problem + ".";
  if (salvage.values == 0) return "No value could be read from it.";
  return std::to_string(salvage.values) + " values that could still be read were taken over.";
}

class StoreOpener {
 public:
  StoreOpener(const std::string& folder, int waitMilliseconds)
      : folder_(folder), file_(folder + "/wattlark.db"), wait_(waitMilliseconds) {}

  StoreOpening Open() {
    if (const std::string problem = PrepareFile(folder_, file_); !problem.empty()) {
      return InMemory("The settings store cannot be used: " + problem + ".");
    }
    struct stat status {};
    ::stat(file_.c_str(), &status);
    if (!S_ISREG(status.st_mode)) return Replace(Named(file_) + " is not a file.", false);
    if (!MayAccess(file_, R_OK)) {
      return InMemory(Named(file_) + " cannot be read: " + SystemError() + ".");
    }
    return OpenFile(!MayAccess(file_, W_OK) || !MayAccess(folder_, W_OK | X_OK));
  }

 private:
  StoreOpening OpenFile(bool readOnly) {
    SqliteDatabase database;
    const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    const int result = database.Open(file_, flags, wait_);
    Condition condition = result == SQLITE_OK ? Examine(database) : FromError(result);
    std::string problem = database.Problem();
    if (condition == Condition::Empty && !readOnly) {
      const int created = SqliteRegistry::CreateTables(database);
      problem = database.Problem();
      condition = created == SQLITE_OK ? Condition::Usable : FromError(created);
    }
    StoreOpening opening;
    if (condition == Condition::Usable) {
      if (!readOnly) database.Execute("PRAGMA journal_mode = DELETE");
      const int attached =
          SqliteRegistry::Attach(std::move(database), Named(file_), opening.registry);
      if (attached != SQLITE_OK) condition = FromError(attached);
    }
    database.Close();
    switch (condition) {
      case Condition::Usable:
        opening.savesChanges = !readOnly;
        if (readOnly)
          opening.message = Named(file_) + " can only be read. Changes cannot be saved.";
        return opening;
      case Condition::Empty:
        return InMemory(Named(file_) + " is empty and cannot be written.");
      case Condition::Newer:
        return InMemory(Named(file_) +
                        " was written by a newer version of the program and is left as it is.");
      case Condition::Locked:
        return {nullptr, Named(file_) + " is in use by another program.", false};
      case Condition::Unreadable:
        return InMemory(Named(file_) + " cannot be opened: " + problem + ".");
      case Condition::Foreign:
        return Replace("\"" + file_ + "\" is a database of another program.", true);
      case Condition::Damaged:
        break;
    }
    return Replace(Named(file_) + " is damaged.", true);
  }

  StoreOpening Replace(const std::string& reason, bool salvages) {
    const std::string aside = replaced_ ? std::string() : SetAside(file_);
    if (aside.empty()) {
      StoreOpening opening =
          InMemory(reason + " It could not be moved out of the way: " + SystemError() + ".");
      if (salvages && opening.registry) {
        opening.message += " " + SalvageText(SalvageStore(file_, *opening.registry));
      }
      return opening;
    }
    replaced_ = true;
    const std::string kept = reason + " It was kept as \"" + aside + "\"";
    StoreOpening opening = Open();
    if (!opening.savesChanges) {
      opening.message = kept + ". " + opening.message;
      return opening;
    }
    opening.message = kept + " and a new store was made.";
    if (salvages) opening.message += " " + SalvageText(SalvageStore(aside, *opening.registry));
    return opening;
  }

  std::string folder_;
  std::string file_;
  int wait_;
  bool replaced_ = false;  ///< a store was set aside already: a second one would mean a loop
};

}  // namespace

StoreOpening OpenStore(const std::string& profileFolder, int waitMilliseconds) {
  return StoreOpener(profileFolder, waitMilliseconds).Open();
}

}  // namespace wattlark
