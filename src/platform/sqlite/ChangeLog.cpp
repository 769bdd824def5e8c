#include "platform/sqlite/ChangeLog.h"

#include <string_view>
#include <utility>

#include "platform/sqlite/ValueChange.h"

namespace wattlark {

namespace {

std::string_view AsText(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

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
  database_ = &database;
  struct Text {
    SqliteStatement& statement;
    const char* sql;
  };
  const Text texts[] = {
      {version_, "PRAGMA data_version"},
      {records_, "SELECT changes FROM change ORDER BY id"},
      {row_, "SELECT data FROM value WHERE id = ?1"},
      {append_, "INSERT INTO change(generation, changes) SELECT number, ?1 FROM generation"},
      {update_, "UPDATE value SET data = ?2 WHERE id = ?1"},
  };
  for (const Text& text : texts) {
    const int result = text.statement.Prepare(database, text.sql);
    if (result != SQLITE_OK) return result;
  }
  return Refresh();
}

int ChangeLog::Refresh() {
  if (database_ == nullptr) return SQLITE_OK;
  const int result = version_.Step();
  const std::int64_t version = result == SQLITE_ROW ? version_.Integer(0) : 0;
  version_.Reset();
  if (result != SQLITE_ROW) return result;
  if (!isStale_ && version == seenVersion_) return SQLITE_OK;
  const int loaded = Load();
  isStale_ = loaded != SQLITE_OK;
  seenVersion_ = version;
  return loaded;
}

int ChangeLog::Load() {
  newest_.clear();
  noted_.clear();
  recordCount_ = 0;
  byteCount_ = 0;
  int result = SQLITE_ROW;
  while ((result = records_.Step()) == SQLITE_ROW) {
    const std::string_view record = AsText(records_.Bytes(0));
    ++recordCount_;
    byteCount_ += record.size();
    result = Add(record);
    if (result != SQLITE_OK) break;
  }
  records_.Reset();
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

int ChangeLog::Add(std::string_view record) {
  const auto unpacked = UnpackChanges(record);
  if (!unpacked) return SQLITE_CORRUPT;
  std::string_view changes = *unpacked;
  while (!changes.empty()) {
    const auto change = TakeChange(changes);
    if (!change) return SQLITE_CORRUPT;
    auto at = newest_.find(change->value);
    if (at == newest_.end()) {
      const int result = row_.Bind(1, change->value).Step();
      const auto bytes = result == SQLITE_ROW ? row_.Bytes(0) : std::span<const std::uint8_t>();
      at = newest_.emplace(change->value, Bytes(bytes.begin(), bytes.end())).first;
      row_.Reset();
      if (result != SQLITE_ROW) return result == SQLITE_DONE ? SQLITE_CORRUPT : result;
    }
    auto after = change->Apply(at->second);
    if (!after) return SQLITE_CORRUPT;
    at->second = std::move(*after);
  }
  return SQLITE_OK;
}

const ChangeLog::Bytes* ChangeLog::Find(std::int64_t value) const {
  const auto found = newest_.find(value);
  return found == newest_.end() ? nullptr : &found->second;
}

void ChangeLog::Note(std::int64_t value, std::span<const std::uint8_t> before, const Bytes& after) {
  AppendChange(value, before, after, noted_);
  newest_.insert_or_assign(value, after);
}

int ChangeLog::Store() {
  if (noted_.empty()) return SQLITE_OK;
  if (recordCount_ >= kMostRecords || byteCount_ >= kMostBytes || noted_.size() > kMostBytes) {
    return Fold();
  }
  const std::string record = PackChanges(noted_);
  append_.Bind(1, std::span(reinterpret_cast<const std::uint8_t*>(record.data()), record.size()));
  const int result = Run(append_);
  if (result == SQLITE_OK && sqlite3_changes(database_->Handle()) != 1) return SQLITE_CORRUPT;
  ++recordCount_;
  byteCount_ += record.size();
  noted_.clear();
  return result;
}

int ChangeLog::Fold() {
  for (const auto& [value, bytes] : newest_) {
    const int result = Run(update_.Bind(1, value).Bind(2, std::span<const std::uint8_t>(bytes)));
    if (result != SQLITE_OK) return result;
  }
  if (recordCount_ != 0) {
    // The pages of the log hold numbers alone: to write zeros over them would cost as much as they
    // have saved.
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
  return SQLITE_OK;
}

}  // namespace wattlark
