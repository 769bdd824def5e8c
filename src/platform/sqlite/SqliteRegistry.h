#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Registry.h"
#include "platform/sqlite/ChangeLog.h"
#include "platform/sqlite/KeySnapshot.h"
#include "platform/sqlite/SqliteDatabase.h"
#include "platform/sqlite/StoreSchema.h"

namespace wattlark {

/// The `Registry` port over one SQLite database.
///
/// A key is one row that holds its whole path, so that a value is found without a step for each
/// level. Changes outside a transaction are stored one by one, each safe against a power cut. A
/// lock of another program is waited for as long as the connection allows. Values of one key that
/// are read one after the other outside a transaction come from one look at the file (see
/// `KeySnapshot`). A value that is written as it is stored is not written again; what
/// progress changes in values that are there goes into the file's log (see `ChangeLog`).
class SqliteRegistry final : public Registry {
 public:
  /// Takes over a connection to a store with its tables; `registry` stays empty unless the result
  /// is SQLITE_OK. `name` is what error texts call the store.
  static int Attach(SqliteDatabase database, const std::string& name,
                    std::unique_ptr<Registry>& registry);

  bool KeyExists(Hive hive, const std::string& path) override;
  bool CreateKey(Hive hive, const std::string& path) override;
  bool DeleteKey(Hive hive, const std::string& path) override;
  std::vector<std::string> SubKeys(Hive hive, const std::string& path) override;

  std::optional<RegistryValue> Read(Hive hive, const std::string& path,
                                    const std::string& name) override;
  bool Write(Hive hive, const std::string& path, const std::string& name,
             const RegistryValue& value) override;
  bool DeleteValue(Hive hive, const std::string& path, const std::string& name) override;
  std::vector<NamedRegistryValue> Values(Hive hive, const std::string& path) override;

  bool Begin() override;
  void MarkProgress() override;
  bool Commit() override;
  void Rollback() override;
  std::string ErrorText() const override { return errorText_; }

 private:
  enum class Outcome { Done, Missing, Failed };
  /// Ends the transaction with its scope, an exception included.
  struct Ending {
    explicit Ending(SqliteRegistry& of) : registry(of) {}
    ~Ending() {
      if (isHeld) registry.EndTransaction(isStored);
    }
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;

    SqliteRegistry& registry;
    bool isStored = false;
    bool isHeld = true;
  };

  SqliteRegistry(SqliteDatabase database, const std::string& name)
      : database_(std::move(database)), name_(name) {}

  template <typename Work>
  bool Change(Work work);
  void Fail(const char* action);
  bool Succeeded(int result, const char* action);
  void EndTransaction(bool isStored);
  bool StepRow(SqliteStatement& statement);
  bool Run(SqliteStatement& statement);

  bool IsReadOnly() const { return sqlite3_db_readonly(database_.Handle(), "main") == 1; }
  bool Refresh();
  bool FoldLog();
  std::optional<RegistryValue> ValueAt(const SqliteStatement& row) const;

  const std::string& FoldedPath(Hive hive, const std::string& path);
  void TakeSnapshot(Hive hive, const std::string& folded);
  std::int64_t FindKey(Hive hive, std::string_view folded);
  std::int64_t FindOrCreateKey(Hive hive, const std::string& path);
  Outcome RemoveKey(std::int64_t key);
  /// The value's id, 0 when there is none.
  std::int64_t FindValue(std::int64_t key, std::string_view folded,
                         std::optional<RegistryValue>& value);
  Outcome WriteValue(const std::string& name, const RegistryValue& value);

  SqliteDatabase database_;
  std::string name_;
  std::string errorText_;
  bool readFailed_ = false;  ///< the last statement failed, rather than found nothing
  bool inTransaction_ = false;
  bool isProgress_ = false;  ///< changes may go into the log
  bool transactionFailed_ = false;

  Hive lastHive_ = Hive::CurrentUser;
  std::string lastPath_;
  std::string lastFolded_;
  /// Id of the last key; 0 when unknown. Kept within a transaction only: outside one, another
  /// process may delete the key between two calls.
  std::int64_t lastKey_ = 0;
  KeySnapshot snapshot_;

  StoreStatements sql_;
  ChangeLog log_;
};

}  // namespace wattlark
