#include "platform/sqlite/SqliteRegistry.h"

#include <utility>

#include "platform/RegistryPath.h"
#include "support/modText.h"

namespace wattlark {

namespace {

/// One view of the file for several statements, within a transaction or not.
class ReadView {
 public:
  explicit ReadView(SqliteDatabase& database)
      : database_(database),
        isOwn_(!database.InTransaction() && database.Execute("BEGIN") == SQLITE_OK) {}
  ~ReadView() {
    if (isOwn_) database_.Execute("COMMIT");
  }
  ReadView(const ReadView&) = delete;
  ReadView& operator=(const ReadView&) = delete;

 private:
  SqliteDatabase& database_;
  bool isOwn_;
};

constexpr std::int64_t HiveNumber(Hive hive) {
  return static_cast<std::int64_t>(hive);
}

}  // namespace

int SqliteRegistry::Attach(SqliteDatabase database, const std::string& name,
                           std::unique_ptr<Registry>& registry) {
  // A save of everything should stay in memory until its commit.
  database.Execute("PRAGMA cache_size = -16384");
  // EXTRA: a journal that comes back after a power cut would undo the last save.
  database.Execute("PRAGMA synchronous = EXTRA");
  // A password that was changed leaves no trace, and a salvage of the file finds no deleted meter.
  database.Execute("PRAGMA secure_delete = ON");
  const bool readOnly = sqlite3_db_readonly(database.Handle(), "main") == 1;
  int result = readOnly || ChangeLog::IsIn(database) ? SQLITE_OK : CreateStoreTables(database);
  if (result != SQLITE_OK) return result;
  std::unique_ptr<SqliteRegistry> attached(new SqliteRegistry(std::move(database), name));
  result = attached->sql_.Prepare(attached->database_);
  if (result == SQLITE_OK) result = attached->log_.Attach(attached->database_);
  if (result == SQLITE_OK) registry = std::move(attached);
  return result;
}

bool SqliteRegistry::Succeeded(int result, const char* action) {
  if (result == SQLITE_OK) return true;
  errorText_ = name_ + " could not be " + action + ": " + database_.Problem(result);
  return false;
}

void SqliteRegistry::Fail(const char* action) {
  Succeeded(sqlite3_extended_errcode(database_.Handle()), action);
}

/// What another process has stored meanwhile; false when that cannot be read.
bool SqliteRegistry::Refresh() {
  readFailed_ = !Succeeded(log_.Refresh(), "read");
  return !readFailed_;
}

bool SqliteRegistry::FoldLog() {
  return log_.IsEmpty() || Succeeded(log_.Fold(), "changed");
}

/// Of a row that begins with the value's id, type and data.
std::optional<RegistryValue> SqliteRegistry::ValueAt(const SqliteStatement& row) const {
  const std::optional<RegistryType> type = StoredType(row.Integer(1));
  if (!type) return std::nullopt;
  if (const auto* newest = log_.Find(row.Integer(0))) return RegistryValue{*type, *newest};
  const auto bytes = row.Bytes(2);
  return RegistryValue{*type, {bytes.begin(), bytes.end()}};
}

bool SqliteRegistry::StepRow(SqliteStatement& statement) {
  const int result = statement.Step();
  readFailed_ = result != SQLITE_ROW && result != SQLITE_DONE;
  if (readFailed_) Fail("read");
  return result == SQLITE_ROW;
}

bool SqliteRegistry::Run(SqliteStatement& statement) {
  const StatementScope scope(statement);
  const bool done = statement.Step() == SQLITE_DONE;
  if (!done) Fail("changed");
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
  sql_.findKey.Bind(1, HiveNumber(hive)).Bind(2, folded);
  const StatementScope scope(sql_.findKey);
  return StepRow(sql_.findKey) ? sql_.findKey.Integer(0) : 0;
}

std::int64_t SqliteRegistry::FindOrCreateKey(Hive hive, const std::string& path) {
  const std::string folded = FoldCase(path);
  const std::int64_t found = FindKey(hive, folded);
  if (found != 0 || readFailed_) return found;
  const std::string parentPath(ParentRegistryPath(path));
  const std::int64_t parent = parentPath.empty() ? 0 : FindOrCreateKey(hive, parentPath);
  if (parent == 0 && !parentPath.empty()) return 0;
  sql_.insertKey.Bind(1, HiveNumber(hive)).Bind(2, parent).Bind(3, folded).Bind(4, path);
  return Run(sql_.insertKey) ? sqlite3_last_insert_rowid(database_.Handle()) : 0;
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
  Ending ending(*this);
  lastKey_ = 0;
  const Outcome outcome = Refresh() ? work() : Outcome::Failed;
  ending.isStored = outcome == Outcome::Done && Succeeded(database_.Execute("COMMIT"), "changed");
  return ending.isStored;
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
  sql_.findSubKey.Bind(1, HiveNumber(lastHive_)).Bind(2, key);
  const bool hasSubKeys = StepRow(sql_.findSubKey);
  sql_.findSubKey.Reset();
  if (readFailed_) return Outcome::Failed;
  if (hasSubKeys) return Outcome::Missing;
  // A log is made from rows: it must name none that is gone.
  if (!FoldLog()) return Outcome::Failed;
  sql_.deleteKeyValues.Bind(1, key);
  sql_.deleteKey.Bind(1, key);
  return Run(sql_.deleteKeyValues) && Run(sql_.deleteKey) ? Outcome::Done : Outcome::Failed;
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
  sql_.subKeys.Bind(1, HiveNumber(hive)).Bind(2, key);
  const StatementScope scope(sql_.subKeys);
  while (StepRow(sql_.subKeys)) names.emplace_back(RegistryKeyName(sql_.subKeys.Text(0)));
  return names;
}

void SqliteRegistry::TakeSnapshot(Hive hive, const std::string& folded) {
  snapshot_.Clear();
  const ReadView view(database_);
  if (!Refresh()) return;
  snapshot_.Start(hive, folded);
  sql_.readKey.Bind(1, HiveNumber(hive)).Bind(2, folded);
  const StatementScope scope(sql_.readKey);
  while (StepRow(sql_.readKey)) snapshot_.Add(sql_.readKey.Text(3), ValueAt(sql_.readKey));
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
  sql_.readValue.Bind(1, HiveNumber(hive)).Bind(2, foldedPath).Bind(3, folded);
  const StatementScope scope(sql_.readValue);
  if (StepRow(sql_.readValue)) value = ValueAt(sql_.readValue);
  return value;
}

bool SqliteRegistry::Write(Hive hive, const std::string& path, const std::string& name,
                           const RegistryValue& value) {
  if (FoldedPath(hive, path).empty()) return false;
  return Change([&] {
    if (lastKey_ == 0) lastKey_ = FindOrCreateKey(hive, NormalRegistryPath(path));
    return lastKey_ == 0 ? Outcome::Failed : WriteValue(name, value);
  });
}

std::int64_t SqliteRegistry::FindValue(std::int64_t key, std::string_view folded,
                                       std::optional<RegistryValue>& value) {
  sql_.findValue.Bind(1, key).Bind(2, folded);
  const StatementScope scope(sql_.findValue);
  const std::int64_t id = StepRow(sql_.findValue) ? sql_.findValue.Integer(0) : 0;
  if (id != 0) value = ValueAt(sql_.findValue);
  return id;
}

SqliteRegistry::Outcome SqliteRegistry::WriteValue(const std::string& name,
                                                   const RegistryValue& value) {
  const std::string folded = FoldCase(name);
  std::optional<RegistryValue> stored;
  const std::int64_t id = FindValue(lastKey_, folded, stored);
  if (readFailed_) return Outcome::Failed;
  if (stored == value) return Outcome::Done;
  if (isProgress_ && id > 0 && stored && stored->type == value.type) {
    log_.Note(id, stored->data, value.data);
    return Outcome::Done;
  }
  if (log_.Find(id) != nullptr && !FoldLog()) return Outcome::Failed;
  sql_.writeValue.Bind(1, lastKey_)
      .Bind(2, folded)
      .Bind(3, name)
      .Bind(4, static_cast<std::int64_t>(value.type))
      .Bind(5, std::span<const std::uint8_t>(value.data));
  return Run(sql_.writeValue) ? Outcome::Done : Outcome::Failed;
}

bool SqliteRegistry::DeleteValue(Hive hive, const std::string& path, const std::string& name) {
  return Change([&] {
    const std::int64_t key = FindKey(hive, FoldedPath(hive, path));
    if (key == 0) return readFailed_ ? Outcome::Failed : Outcome::Missing;
    std::optional<RegistryValue> stored;
    const std::int64_t id = FindValue(key, FoldCase(name), stored);
    if (id == 0) return readFailed_ ? Outcome::Failed : Outcome::Missing;
    if (log_.Find(id) != nullptr && !FoldLog()) return Outcome::Failed;
    sql_.deleteValue.Bind(1, id);
    return Run(sql_.deleteValue) ? Outcome::Done : Outcome::Failed;
  });
}

std::vector<NamedRegistryValue> SqliteRegistry::Values(Hive hive, const std::string& path) {
  std::vector<NamedRegistryValue> values;
  const ReadView view(database_);
  if (!inTransaction_ && !Refresh()) return values;
  const std::int64_t key = FindKey(hive, FoldedPath(hive, path));
  if (key == 0) return values;
  sql_.values.Bind(1, key);
  const StatementScope scope(sql_.values);
  while (StepRow(sql_.values)) {
    if (auto value = ValueAt(sql_.values)) {
      values.push_back({sql_.values.Text(3), std::move(*value)});
    }
  }
  return values;
}

}  // namespace wattlark
