#include "platform/sqlite/StoreFile.h"

#include <utility>

#include "platform/sqlite/ChangeLog.h"
#include "platform/sqlite/SqliteRegistry.h"
#include "platform/sqlite/StoreSchema.h"
#include "support/modText.h"

namespace wattlark {

namespace {

/// The first column of a query's one row; false, with the error's meaning, when it cannot be had.
bool Query(const SqliteDatabase& database, const char* sql, SqliteStatement& row,
           StoreCondition& condition) {
  int result = row.Prepare(database, sql);
  if (result == SQLITE_OK) result = row.Step();
  if (result == SQLITE_ROW) return true;
  condition = ConditionFromError(result);
  return false;
}

/// Whether every name agrees with its folded form: SQLite compares only the folded ones, with its
/// indexes, and a meter under a wrong name would neither be loaded nor survive the next save.
bool HasSoundNames(const SqliteDatabase& database) {
  for (const char* sql : {"SELECT folded, path FROM key", "SELECT folded, name FROM value"}) {
    SqliteStatement row(database, sql);
    int result = SQLITE_OK;
    while ((result = row.Step()) == SQLITE_ROW) {
      if (FoldCase(row.Text(1)) != row.Text(0)) return false;
    }
    if (result != SQLITE_DONE) return false;
  }
  return true;
}

}  // namespace

StoreCondition ConditionFromError(int result) {
  switch (result & 0xFF) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
    case SQLITE_ERROR:  // a file format of the future, for one
      return StoreCondition::Damaged;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return StoreCondition::Locked;
    default:
      return StoreCondition::Unreadable;
  }
}

StoreCondition ExamineStore(SqliteDatabase& database) {
  StoreCondition condition = StoreCondition::Unreadable;
  SqliteStatement tables;
  SqliteStatement ownTables;
  SqliteStatement application;
  SqliteStatement version;
  SqliteStatement check;
  if (!Query(database, "SELECT count(*) FROM sqlite_schema", tables, condition) ||
      !Query(database, "SELECT count(*) FROM sqlite_schema WHERE name IN ('key', 'value_name')",
             ownTables, condition) ||
      !Query(database, "PRAGMA application_id", application, condition) ||
      !Query(database, "PRAGMA user_version", version, condition)) {
    return condition;
  }
  const bool ours = application.Integer(0) == StoreApplicationId;
  if (ours && version.Integer(0) > StoreSchemaVersion) return StoreCondition::Newer;
  if (!Query(database, "PRAGMA integrity_check(1)", check, condition)) return condition;
  if (check.Text(0) != "ok") return StoreCondition::Damaged;
  if (tables.Integer(0) == 0) return StoreCondition::Empty;
  if (!ours && ownTables.Integer(0) != 2) return StoreCondition::Foreign;
  if (!ours || version.Integer(0) < OldestStoreSchemaVersion || !HasSoundNames(database)) {
    return StoreCondition::Damaged;
  }
  const int log = ChangeLog().Attach(database);
  return log == SQLITE_OK ? StoreCondition::Usable : ConditionFromError(log);
}

std::unique_ptr<Registry> MemoryStore() {
  std::unique_ptr<Registry> registry;
  SqliteDatabase database;
  if (database.Open(":memory:", SQLITE_OPEN_READWRITE, 0) == SQLITE_OK &&
      CreateStoreTables(database) == SQLITE_OK) {
    SqliteRegistry::Attach(std::move(database), "The settings store in memory", registry);
  }
  return registry;
}

std::string StoreFile(const std::string& profileFolder) {
  return profileFolder + "/wattlark.db";
}

std::string NamedStore(const std::string& file) {
  return "The settings store \"" + file + "\"";
}

std::string SalvageText(const Salvage& salvage) {
  if (!salvage.problem.empty())
    return "Its values could not be taken over: " + salvage.problem + ".";
  if (salvage.values == 0) return "No value could be read from it.";
  return std::to_string(salvage.values) + " values that could still be read were taken over.";
}

}  // namespace wattlark
