#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace wattlark {

/// One connection to a database; closed at the end of its life. Results are SQLite's own codes.
class SqliteDatabase {
 public:
  /// `flags` are those of sqlite3_open_v2. A lock that another program holds is waited for
  /// `waitMilliseconds` at most.
  int Open(const std::string& nameOrUri, int flags, int waitMilliseconds);
  void Close() { connection_.reset(); }
  int Execute(const char* sql);
  sqlite3* Handle() const { return connection_.get(); }
  /// Whether a transaction is open.
  bool InTransaction() const { return sqlite3_get_autocommit(connection_.get()) == 0; }
  /// Why the last call failed, in words.
  std::string Problem() const { return Problem(sqlite3_extended_errcode(Handle())); }
  /// The same of a call with that result, which need not be the last one.
  std::string Problem(int result) const;

 private:
  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
  };
  std::unique_ptr<sqlite3, Closer> connection_;
};

/// Copies everything, as it is at one moment, over what `target` holds. The result is a SQLite
/// code.
int CopyDatabase(const SqliteDatabase& source, SqliteDatabase& target);

/// One prepared statement. Texts and bytes that are bound must live until `Reset`.
class SqliteStatement {
 public:
  SqliteStatement() = default;
  SqliteStatement(const SqliteDatabase& database, const char* sql) { Prepare(database, sql); }
  int Prepare(const SqliteDatabase& database, const char* sql);

  SqliteStatement& Bind(int index, std::int64_t value);
  SqliteStatement& Bind(int index, std::string_view text);
  SqliteStatement& Bind(int index, std::span<const std::uint8_t> bytes);
  /// SQLITE_ROW, SQLITE_DONE or an error.
  int Step();
  void Reset();

  /// SQLITE_INTEGER, SQLITE_TEXT, ...: what is stored, before it is asked for as something else.
  int Type(int column) const { return sqlite3_column_type(statement_.get(), column); }
  std::int64_t Integer(int column) const;
  std::string Text(int column) const;
  std::span<const std::uint8_t> Bytes(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

struct StatementText {
  SqliteStatement& statement;
  const char* sql;
};
/// Prepares each of them; the result is that of the first one that fails.
int PrepareAll(const SqliteDatabase& database, std::initializer_list<StatementText> texts);

/// Resets a statement at the end of its scope, so that it holds no lock of the file beyond.
class StatementScope {
 public:
  explicit StatementScope(SqliteStatement& statement) : statement_(statement) {}
  ~StatementScope() { statement_.Reset(); }
  StatementScope(const StatementScope&) = delete;
  StatementScope& operator=(const StatementScope&) = delete;

 private:
  SqliteStatement& statement_;
};

}  // namespace wattlark
