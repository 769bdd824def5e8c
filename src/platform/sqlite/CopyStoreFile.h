#pragma once

#include <string>

#include "platform/sqlite/SqliteDatabase.h"
#include "platform/sqlite/StoreFile.h"

namespace wattlark {

/// What is wrong with the file of a store before it is opened, as a sentence; empty when it can be
/// read, or when it `isMissing`.
std::string StoreFileProblem(const std::string& file, bool& isMissing);

/// Copies a store into a database in memory, as it was before a change that a power cut left half
/// made. The file is neither changed nor locked, and a program may be using it. `copy` is a store
/// when the answer is `Usable`; `problem` says in words why a file is `Unreadable`.
StoreCondition CopyStoreFile(const std::string& file, int waitMilliseconds, SqliteDatabase& copy,
                             std::string& problem);

}  // namespace wattlark
