// The transactions of the settings store.

#include "platform/sqlite/SqliteRegistry.h"

namespace wattlark {

bool SqliteRegistry::Begin() {
  if (inTransaction_) {
    errorText_ = name_ + " could not be changed: a transaction is open already";
    return false;
  }
  // Over a store that can only be read a transaction still gives a consistent view.
  const bool readOnly = sqlite3_db_readonly(database_.Handle(), "main") == 1;
  if (database_.Execute(readOnly ? "BEGIN" : "BEGIN IMMEDIATE") != SQLITE_OK) {
    Fail("changed");
    return false;
  }
  if (!Refresh()) {
    EndTransaction(false);
    return false;
  }
  inTransaction_ = true;
  errorText_.clear();
  snapshot_.Clear();
  lastKey_ = 0;
  return true;
}

bool SqliteRegistry::Commit() {
  if (!inTransaction_) return false;
  bool done = !transactionFailed_ && Succeeded(log_.Store(), "changed");
  if (done && database_.Execute("COMMIT") != SQLITE_OK) {
    Fail("changed");
    done = false;
  }
  EndTransaction(done);
  return done;
}

void SqliteRegistry::Rollback() {
  if (inTransaction_) EndTransaction(false);
}

void SqliteRegistry::EndTransaction(bool isStored) {
  if (database_.InTransaction()) database_.Execute("ROLLBACK");
  if (!isStored) log_.Forget();
  inTransaction_ = false;
  isProgress_ = false;
  transactionFailed_ = false;
  lastKey_ = 0;
}

}  // namespace wattlark
