#pragma once

#include <memory>
#include <string>

#include "platform/Registry.h"
#include "platform/sqlite/SalvageStore.h"
#include "platform/sqlite/SqliteDatabase.h"

namespace wattlark {

/// What is found where a store should be.
enum class StoreCondition { Usable, Empty, Damaged, Foreign, Newer, Locked, Unreadable };

/// What an error of opening or reading says of the store. `result` is a SQLite code.
StoreCondition ConditionFromError(int result);
/// Reads enough of an open database to judge it, every page included.
StoreCondition ExamineStore(SqliteDatabase& database);

/// A new store without a key that lasts as long as its object; null without memory for it.
std::unique_ptr<Registry> MemoryStore();

/// The store of a profile folder.
std::string StoreFile(const std::string& profileFolder);
/// What messages call the store `file`.
std::string NamedStore(const std::string& file);
/// What came of a salvage, as a sentence.
std::string SalvageText(const Salvage& salvage);

}  // namespace wattlark
