#include "platform/sqlite/StoreSchema.h"

namespace wattlark {

namespace {

// Ids of keys are never used twice (AUTOINCREMENT): they are the order of creation, and one that a
// second process has meanwhile deleted must not come to mean another key. Ids of values are used
// again: before a value of the log is deleted, the log is brought into the rows. A salvage knows
// the rows of a damaged file by the types of their columns: those of "generation" by the text.
constexpr const char* kSchema =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS key("
    " id INTEGER PRIMARY KEY AUTOINCREMENT, hive INTEGER NOT NULL, parent INTEGER NOT NULL,"
    " folded TEXT NOT NULL, path TEXT NOT NULL);"
    "CREATE UNIQUE INDEX IF NOT EXISTS key_path ON key(hive, folded);"
    "CREATE INDEX IF NOT EXISTS key_parent ON key(hive, parent);"
    "CREATE TABLE IF NOT EXISTS value("
    " id INTEGER PRIMARY KEY, key INTEGER NOT NULL, folded TEXT NOT NULL, name TEXT NOT NULL,"
    " type INTEGER NOT NULL, data BLOB NOT NULL);"
    "CREATE UNIQUE INDEX IF NOT EXISTS value_name ON value(key, folded);"
    "CREATE TABLE IF NOT EXISTS change("
    " id INTEGER PRIMARY KEY, generation INTEGER NOT NULL, changes BLOB NOT NULL);"
    "CREATE TABLE IF NOT EXISTS generation("
    " id INTEGER PRIMARY KEY, number INTEGER NOT NULL, of TEXT NOT NULL);"
    "INSERT OR IGNORE INTO generation VALUES(1, 1, 'change');"
    "PRAGMA application_id = 0x574C4B52;"
    "PRAGMA user_version = 2;"
    "COMMIT;";

}  // namespace

std::optional<RegistryType> StoredType(std::int64_t number) {
  switch (const auto type = static_cast<RegistryType>(number)) {
    case RegistryType::String:
    case RegistryType::ExpandString:
    case RegistryType::Binary:
    case RegistryType::DWord:
    case RegistryType::DWordBigEndian:
    case RegistryType::MultiString:
      return type;
  }
  return std::nullopt;
}

int CreateStoreTables(SqliteDatabase& database) {
  const int result = database.Execute(kSchema);
  if (result != SQLITE_OK && database.InTransaction()) database.Execute("ROLLBACK");
  return result;
}

int StoreStatements::Prepare(const SqliteDatabase& database) {
  return PrepareAll(
      database,
      {
          {findKey, "SELECT id FROM key WHERE hive = ?1 AND folded = ?2"},
          {insertKey, "INSERT INTO key(hive, parent, folded, path) VALUES(?1, ?2, ?3, ?4)"},
          {findSubKey, "SELECT id FROM key WHERE hive = ?1 AND parent = ?2 LIMIT 1"},
          {subKeys, "SELECT path FROM key WHERE hive = ?1 AND parent = ?2 ORDER BY id"},
          {deleteKey, "DELETE FROM key WHERE id = ?1"},
          {deleteKeyValues, "DELETE FROM value WHERE key = ?1"},
          {readValue,
           "SELECT value.id, value.type, value.data FROM key JOIN value ON value.key = key.id"
           " WHERE key.hive = ?1 AND key.folded = ?2 AND value.folded = ?3"},
          {readKey,
           "SELECT value.id, value.type, value.data, value.folded"
           " FROM key JOIN value ON value.key = key.id"
           " WHERE key.hive = ?1 AND key.folded = ?2 ORDER BY value.id"},
          {findValue, "SELECT id, type, data FROM value WHERE key = ?1 AND folded = ?2"},
          {writeValue,
           "INSERT INTO value(key, folded, name, type, data) VALUES(?1, ?2, ?3, ?4, ?5)"
           " ON CONFLICT(key, folded) DO UPDATE SET type = excluded.type, data = excluded.data"},
          {deleteValue, "DELETE FROM value WHERE id = ?1"},
          {values, "SELECT id, type, data, name FROM value WHERE key = ?1 ORDER BY id"},
      });
}

}  // namespace wattlark
