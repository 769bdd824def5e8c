#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

/// Changes of values that the file keeps apart from the values' own rows, a record for each save.
///
/// A save every few minutes changes a little of almost every page of a store with many meters, and
/// a page is written twice. A packed record of what changed is a fiftieth of that. The rows are
/// brought up to date when something else changes a value of the log, a value or key is deleted, or
/// the log has grown long; the generation of the log's records is over then, and what the file
/// still shows of them is recognised by its number. Results are SQLite's codes; SQLITE_CORRUPT as
/// well when the log does not fit the rows.
class ChangeLog {
 public:
  using Bytes = std::vector<std::uint8_t>;

  /// Records and bytes of a log that the next save brings into the rows: half a day of saves every
  /// five minutes.
  static constexpr std::size_t kMostRecords = 144;
  static constexpr std::size_t kMostBytes = std::size_t{1} << 20;

  /// Whether the store has the table for it.
  static bool IsIn(const SqliteDatabase& database);
  /// Prepares the statements and reads the log. `database` must outlive this object. A store
  /// without the table has no log, and stays without one.
  int Attach(SqliteDatabase& database);
  /// Reads the log again when another connection has changed the store, or a change was undone.
  int Refresh();
  /// The transaction is over; what was noted or folded in it is undone unless it is stored.
  void End(bool isStored);

  /// Whether changes can be noted.
  bool IsKept() const { return database_ != nullptr; }
  bool IsEmpty() const { return newest_.empty(); }
  /// The newest bytes of a value whose row is out of date, else null.
  const Bytes* Find(std::int64_t value) const;

  // Within a transaction:

  /// Notes that the value changes from `before` to `after`.
  void Note(std::int64_t value, std::span<const std::uint8_t> before, const Bytes& after);
  /// Stores what was noted, as a record or, when the log is long enough, in the rows.
  int Store();
  /// Brings the rows up to date and empties the log.
  int Fold();

 private:
  int Load();
  int Read();
  int Add(std::string_view record);
  int ReadRow(std::int64_t value, Bytes& bytes);

  SqliteDatabase* database_ = nullptr;
  SqliteStatement version_;
  SqliteStatement records_;
  SqliteStatement row_;
  SqliteStatement append_;
  SqliteStatement update_;
  std::map<std::int64_t, Bytes> newest_;
  std::string noted_;
  std::size_t recordCount_ = 0;
  std::size_t byteCount_ = 0;
  std::size_t unpackedCount_ = 0;
  std::int64_t seenVersion_ = 0;
  bool isStale_ = true;   ///< to be read again
  bool isDirty_ = false;  ///< the transaction has changed it
};

}  // namespace wattlark
