#include "platform/sqlite/SqliteRegistry.h"

#include <utility>

#include "platform/RegistryPath.h"
#include "support/modText.h"

namespace wattlark {

namespace {

// Ids of keys are never used twice (AUTOINCREMENT): they are the order of creation, and one that a
// second process has meanwhile deleted must not come to mean another key.
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
    "PRAGMA application_id = 0x574C4B52;"
    "PRAGMA user_version = 1;"
    "COMMIT;";

constexpr std::int64_t HiveNumber(Hive hive) {
  return static_cast<std::int64_t>(hive);
}

std::optional<RegistryValue> ValueAt(const SqliteStatement& row, int typeColumn, int dataColumn) {
  const std::optional<RegistryType> type = SqliteRegistry::TypeFromNumber(row.Integer(typeColumn));
  if (!type) return std::nullopt;
  const auto bytes = row.Bytes(dataColumn);
  return RegistryValue{*type, {bytes.begin(), bytes.end()}};
}

}  // namespace

std::optional<RegistryType> SqliteRegistry::TypeFromNumber(std::int64_t number) {
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

int SqliteRegistry::CreateTables(SqliteDatabase& database) {
  const int result = database.Execute(kSchema);
  if (result != SQLITE_OK && database.InTransaction()) database.Execute("ROLLBACK");
  return result;
}

int SqliteRegistry::Attach(SqliteDatabase database, const std::string& name,
                           std::unique_ptr<Registry>& registry) {
  // A save of everything should stay in memory until its commit.
  database.Execute("PRAGMA cache_size = -16384");
  // EXTRA: a journal that comes back after a power cut would undo the last save.
  database.Execute("PRAGMA synchronous = EXTRA");
  // A password that was changed leaves no trace, and a salvage of the file finds no deleted meter.
  database.Execute("PRAGMA secure_delete = ON");
  std::unique_ptr<SqliteRegistry> attached(new SqliteRegistry(std::move(database), name));
  const int result = attached->PrepareStatements();
  if (result == SQLITE_OK) registry = std::move(attached);
  return result;
}

int SqliteRegistry::PrepareStatements() {
  struct Text {
    SqliteStatement& statement;
    const char* sql;
  };
  const Text texts[] = {
      {findKey_, "SELECT id FROM key WHERE hive = ?1 AND folded = ?2"},
      {insertKey_, "INSERT INTO key(hive, parent, folded, path) VALUES(?1, ?2, ?3, ?4)"},
      {findSubKey_, "SELECT id FROM key WHERE hive = ?1 AND parent = ?2 LIMIT 1"},
      {subKeys_, "SELECT path FROM key WHERE hive = ?1 AND parent = ?2 ORDER BY id"},
      {deleteKey_, "DELETE FROM key WHERE id = ?1"},
      {deleteKeyValues_, "DELETE FROM value WHERE key = ?1"},
      {readValue_,
       "SELECT value.type, value.data FROM key JOIN value ON value.key = key.id"
       " WHERE key.hive = ?1 AND key.folded = ?2 AND value.folded = ?3"},
      {readKey_,
       "SELECT value.folded, value.type, value.data FROM key JOIN value ON value.key = key.id"
       " WHERE key.hive = ?1 AND key.folded = ?2 ORDER BY value.id"},
      {writeValue_,
       "INSERT INTO value(key, folded, name, type, data) VALUES(?1, ?2, ?3, ?4, ?5)"
       " ON CONFLICT(key, folded) DO UPDATE SET type = excluded.type, data = excluded.data"},
      {deleteValue_, "DELETE FROM value WHERE key = ?1 AND folded = ?2"},
      {values_, "SELECT name, type, data FROM value WHERE key = ?1 ORDER BY id"},
  };
  for (const Text& text : texts) {
    const int result = text.statement.Prepare(database_, text.sql);
    if (result != SQLITE_OK) return result;
  }
  return SQLITE_OK;
}

void SqliteRegistry::Fail(const char* action) {
  errorText_ = name_ + " could not be " + action + ": " + database_.Problem();
}

bool SqliteRegistry::StepRow(SqliteStatement& statement) {
  const int result = statement.Step();
  readFailed_ = result != SQLITE_ROW && result != SQLITE_DONE;
  if (readFailed_) Fail("read");
  return result == SQLITE_ROW;
}

bool SqliteRegistry::Run(SqliteStatement& statement) {
  const bool done = statement.Step() == SQLITE_DONE;
  if (!done) Fail("changed");
  statement.Reset();
  return done;
}

const std::string& SqliteRegistry::FoldedPath(Hive hive, const std::string& path) {
  if (hive != lastHive_ || path != lastPath_) {
    lastHive_ = hive;
    lastPath_ = path;
    lastFolded_ = FoldCase(NormalRegistryPath(path));
    lastKey_ = 0;
  }
  return lastFolded_;
}

std::int64_t SqliteRegistry::FindKey(Hive hive, std::string_view folded) {
  findKey_.Bind(1, HiveNumber(hive)).Bind(2, folded);
  const std::int64_t key = StepRow(findKey_) ? findKey_.Integer(0) : 0;
  findKey_.Reset();
  return key;
}

std::int64_t SqliteRegistry::FindOrCreateKey(Hive hive, const std::string& path) {
  const std::string folded = FoldCase(path);
  const std::int64_t found = FindKey(hive, folded);
  if (found != 0 || readFailed_) return found;
  const std::string parentPath(ParentRegistryPath(path));
  const std::int64_t parent = parentPath.empty() ? 0 : FindOrCreateKey(hive, parentPath);
  if (parent == 0 && !parentPath.empty()) return 0;
  insertKey_.Bind(1, HiveNumber(hive)).Bind(2, parent).Bind(3, folded).Bind(4, path);
  return Run(insertKey_) ? sqlite3_last_insert_rowid(database_.Handle()) : 0;
}

template <typename Work>
bool SqliteRegistry::Change(Work work) {
  snapshot_.Clear();
  if (inTransaction_) {
    // After its first failure nothing of a transaction can be stored any more, and SQLite may have
    // ended it already: a further statement would then be stored alone.
    if (transactionFailed_) return false;
    const Outcome outcome = work();
    transactionFailed_ = outcome == Outcome::Failed;
    return outcome == Outcome::Done;
  }
  if (database_.Execute("BEGIN IMMEDIATE") != SQLITE_OK) {
    Fail("changed");
    return false;
  }
  lastKey_ = 0;
  const Outcome outcome = work();
  bool done = outcome == Outcome::Done;
  if (done && database_.Execute("COMMIT") != SQLITE_OK) {
    Fail("changed");
    done = false;
  }
  EndTransaction();
  return done;
}

void SqliteRegistry::EndTransaction() {
  if (database_.InTransaction()) database_.Execute("ROLLBACK");
  inTransaction_ = false;
  transactionFailed_ = false;
  lastKey_ = 0;
}

bool SqliteRegistry::KeyExists(Hive hive, const std::string& path) {
  return FindKey(hive, FoldedPath(hive, path)) != 0;
}

bool SqliteRegistry::CreateKey(Hive hive, const std::string& path) {
  const std::string normal = NormalRegistryPath(path);
  if (normal.empty()) return false;
  return Change(
      [&] { return FindOrCreateKey(hive, normal) != 0 ? Outcome::Done : Outcome::Failed; });
}

SqliteRegistry::Outcome SqliteRegistry::RemoveKey(std::int64_t key) {
  findSubKey_.Bind(1, HiveNumber(lastHive_)).Bind(2, key);
  const bool hasSubKeys = StepRow(findSubKey_);
  findSubKey_.Reset();
  if (readFailed_) return Outcome::Failed;
  if (hasSubKeys) return Outcome::Missing;
  deleteKeyValues_.Bind(1, key);
  deleteKey_.Bind(1, key);
  return Run(deleteKeyValues_) && Run(deleteKey_) ? Outcome::Done : Outcome::Failed;
}

bool SqliteRegistry::DeleteKey(Hive hive, const std::string& path) {
  return Change([&] {
    const std::int64_t key = FindKey(hive, FoldedPath(hive, path));
    lastKey_ = 0;
    if (key == 0) return readFailed_ ? Outcome::Failed : Outcome::Missing;
    return RemoveKey(key);
  });
}

std::vector<std::string> SqliteRegistry::SubKeys(Hive hive, const std::string& path) {
  std::vector<std::string> names;
  const std::string& folded = FoldedPath(hive, path);
  const std::int64_t key = folded.empty() ? 0 : FindKey(hive, folded);
  if (key == 0 && !folded.empty()) return names;
  subKeys_.Bind(1, HiveNumber(hive)).Bind(2, key);
  while (StepRow(subKeys_)) names.emplace_back(RegistryKeyName(subKeys_.Text(0)));
  subKeys_.Reset();
  return names;
}

void SqliteRegistry::TakeSnapshot(Hive hive, const std::string& folded) {
  snapshot_.Start(hive, folded);
  readKey_.Bind(1, HiveNumber(hive)).Bind(2, folded);
  while (StepRow(readKey_)) snapshot_.Add(readKey_.Text(0), ValueAt(readKey_, 1, 2));
  readKey_.Reset();
  if (readFailed_) snapshot_.Clear();
}

std::optional<RegistryValue> SqliteRegistry::Read(Hive hive, const std::string& path,
                                                  const std::string& name) {
  const std::string folded = FoldCase(name);
  const std::string& foldedPath = FoldedPath(hive, path);
  std::optional<RegistryValue> value;
  if (!inTransaction_) {
    if (snapshot_.Covers(hive, foldedPath) && snapshot_.Take(folded, value)) return value;
    TakeSnapshot(hive, foldedPath);
    snapshot_.Take(folded, value);
    return value;
  }
  readValue_.Bind(1, HiveNumber(hive)).Bind(2, foldedPath).Bind(3, folded);
  if (StepRow(readValue_)) value = ValueAt(readValue_, 0, 1);
  readValue_.Reset();
  return value;
}

bool SqliteRegistry::Write(Hive hive, const std::string& path, const std::string& name,
                           const RegistryValue& value) {
  if (FoldedPath(hive, path).empty()) return false;
  return Change([&] {
    if (lastKey_ == 0) lastKey_ = FindOrCreateKey(hive, NormalRegistryPath(path));
    if (lastKey_ == 0) return Outcome::Failed;
    const std::string folded = FoldCase(name);
    writeValue_.Bind(1, lastKey_)
        .Bind(2, folded)
        .Bind(3, name)
        .Bind(4, static_cast<std::int64_t>(value.type))
        .Bind(5, std::span<const std::uint8_t>(value.data));
    return Run(writeValue_) ? Outcome::Done : Outcome::Failed;
  });
}

bool SqliteRegistry::DeleteValue(Hive hive, const std::string& path, const std::string& name) {
  return Change([&] {
    const std::int64_t key = FindKey(hive, FoldedPath(hive, path));
    if (key == 0) return readFailed_ ? Outcome::Failed : Outcome::Missing;
    const std::string folded = FoldCase(name);
    deleteValue_.Bind(1, key).Bind(2, folded);
    if (!Run(deleteValue_)) return Outcome::Failed;
    return sqlite3_changes(database_.Handle()) > 0 ? Outcome::Done : Outcome::Missing;
  });
}

std::vector<NamedRegistryValue> SqliteRegistry::Values(Hive hive, const std::string& path) {
  std::vector<NamedRegistryValue> values;
  const std::int64_t key = FindKey(hive, FoldedPath(hive, path));
  if (key == 0) return values;
  values_.Bind(1, key);
  while (StepRow(values_)) {
    if (auto value = ValueAt(values_, 1, 2)) values.push_back({values_.Text(0), std::move(*value)});
  }
  values_.Reset();
  return values;
}

bool SqliteRegistry::Begin() {
  if (inTransaction_) {
    errorText_ = name_ + " could not be changed: a transaction is open already";
    return false;
  }
  // Over a store that can only be read a transaction still gives a consistent view.
  const bool readOnly = sqlite3_db_readonly(database_.Handle(), "main") == 1;
  if (database_.Execute(readOnly ? "BEGIN" : "BEGIN IMMEDIATE") != SQLITE_OK) {
    Fail("changed");
    return false;
  }
  inTransaction_ = true;
  errorText_.clear();
  snapshot_.Clear();
  lastKey_ = 0;
  return true;
}

bool SqliteRegistry::Commit() {
  if (!inTransaction_) return false;
  bool done = !transactionFailed_;
  if (done && database_.Execute("COMMIT") != SQLITE_OK) {
    Fail("changed");
    done = false;
  }
  EndTransaction();
  return done;
}

void SqliteRegistry::Rollback() {
  if (inTransaction_) EndTransaction();
}

}  // namespace wattlark
