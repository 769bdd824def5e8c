#include "platform/sqlite/StoreSnapshot.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "platform/linux/PrivateFile.h"
#include "platform/sqlite/CopyStoreFile.h"
#include "platform/sqlite/SetAside.h"
#include "platform/sqlite/StoreFile.h"

namespace wattlark {

namespace {

bool HasColumns(const SqliteDatabase& database) {
  SqliteStatement statement;
  return statement.Prepare(database,
                           "SELECT key.id, key.hive, key.parent, key.folded, key.path, value.id,"
                           " value.key, value.folded, value.name, value.type, value.data"
                           " FROM key JOIN value") == SQLITE_OK;
}

std::string ConditionText(StoreCondition condition, const std::string& file,
                          const std::string& problem) {
  switch (condition) {
    case StoreCondition::Usable:
      return {};
    case StoreCondition::Empty:
      return "\"" + file + "\" is empty.";
    case StoreCondition::Damaged:
      return "\"" + file + "\" is damaged, or is no settings store.";
    case StoreCondition::Foreign:
      return "\"" + file + "\" is a database of another program.";
    case StoreCondition::Newer:
      return NamedStore(file) + " was written by a newer version of the program.";
    case StoreCondition::Locked:
      return NamedStore(file) + " is in use by another program.";
    case StoreCondition::Unreadable:
      break;
  }
  return NamedStore(file) + " cannot be read: " + problem + ".";
}

std::string Sentence(const std::string& problem) {
  return problem.empty() ? problem : problem + ".";
}

/// Fills a new file with the store.
std::string Fill(PrivateFile& file, const SqliteDatabase& database) {
  if (const std::string problem = file.Create(); !problem.empty()) return Sentence(problem);
  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
      sqlite3_serialize(database.Handle(), "main", &size, 0), sqlite3_free);
  if (bytes == nullptr) return "There is not enough memory.";
  return Sentence(
      file.Write({reinterpret_cast<const char*>(bytes.get()), static_cast<std::size_t>(size)}));
}

/// Lets SQLite finish what a power cut has interrupted, so that the store needs no journal.
void Recover(const std::string& file) {
  SqliteDatabase database;
  if (database.Open(file, SQLITE_OPEN_READWRITE, 0) == SQLITE_OK) ExamineStore(database);
}

/// Gives the store a second name, which is the result, while the first one stays as well, if the
/// file system can do that. Empty, with the reason in errno, when it gets no other name.
std::string NameAside(const std::string& file) {
  constexpr const char* kReason = "replaced";
  const std::string aside = FreeNameAside(file, kReason);
  const bool isDone =
      SetJournalAside(file, aside) &&
      (::link(file.c_str(), aside.c_str()) == 0 || std::rename(file.c_str(), aside.c_str()) == 0);
  if (isDone) return aside;
  PutJournalBack(file, aside);
  return {};
}

}  // namespace

std::string StoreSnapshot::Take(const std::string& file, int waitMilliseconds) {
  bool isMissing = false;
  if (std::string problem = StoreFileProblem(file, isMissing); !problem.empty()) return problem;
  if (isMissing) return "There is no settings store \"" + file + "\".";
  std::string problem;
  const StoreCondition condition = CopyStoreFile(file, waitMilliseconds, database_, problem);
  const bool isBroken = condition == StoreCondition::Usable && !HasColumns(database_);
  return ConditionText(isBroken ? StoreCondition::Damaged : condition, file, problem);
}

std::string StoreSnapshot::Write(const std::string& file, bool replaces) const {
  PrivateFile target(file);
  std::string problem = Sentence(target.Problem(replaces));
  if (problem.empty()) problem = Fill(target, database_);
  return problem.empty() ? Sentence(target.Keep(replaces)) : problem;
}

std::string StoreSnapshot::Restore(const std::string& profileFolder, std::string& aside) const {
  const std::string file = StoreFile(profileFolder);
  PrivateFile target(file);
  if (std::string problem = Fill(target, database_); !problem.empty()) return problem;
  std::error_code ignored;
  if (std::filesystem::exists(std::filesystem::symlink_status(file, ignored))) {
    Recover(file);
    aside = NameAside(file);
    if (aside.empty()) {
      return NamedStore(file) + " cannot be kept under another name: " + std::strerror(errno) + ".";
    }
  }
  std::string problem = target.Keep(true);
  if (problem.empty() || aside.empty()) return Sentence(problem);
  // Back to the one name that the store had.
  if (std::rename(aside.c_str(), file.c_str()) == 0) {
    ::unlink(aside.c_str());
    PutJournalBack(file, aside);
  }
  aside.clear();
  return Sentence(problem);
}

}  // namespace wattlark
