#pragma once

#include <cstdint>
#include <optional>

#include "platform/Registry.h"
#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

inline constexpr std::int64_t StoreApplicationId = 0x574C4B52;
/// 2 brought the table of changes (see `ChangeLog`), which a store of version 1 gets when it is
/// next opened for writing.
inline constexpr std::int64_t StoreSchemaVersion = 2;
inline constexpr std::int64_t OldestStoreSchemaVersion = 1;

/// The type that is stored as this number; nothing when it is none of them.
std::optional<RegistryType> StoredType(std::int64_t number);

/// Creates the tables that the database lacks. The result is a SQLite code.
int CreateStoreTables(SqliteDatabase& database);

/// What the settings store asks of its tables. A key is one row with its whole path; "folded" are
/// names and paths in the form in which they are compared.
struct StoreStatements {
  int Prepare(const SqliteDatabase& database);

  SqliteStatement findKey;          ///< hive, folded path: id
  SqliteStatement insertKey;        ///< hive, parent's id, folded path, path
  SqliteStatement findSubKey;       ///< hive, key: id of one subkey
  SqliteStatement subKeys;          ///< hive, key: paths in order of creation
  SqliteStatement deleteKey;        ///< key
  SqliteStatement deleteKeyValues;  ///< key
  SqliteStatement readValue;        ///< hive, folded path, folded name: id, type, data
  SqliteStatement readKey;          ///< hive, folded path: id, type, data, folded name of each
  SqliteStatement findValue;        ///< key, folded name: id, type, data
  SqliteStatement writeValue;       ///< key, folded name, name, type, data
  SqliteStatement deleteValue;      ///< id
  SqliteStatement values;           ///< key: id, type, data, name of each
};

}  // namespace wattlark
