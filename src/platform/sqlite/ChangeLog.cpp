#include "platform/sqlite/ChangeLog.h"

#include <string_view>
#include <utility>

#include "platform/sqlite/ValueChange.h"

namespace wattlark {

namespace {

/// More than a log of ours comes to: a crafted one must not ask for all memory.
constexpr std::size_t kMostUnpacked = std::size_t{1} << 26;

/// Runs a statement without rows.
int Run(SqliteStatement& statement) {
  const int result = statement.Step();
  statement.Reset();
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

}  // namespace

bool ChangeLog::IsIn(const SqliteDatabase& database) {
  SqliteStatement table(database, "SELECT 1 FROM sqlite_schema WHERE name = 'generation'");
  return table.Step() == SQLITE_ROW;
}

int ChangeLog::Attach(SqliteDatabase& database) {
  if (!IsIn(database)) return SQLITE_OK;
  SqliteStatement generation(
      database,
      "SELECT count(*), sum(typeof(number) = 'integer' AND of = 'change') FROM generation");
  const int found = generation.Step();
  if (found != SQLITE_ROW) return found;
  if (generation.Integer(0) != 1 || generation.Integer(1) != 1) return SQLITE_CORRUPT;
  database_ = &database;
  const int prepared = PrepareAll(
      database,
      {
          {version_, "PRAGMA data_version"},
          {records_, "SELECT changes FROM change ORDER BY id"},
          {row_, "SELECT data FROM value WHERE id = ?1"},
          {append_, "INSERT INTO change(generation, changes) SELECT number, ?1 FROM generation"},
          {update_, "UPDATE value SET data = ?2 WHERE id = ?1"},
      });
  return prepared == SQLITE_OK ? Refresh() : prepared;
}

int ChangeLog::Refresh() {
  if (database_ == nullptr) return SQLITE_OK;
  std::int64_t version = 0;
  {
    const StatementScope scope(version_);
    const int result = version_.Step();
    if (result != SQLITE_ROW) return result;
    version = version_.Integer(0);
  }
  if (!isStale_ && version == seenVersion_) return SQLITE_OK;
  isStale_ = true;
  const int result = Read();
  isStale_ = result != SQLITE_OK;
  seenVersion_ = version;
  return result;
}

int ChangeLog::Read() {
  newest_.clear();
  noted_.clear();
  recordCount_ = 0;
  byteCount_ = 0;
  unpackedCount_ = 0;
  const StatementScope scope(records_);
  int result = SQLITE_ROW;
  while ((result = records_.Step()) == SQLITE_ROW) {
    const std::string_view record = AsText(records_.Bytes(0));
    ++recordCount_;
    byteCount_ += record.size();
    result = Add(record);
    if (result != SQLITE_OK) return result;
  }
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

int ChangeLog::Add(std::string_view record) {
  const auto unpacked = UnpackChanges(record);
  if (!unpacked) return SQLITE_CORRUPT;
  unpackedCount_ += unpacked->size();
  if (unpackedCount_ > kMostUnpacked) return SQLITE_CORRUPT;
  std::string_view changes = *unpacked;
  while (!changes.empty()) {
    const auto change = TakeChange(changes);
    if (!change) return SQLITE_CORRUPT;
    const auto [at, isNew] = newest_.try_emplace(change->value);
    Bytes& bytes = at->second;
    const int result = isNew ? ReadRow(change->value, bytes) : SQLITE_OK;
    if (result != SQLITE_OK) return result;
    auto after = change->Apply(bytes);
    if (!after) return SQLITE_CORRUPT;
    bytes = std::move(*after);
  }
  return SQLITE_OK;
}

int ChangeLog::ReadRow(std::int64_t value, Bytes& bytes) {
  const StatementScope scope(row_);
  const int result = row_.Bind(1, value).Step();
  if (result != SQLITE_ROW) return result == SQLITE_DONE ? SQLITE_CORRUPT : result;
  const auto stored = row_.Bytes(0);
  bytes.assign(stored.begin(), stored.end());
  return SQLITE_OK;
}

void ChangeLog::End(bool isStored) {
  isStale_ = isStale_ || (isDirty_ && !isStored);
  isDirty_ = false;
}

const ChangeLog::Bytes* ChangeLog::Find(std::int64_t value) const {
  const auto found = newest_.find(value);
  return found == newest_.end() ? nullptr : &found->second;
}

void ChangeLog::Note(std::int64_t value, std::span<const std::uint8_t> before, const Bytes& after) {
  isDirty_ = true;
  std::string change;
  AppendChange(value, before, after, change);
  // All of it or nothing, should there be no memory.
  noted_.reserve(noted_.size() + change.size());
  newest_.insert_or_assign(value, after);
  noted_ += change;
}

int ChangeLog::Store() {
  if (noted_.empty()) return SQLITE_OK;
  if (recordCount_ >= kMostRecords || byteCount_ >= kMostBytes || noted_.size() > kMostBytes ||
      unpackedCount_ + noted_.size() > kMostUnpacked) {
    return Fold();
  }
  const std::string record = PackChanges(noted_);
  append_.Bind(1, std::span(reinterpret_cast<const std::uint8_t*>(record.data()), record.size()));
  const int result = Run(append_);
  if (result == SQLITE_OK && sqlite3_changes(database_->Handle()) != 1) return SQLITE_CORRUPT;
  ++recordCount_;
  byteCount_ += record.size();
  unpackedCount_ += noted_.size();
  noted_.clear();
  return result;
}

int ChangeLog::Fold() {
  isDirty_ = true;
  for (const auto& [value, bytes] : newest_) {
    const int result = Run(update_.Bind(1, value).Bind(2, std::span<const std::uint8_t>(bytes)));
    if (result != SQLITE_OK) return result;
  }
  if (recordCount_ != 0) {
    // The log holds no secrets: to write zeros over its pages would cost as much as it has saved.
    database_->Execute("PRAGMA secure_delete = FAST");
    const int result =
        database_->Execute("DELETE FROM change; UPDATE generation SET number = number + 1");
    database_->Execute("PRAGMA secure_delete = ON");
    if (result != SQLITE_OK) return result;
  }
  newest_.clear();
  noted_.clear();
  recordCount_ = 0;
  byteCount_ = 0;
  unpackedCount_ = 0;
  return SQLITE_OK;
}

}  // namespace wattlark
