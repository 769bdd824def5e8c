#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

/// Where the rows of the meters of a good store lie in its file, found by searching for their
/// bytes: what a damaged place can cost is thus known without a database.
class StoreRows {
 public:
  struct Place {
    std::size_t begin = 0;  ///< the record's bytes in the file; the few before are the cell's head
    std::size_t end = 0;
    bool IsOnPage(std::size_t page, std::size_t pageSize) const { return begin / pageSize == page; }
    bool Holds(std::size_t offset) const { return offset + kHead >= begin && offset < end; }

   private:
    static constexpr std::size_t kHead = 16;
  };
  struct Value {
    std::string name;
    std::string data;
    Place place;
  };
  struct Key {
    std::vector<Place> copies;  ///< in the table and in an index: either is enough
    std::vector<Value> values;
  };

  static constexpr std::size_t kPageSize = 4096;

  /// `bytes` is the file, which nothing may have open for changes.
  StoreRows(const std::string& file, const std::string& bytes) {
    SqliteDatabase database;
    if (database.Open(file, SQLITE_OPEN_READONLY, 0) != SQLITE_OK) {
      throw std::runtime_error("the good store cannot be read");
    }
    std::map<std::int64_t, std::string> paths;
    SqliteStatement keyRow(database, "SELECT id, hive, parent, folded, path FROM key");
    while (keyRow.Step() == SQLITE_ROW) {
      const std::string folded = keyRow.Text(3);
      const std::string path = keyRow.Text(4);
      paths[keyRow.Integer(0)] = path;
      // The names of the keys above are part of every path below.
      if (path.find(kMeters) == std::string::npos) continue;
      Key& key = keys_[path];
      key.copies = {Find(bytes, Number(keyRow.Integer(2)) + folded + path),
                    Find(bytes, folded + Number(keyRow.Integer(0)), folded + path)};
    }
    SqliteStatement row(database, "SELECT key, folded, name, type, data FROM value");
    while (row.Step() == SQLITE_ROW) {
      const auto data = row.Bytes(4);
      if (paths.at(row.Integer(0)).find(kMeters) == std::string::npos) continue;
      const std::string text(data.begin(), data.end());
      const Place place = Find(bytes, Number(row.Integer(0)) + row.Text(1) + row.Text(2) +
                                          Number(row.Integer(3)) + text);
      keys_.at(paths.at(row.Integer(0))).values.push_back({row.Text(2), text, place});
      ++valueCount_;
    }
  }

  const std::map<std::string, Key>& Keys() const { return keys_; }
  std::size_t ValueCount() const { return valueCount_; }

 private:
  static constexpr const char* kMeters = "KillAWatts\\";

  /// A small whole number as a record's body holds it: 0 and 1 are kept in the record's head.
  static std::string Number(std::int64_t value) {
    if (value == 0 || value == 1) return {};
    if (value < 128) return {static_cast<char>(value)};
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
  }
  /// The only place of `text` in the file that is not one of `except`.
  static Place Find(const std::string& bytes, const std::string& text,
                    const std::string& except = "\xFF\xFF") {
    std::size_t found = std::string::npos;
    for (std::size_t at = 0; (at = bytes.find(text, at)) != std::string::npos; ++at) {
      if (bytes.compare(at, except.size(), except) == 0) continue;
      if (found != std::string::npos) throw std::runtime_error("a row is there twice: " + text);
      found = at;
    }
    if (found == std::string::npos) throw std::runtime_error("a row is not there whole: " + text);
    return {found, found + text.size()};
  }

  std::map<std::string, Key> keys_;
  std::size_t valueCount_ = 0;
};

}  // namespace wattlark
