#include "platform/sqlite/LeafPages.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

namespace wattlark {

namespace {

constexpr unsigned char kTableLeaf = 0x0D;
constexpr unsigned char kIndexLeaf = 0x0A;
constexpr std::size_t kPageCountOffset = 28;
/// A page number that stands in the first page for the one to be read, four bytes wide.
constexpr unsigned char kRootByte = 0x7A;
constexpr std::size_t kRootBytes = 4;

void PutNumber(unsigned char* to, std::size_t number) {
  for (std::size_t i = 0; i < kRootBytes; ++i) {
    to[i] = static_cast<unsigned char>(number >> (8 * (kRootBytes - 1 - i)));
  }
}

/// The first page of a database with one table of rows and one of index entries.
std::vector<unsigned char> FirstPage(std::size_t pageSize) {
  SqliteDatabase database;
  if (database.Open(":memory:", SQLITE_OPEN_READWRITE, 0) != SQLITE_OK) return {};
  const std::string sizing = "PRAGMA page_size = " + std::to_string(pageSize);
  if (database.Execute(sizing.c_str()) != SQLITE_OK ||
      database.Execute("CREATE TABLE row(a INTEGER PRIMARY KEY, b, c, d, e, f);"
                       "CREATE TABLE entry(a, b, c, PRIMARY KEY(a, b, c)) WITHOUT ROWID;"
                       "PRAGMA writable_schema = ON;"
                       "UPDATE sqlite_schema SET rootpage = 0x7A7A7A7A") != SQLITE_OK) {
    return {};
  }
  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, void (*)(void*)> bytes(
      sqlite3_serialize(database.Handle(), "main", &size, 0), sqlite3_free);
  if (!bytes || static_cast<std::size_t>(size) < pageSize) return {};
  return {bytes.get(), bytes.get() + pageSize};
}

}  // namespace

LeafPages::LeafPages(const std::string& bytes, std::size_t pageSize) : pageSize_(pageSize) {
  std::vector<unsigned char> first = FirstPage(pageSize);
  if (bytes.size() < pageSize || first.empty()) return;
  const std::array<unsigned char, kRootBytes> root{kRootByte, kRootByte, kRootByte, kRootByte};
  for (auto at = first.begin();
       (at = std::search(at, first.end(), root.begin(), root.end())) != first.end();
       at += kRootBytes) {
    roots_.push_back(static_cast<std::size_t>(at - first.begin()));
  }
  const std::size_t pages = bytes.size() / pageSize;
  PutNumber(&first[kPageCountOffset], pages);
  image_.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(pages * pageSize));
  std::copy(first.begin(), first.end(), image_.begin());
  if (database_.Open(":memory:", SQLITE_OPEN_READWRITE, 0) != SQLITE_OK) image_.clear();
  // A damaged length must not ask for more memory than the file could fill.
  sqlite3_limit(database_.Handle(), SQLITE_LIMIT_LENGTH, static_cast<int>(image_.size()));
}

bool LeafPages::Select(std::size_t page) {
  for (const std::size_t root : roots_) PutNumber(&image_[root], page);
  const auto size = static_cast<sqlite3_int64>(image_.size());
  return sqlite3_deserialize(database_.Handle(), "main", image_.data(), size, size,
                             SQLITE_DESERIALIZE_READONLY) == SQLITE_OK;
}

void LeafPages::Read(const Row& row, const Row& entry) {
  for (std::size_t page = 2; page <= image_.size() / pageSize_; ++page) {
    const unsigned char type = image_[(page - 1) * pageSize_];
    if ((type != kTableLeaf && type != kIndexLeaf) || !Select(page)) continue;
    // A scan ends at the first damaged row: from both ends, only what lies between two is missed.
    const bool isTable = type == kTableLeaf;
    for (const char* sql : {isTable ? "SELECT * FROM row" : "SELECT * FROM entry",
                            isTable ? "SELECT * FROM row ORDER BY a DESC"
                                    : "SELECT * FROM entry ORDER BY a DESC, b DESC, c DESC"}) {
      SqliteStatement statement(database_, sql);
      // Each row takes two bytes at least, whatever a damaged page says of their number.
      std::size_t left = pageSize_ / 2;
      while (left-- > 0 && statement.Step() == SQLITE_ROW) (isTable ? row : entry)(statement);
    }
  }
}

}  // namespace wattlark
