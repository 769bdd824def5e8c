// The transactions of the settings store.

#include "platform/sqlite/SqliteRegistry.h"

namespace wattlark {

bool SqliteRegistry::Begin() {
  if (inTransaction_) {
    errorText_ = name_ + " could not be changed: a transaction is open already";
    return false;
  }
  // Over a store that can only be read a transaction still gives a consistent view.
  if (database_.Execute(IsReadOnly() ? "BEGIN" : "BEGIN IMMEDIATE") != SQLITE_OK) {
    Fail("changed");
    return false;
  }
  Ending ending(*this);
  if (!Refresh()) return false;
  ending.isHeld = false;
  inTransaction_ = true;
  errorText_.clear();
  snapshot_.Clear();
  lastKey_ = 0;
  return true;
}

void SqliteRegistry::MarkProgress() {
  isProgress_ = inTransaction_ && log_.IsKept() && !IsReadOnly();
}

bool SqliteRegistry::Commit() {
  if (!inTransaction_) return false;
  Ending ending(*this);
  ending.isStored = !transactionFailed_ && Succeeded(log_.Store(), "changed") &&
                    Succeeded(database_.Execute("COMMIT"), "changed");
  return ending.isStored;
}

void SqliteRegistry::Rollback() {
  if (inTransaction_) EndTransaction(false);
}

void SqliteRegistry::EndTransaction(bool isStored) {
  if (database_.InTransaction()) database_.Execute("ROLLBACK");
  log_.End(isStored);
  inTransaction_ = false;
  isProgress_ = false;
  transactionFailed_ = false;
  lastKey_ = 0;
}

}  // namespace wattlark
