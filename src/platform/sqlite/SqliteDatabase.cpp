#include "platform/sqlite/SqliteDatabase.h"

#include <cstring>

namespace wattlark {

int SqliteDatabase::Open(const std::string& nameOrUri, int flags, int waitMilliseconds) {
  sqlite3* connection = nullptr;
  const int result =
      sqlite3_open_v2(nameOrUri.c_str(), &connection, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  connection_.reset(connection);
  if (connection == nullptr) return SQLITE_NOMEM;
  sqlite3_extended_result_codes(connection, 1);
  sqlite3_busy_timeout(connection, waitMilliseconds);
  // A file that somebody else prepared must not be able to run anything.
  sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  return result;
}

int SqliteDatabase::Execute(const char* sql) {
  return sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr);
}

std::string SqliteDatabase::Problem(int result) const {
  if (connection_ == nullptr) return "there is not enough memory";
  const int systemError = sqlite3_system_errno(connection_.get());
  const std::string reason =
      systemError != 0 ? std::string(" (") + std::strerror(systemError) + ")" : std::string();
  switch (result & 0xFF) {
    case SQLITE_FULL:
      return "the disk is full";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "another program is using it";
    case SQLITE_READONLY:
      return "it can only be read";
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return "it is damaged";
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_CANTOPEN:
      return "its file cannot be opened" + reason;
    case SQLITE_IOERR:
      return "the disk reports an error" + reason;
    default:
      return result == sqlite3_extended_errcode(connection_.get())
                 ? sqlite3_errmsg(connection_.get())
                 : sqlite3_errstr(result);
  }
}

int CopyDatabase(const SqliteDatabase& source, SqliteDatabase& target) {
  sqlite3_backup* backup = sqlite3_backup_init(target.Handle(), "main", source.Handle(), "main");
  sqlite3_backup_step(backup, -1);
  return sqlite3_backup_finish(backup);
}

int SqliteStatement::Prepare(const SqliteDatabase& database, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  const int result = sqlite3_prepare_v3(database.Handle(), sql, -1, SQLITE_PREPARE_PERSISTENT,
                                        &statement, nullptr);
  statement_.reset(statement);
  return result;
}

SqliteStatement& SqliteStatement::Bind(int index, std::int64_t value) {
  sqlite3_bind_int64(statement_.get(), index, value);
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int index, std::string_view text) {
  // A null pointer would bind NULL instead of an empty text.
  const char* data = text.empty() ? "" : text.data();
  sqlite3_bind_text64(statement_.get(), index, data, text.size(), SQLITE_STATIC, SQLITE_UTF8);
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int index, std::span<const std::uint8_t> bytes) {
  const void* data = bytes.empty() ? static_cast<const void*>("") : bytes.data();
  sqlite3_bind_blob64(statement_.get(), index, data, bytes.size(), SQLITE_STATIC);
  return *this;
}

int SqliteStatement::Step() {
  return statement_ == nullptr ? SQLITE_MISUSE : sqlite3_step(statement_.get());
}

void SqliteStatement::Reset() {
  sqlite3_reset(statement_.get());
}

std::int64_t SqliteStatement::Integer(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

std::string SqliteStatement::Text(int column) const {
  const unsigned char* text = sqlite3_column_text(statement_.get(), column);
  if (text == nullptr) return {};
  const int size = sqlite3_column_bytes(statement_.get(), column);
  return std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
}

std::span<const std::uint8_t> SqliteStatement::Bytes(int column) const {
  const void* data = sqlite3_column_blob(statement_.get(), column);
  if (data == nullptr) return {};
  const int size = sqlite3_column_bytes(statement_.get(), column);
  return {static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(size)};
}

int PrepareAll(const SqliteDatabase& database, std::initializer_list<StatementText> texts) {
  for (const StatementText& text : texts) {
    const int result = text.statement.Prepare(database, text.sql);
    if (result != SQLITE_OK) return result;
  }
  return SQLITE_OK;
}

}  // namespace wattlark
