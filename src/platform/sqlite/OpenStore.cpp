#include "platform/sqlite/OpenStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/linux/PrivateFolder.h"
#include "platform/sqlite/SalvageStore.h"
#include "platform/sqlite/SetAside.h"
#include "platform/sqlite/SqliteDatabase.h"
#include "platform/sqlite/SqliteRegistry.h"
#include "platform/sqlite/StoreFile.h"
#include "platform/sqlite/StoreSchema.h"

namespace wattlark {

namespace {

std::string SystemError() {
  return std::strerror(errno);
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

StoreOpening InMemory(const std::string& message) {
  return {MemoryStore(), message + " Nothing will be saved.", false};
}

class StoreOpener {
 public:
  StoreOpener(const std::string& folder, int waitMilliseconds)
      : folder_(folder), file_(StoreFile(folder)), wait_(waitMilliseconds) {}

  StoreOpening Open() {
    if (const std::string problem = PrepareFile(folder_, file_); !problem.empty()) {
      return InMemory("The settings store cannot be used: " + problem + ".");
    }
    struct stat status {};
    ::stat(file_.c_str(), &status);
    if (!S_ISREG(status.st_mode)) return Replace(NamedStore(file_) + " is not a file.", false);
    if (!MayAccess(file_, R_OK)) {
      return InMemory(NamedStore(file_) + " cannot be read: " + SystemError() + ".");
    }
    return OpenFile(!MayAccess(file_, W_OK) || !MayAccess(folder_, W_OK | X_OK));
  }

 private:
  StoreOpening OpenFile(bool readOnly) {
    SqliteDatabase database;
    const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    const int result = database.Open(file_, flags, wait_);
    StoreCondition condition =
        result == SQLITE_OK ? ExamineStore(database) : ConditionFromError(result);
    std::string problem = database.Problem();
    if (condition == StoreCondition::Empty && !readOnly) {
      const int created = CreateStoreTables(database);
      problem = database.Problem();
      condition = created == SQLITE_OK ? StoreCondition::Usable : ConditionFromError(created);
    }
    StoreOpening opening;
    // A file that the system would let us write, but SQLite would not, has a damaged header.
    if (condition == StoreCondition::Usable && !readOnly &&
        sqlite3_db_readonly(database.Handle(), "main") == 1) {
      condition = StoreCondition::Damaged;
    }
    if (condition == StoreCondition::Usable) {
      if (!readOnly) database.Execute("PRAGMA journal_mode = DELETE");
      const int attached =
          SqliteRegistry::Attach(std::move(database), NamedStore(file_), opening.registry);
      if (attached != SQLITE_OK) condition = ConditionFromError(attached);
    }
    database = SqliteDatabase();  // a file must not be open when it is moved
    switch (condition) {
      case StoreCondition::Usable:
        opening.savesChanges = !readOnly;
        if (readOnly)
          opening.message = NamedStore(file_) + " can only be read. Changes cannot be saved.";
        return opening;
      case StoreCondition::Empty:
        return InMemory(NamedStore(file_) + " is empty and cannot be written.");
      case StoreCondition::Newer:
        return InMemory(NamedStore(file_) +
                        " was written by a newer version of the program and is left as it is.");
      case StoreCondition::Locked:
        return {nullptr, NamedStore(file_) + " is in use by another program.", false};
      case StoreCondition::Unreadable:
        // A run that begins without its store saves nothing until its end: a moment's trouble of
        // the disk is waited for.
        if (++attempts_ < kAttempts) {
          std::this_thread::sleep_for(kPause);
          return Open();
        }
        return InMemory(NamedStore(file_) + " cannot be opened: " + problem + ".");
      case StoreCondition::Foreign:
        return Replace("\"" + file_ + "\" is a database of another program.", false);
      case StoreCondition::Damaged:
        break;
    }
    return Replace(NamedStore(file_) + " is damaged.", true);
  }

  StoreOpening Replace(const std::string& reason, bool salvages) {
    const std::string aside = replaced_ ? std::string() : SetAside(file_, "damaged");
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

  static constexpr int kAttempts = 3;
  static constexpr std::chrono::milliseconds kPause{50};

  std::string folder_;
  std::string file_;
  int wait_;
  int attempts_ = 0;
  bool replaced_ = false;  ///< a store was set aside already: a second one would mean a loop
};

}  // namespace

StoreOpening OpenStore(const std::string& profileFolder, int waitMilliseconds) {
  return StoreOpener(profileFolder, waitMilliseconds).Open();
}

}  // namespace wattlark
