#include "platform/sqlite/SalvageStore.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/RegistryPath.h"
#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

namespace {

struct KeyRow {
  Hive hive;
  std::string path;
};

/// The file's whole pages. SQLite would fill up a page that was cut off with zeros, and the values
/// on it would come out wrong instead of missing.
std::vector<unsigned char> WholePages(const std::string& file) {
  constexpr std::size_t kLargest = std::size_t{1} << 28;
  std::error_code ignored;
  std::ifstream stream(file, std::ios::binary);
  if (!stream || std::filesystem::file_size(file, ignored) > kLargest) return {};
  std::vector<unsigned char> bytes{std::istreambuf_iterator<char>(stream), {}};
  if (bytes.size() < 100) return {};
  const std::size_t stored = (std::size_t{bytes[16]} << 8) + bytes[17];
  const std::size_t pageSize = stored == 1 ? 65536 : stored;
  if (pageSize >= 512) bytes.resize(bytes.size() / pageSize * pageSize);
  return bytes;
}

/// Runs `row` for the rows of a query up to the first damaged one. A damaged tree can lead in
/// circles, so that no more rows are taken than the file has room for.
template <typename Row>
void Scan(const SqliteDatabase& database, const char* sql, std::size_t limit, Row row) {
  SqliteStatement statement(database, sql);
  for (std::size_t i = 0; i < limit && statement.Step() == SQLITE_ROW; ++i) row(statement);
}

// A scan ends at the first damaged page. Table and index lie on different pages, and each is walked
// from both ends, so that one damaged page hides no more than its own rows.

std::map<std::int64_t, KeyRow> ReadKeys(const SqliteDatabase& database, std::size_t limit) {
  std::map<std::int64_t, KeyRow> keys;
  for (const char* sql : {
           "SELECT id, hive, path FROM key NOT INDEXED ORDER BY id",
           "SELECT id, hive, path FROM key NOT INDEXED ORDER BY id DESC",
           "SELECT id, hive, folded FROM key INDEXED BY key_path ORDER BY hive, folded",
           "SELECT id, hive, folded FROM key INDEXED BY key_path ORDER BY hive DESC, folded DESC",
       }) {
    Scan(database, sql, limit, [&keys](const SqliteStatement& row) {
      const std::int64_t hive = row.Integer(1);
      std::string path = NormalRegistryPath(row.Text(2));
      if ((hive != 0 && hive != 1) || path.empty()) return;
      keys.try_emplace(row.Integer(0), KeyRow{static_cast<Hive>(hive), std::move(path)});
    });
  }
  return keys;
}

std::set<std::int64_t> ReadValueIds(const SqliteDatabase& database, std::size_t limit) {
  std::set<std::int64_t> ids;
  for (const char* sql : {
           "SELECT id FROM value NOT INDEXED ORDER BY id",
           "SELECT id FROM value NOT INDEXED ORDER BY id DESC",
           "SELECT id FROM value INDEXED BY value_name ORDER BY key, folded",
           "SELECT id FROM value INDEXED BY value_name ORDER BY key DESC, folded DESC",
       }) {
    Scan(database, sql, limit, [&ids](const SqliteStatement& row) { ids.insert(row.Integer(0)); });
  }
  return ids;
}

bool IsType(std::int64_t number) {
  return (number >= 1 && number <= 5) || number == static_cast<int>(RegistryType::MultiString);
}

}  // namespace

Salvage SalvageStore(const std::string& file, Registry& into) {
  Salvage salvage;
  std::vector<unsigned char> pages = WholePages(file);
  const auto size = static_cast<sqlite3_int64>(pages.size());
  SqliteDatabase database;
  if (pages.empty() || database.Open(":memory:", SQLITE_OPEN_READWRITE, 0) != SQLITE_OK ||
      sqlite3_deserialize(database.Handle(), "main", pages.data(), size, size,
                          SQLITE_DESERIALIZE_READONLY) != SQLITE_OK) {
    return salvage;
  }
  // Without this a file that is shorter than its header says is refused as a whole.
  database.Execute("PRAGMA writable_schema = ON");

  const std::size_t limit = pages.size();
  const std::map<std::int64_t, KeyRow> keys = ReadKeys(database, limit);
  if (keys.empty() || !into.Begin()) {
    if (!keys.empty()) salvage.problem = into.ErrorText();
    return salvage;
  }
  for (const auto& [id, key] : keys) {
    if (into.CreateKey(key.hive, key.path)) ++salvage.keys;
  }
  SqliteStatement find(database, "SELECT key, name, type, data FROM value WHERE id = ?1");
  for (const std::int64_t id : ReadValueIds(database, limit)) {
    find.Bind(1, id);
    if (find.Step() == SQLITE_ROW && IsType(find.Integer(2))) {
      const auto key = keys.find(find.Integer(0));
      const auto bytes = find.Bytes(3);
      const RegistryValue value{static_cast<RegistryType>(find.Integer(2)),
                                {bytes.begin(), bytes.end()}};
      if (key != keys.end() &&
          into.Write(key->second.hive, key->second.path, find.Text(1), value)) {
        ++salvage.values;
      }
    }
    find.Reset();
  }
  if (!into.Commit()) return {0, 0, into.ErrorText()};
  return salvage;
}

}  // namespace wattlark
