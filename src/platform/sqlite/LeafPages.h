#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

/// The rows and index entries of a damaged database file, read page by page. Neither the file's
/// header and schema nor the pages that lead to others are asked, so that no damaged place hides
/// more than the rows on its own page.
class LeafPages {
 public:
  /// Called with a row whose first column is its rowid, or with an entry of three columns. Columns
  /// that a row lacks are NULL.
  using Row = std::function<void(const SqliteStatement&)>;
  static constexpr int kRowColumns = 6;

  /// Takes the whole pages of `bytes`: SQLite would fill up one that was cut off with zeros, and
  /// the values on it would come out wrong instead of missing. `pageSize` is a power of two, 512 to
  /// 65536.
  LeafPages(const std::string& bytes, std::size_t pageSize);

  /// Reads every page once. Of a page that is damaged itself, rows may come twice, and not all.
  void Read(const Row& row, const Row& entry);

 private:
  /// Makes of `page`, from 1, the one page of the table "row" and of the index "entry".
  bool Select(std::size_t page);

  std::size_t pageSize_;
  std::vector<unsigned char> image_;  ///< the file with a first page of our own; empty on failure
  std::vector<std::size_t> roots_;    ///< where that page names the page of a table
  SqliteDatabase database_;
};

}  // namespace wattlark
