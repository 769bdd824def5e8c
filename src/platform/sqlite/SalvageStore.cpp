#include "platform/sqlite/SalvageStore.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/RegistryPath.h"
#include "platform/sqlite/LeafPages.h"
#include "platform/sqlite/StoreSchema.h"
#include "platform/sqlite/ValueChange.h"
#include "support/modText.h"

namespace wattlark {

namespace {

struct KeyRow {
  Hive hive = Hive::CurrentUser;
  std::string folded;
  std::string path;
  bool isFromIndex = false;  ///< the row is lost, the path is the folded one
  bool operator==(const KeyRow&) const = default;
};

struct ValueRow {
  std::int64_t key = 0;
  std::string folded;
  std::string name;
  RegistryValue value;
  bool operator==(const ValueRow&) const = default;
};

/// Changes of values since their rows were written, in the order of their ids.
struct LogRow {
  std::int64_t generation = 0;
  std::string record;
  bool operator==(const LogRow&) const = default;
};

/// What an index says of a value.
struct ValueEntry {
  std::int64_t key = 0;
  std::string folded;
};

bool HasType(const SqliteStatement& row, int column, int type) {
  return row.Type(column) == type;
}

/// The rows and index entries of a store. Most of what a row says of itself stands in the file
/// three times: folded and as it was written in the row, and folded in an index. Two that agree
/// outvote a third one that was damaged.
class StoreContents {
 public:
  explicit StoreContents(LeafPages& pages) {
    pages.Read([this](const SqliteStatement& row) { AddRow(row); },
               [this](const SqliteStatement& entry) { AddEntry(entry); });
    if (generations_.size() == 1) {
      for (const auto& [id, records] : changes_) {
        for (const LogRow& record : records) ApplyChanges(record);
      }
    }
    for (const auto& [id, rows] : keyRows_) AddKey(id, rows);
    for (const auto& [id, folded] : keyEntries_) {
      keys_.try_emplace(id, KeyRow{Hive::CurrentUser, folded, folded, true});
    }
    std::erase_if(keys_, [](const auto& key) {
      return key.second.path.empty() || NormalRegistryPath(key.second.path) != key.second.path;
    });
  }

  std::size_t RowCount() const { return keyRows_.size() + valueRows_.size(); }

  Salvage WriteTo(Registry& into) {
    Salvage salvage;
    if (keys_.empty()) return salvage;
    if (!into.Begin()) return {0, 0, into.ErrorText()};
    for (const auto& [id, key] : keys_) {
      if (!key.isFromIndex && into.CreateKey(key.hive, key.path)) ++salvage.keys;
    }
    // Rows that contradict their index come last, so that they take no other row's place.
    for (const bool contradicted : {false, true}) {
      for (auto& [id, rows] : valueRows_) {
        for (ValueRow& row : rows) {
          if (IsContradicted(id, row) == contradicted && Place(id, row) && Write(row, into)) {
            ++salvage.values;
          }
        }
      }
    }
    if (!into.Commit()) return {0, 0, into.ErrorText()};
    return salvage;
  }

 private:
  /// A page is read twice, and a damaged id may be another row's: equal rows count once.
  template <typename Row>
  static void Add(std::vector<Row>& rows, Row row) {
    if (std::ranges::find(rows, row) == rows.end()) rows.push_back(std::move(row));
  }

  void AddKey(std::int64_t id, const std::vector<KeyRow>& rows) {
    const auto entry = keyEntries_.find(id);
    KeyRow key = rows.front();
    if (entry != keyEntries_.end()) {
      const auto sound = std::ranges::find(rows, entry->second, &KeyRow::folded);
      if (sound != rows.end()) key = *sound;
      const std::string folded = FoldCase(key.path);
      if (folded != key.folded && folded != entry->second) key.path = entry->second;
    }
    keys_.emplace(id, std::move(key));
  }

  void AddRow(const SqliteStatement& row) {
    const std::int64_t id = row.Integer(0);
    if (!HasType(row, 1, SQLITE_INTEGER)) return;
    if (HasType(row, 3, SQLITE_NULL)) {
      if (HasType(row, 2, SQLITE_TEXT) && row.Text(2) == "change")
        generations_.insert(row.Integer(1));
      if (HasType(row, 2, SQLITE_BLOB)) {
        const auto bytes = row.Bytes(2);
        Add(changes_[id], LogRow{row.Integer(1), {bytes.begin(), bytes.end()}});
      }
      return;
    }
    if (HasType(row, 2, SQLITE_TEXT) && HasType(row, 3, SQLITE_TEXT) &&
        HasType(row, 4, SQLITE_INTEGER) && HasType(row, 5, SQLITE_BLOB)) {
      const auto type = StoredType(row.Integer(4));
      const auto bytes = row.Bytes(5);
      if (!type) return;
      Add(valueRows_[id],
          ValueRow{
              row.Integer(1), row.Text(2), row.Text(3), {*type, {bytes.begin(), bytes.end()}}});
    } else if (HasType(row, 2, SQLITE_INTEGER) && HasType(row, 3, SQLITE_TEXT) &&
               HasType(row, 4, SQLITE_TEXT) && (row.Integer(1) == 0 || row.Integer(1) == 1)) {
      Add(keyRows_[id], KeyRow{static_cast<Hive>(row.Integer(1)), row.Text(3), row.Text(4), false});
    }
  }

  void AddEntry(const SqliteStatement& entry) {
    if (!HasType(entry, 0, SQLITE_INTEGER) || !HasType(entry, 1, SQLITE_TEXT) ||
        !HasType(entry, 2, SQLITE_INTEGER)) {
      return;
    }
    // The first column is the hive of a key, or the key of a value, which is never 0.
    if (entry.Integer(0) == static_cast<int>(Hive::CurrentUser)) {
      keyEntries_.try_emplace(entry.Integer(2), entry.Text(1));
    } else {
      valueEntries_.try_emplace(entry.Integer(2), ValueEntry{entry.Integer(0), entry.Text(1)});
    }
  }

  /// What the log says of a row's value, as far as it fits what was read of the row. Pages that
  /// are no longer used still hold records of generations that are over.
  void ApplyChanges(const LogRow& row) {
    if (!generations_.contains(row.generation)) return;
    const std::optional<std::string> unpacked = UnpackChanges(row.record);
    if (!unpacked) return;
    std::string_view changes = *unpacked;
    while (const auto change = TakeChange(changes)) {
      const auto rows = valueRows_.find(change->value);
      // After one that did not fit, the next are made from other bytes.
      if (rows == valueRows_.end() || misfits_.contains(change->value)) continue;
      bool fits = false;
      for (ValueRow& changed : rows->second) {
        if (auto after = change->Apply(changed.value.data)) {
          changed.value.data = std::move(*after);
          fits = true;
        }
      }
      if (!fits) misfits_.insert(change->value);
    }
  }

  bool IsContradicted(std::int64_t id, const ValueRow& row) const {
    if (FoldCase(row.name) != row.folded) return true;
    const auto entry = valueEntries_.find(id);
    return entry != valueEntries_.end() &&
           (entry->second.key != row.key || entry->second.folded != row.folded);
  }

  /// Gives the row the name and the key that most of the file speaks for; false when there is no
  /// such key, or another row has that place.
  bool Place(std::int64_t id, ValueRow& row) {
    const auto entry = valueEntries_.find(id);
    const bool hasEntry = entry != valueEntries_.end();
    if (FoldCase(row.name) != row.folded && hasEntry &&
        FoldCase(row.name) != entry->second.folded) {
      row.name = entry->second.folded;
    }
    if (Claim(row.key, row.name)) return true;
    if (!hasEntry || !Claim(entry->second.key, row.name)) return false;
    row.key = entry->second.key;
    return true;
  }
  bool Claim(std::int64_t key, const std::string& name) {
    return keys_.contains(key) && claimed_.emplace(key, FoldCase(name)).second;
  }

  bool Write(const ValueRow& row, Registry& into) const {
    const KeyRow& key = keys_.at(row.key);
    return into.Write(key.hive, key.path, row.name, row.value);
  }

  std::map<std::int64_t, std::vector<KeyRow>> keyRows_;
  std::map<std::int64_t, std::vector<ValueRow>> valueRows_;
  std::map<std::int64_t, std::vector<LogRow>> changes_;
  std::set<std::int64_t> misfits_;      ///< values of which a change of the log is missing
  std::set<std::int64_t> generations_;  ///< of the log: one, when nothing of it is damaged
  std::map<std::int64_t, std::string> keyEntries_;
  std::map<std::int64_t, ValueEntry> valueEntries_;
  std::map<std::int64_t, KeyRow> keys_;
  std::set<std::pair<std::int64_t, std::string>> claimed_;
};

std::string ReadFile(const std::string& file) {
  constexpr std::size_t kLargest = std::size_t{1} << 28;
  std::error_code error;
  std::ifstream stream(file, std::ios::binary);
  if (!stream || std::filesystem::file_size(file, error) > kLargest || error) return {};
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The size that the header names, then the one that a new store has.
std::vector<std::size_t> PageSizes(const std::string& bytes) {
  constexpr std::size_t kUsual = 4096;
  constexpr std::size_t kHeader = 100;
  if (bytes.size() < kHeader) return {};
  const auto byte = [&bytes](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  const std::size_t stored = (std::size_t{byte(16)} << 8) + byte(17);
  const std::size_t size = stored == 1 ? 65536 : stored;
  if (size < 512 || (size & (size - 1)) != 0 || size == kUsual) return {kUsual};
  return {size, kUsual};
}

}  // namespace

Salvage SalvageStore(const std::string& file, Registry& into) {
  const std::string bytes = ReadFile(file);
  std::optional<StoreContents> best;
  for (const std::size_t pageSize : PageSizes(bytes)) {
    LeafPages pages(bytes, pageSize);
    StoreContents contents(pages);
    if (!best || contents.RowCount() > best->RowCount()) best = std::move(contents);
  }
  return best ? best->WriteTo(into) : Salvage();
}

}  // namespace wattlark
