// Loaded before SQLite, makes any program that uses it careless: no transaction, no journal. What a
// kill in the middle of a save then leaves behind must be noticed.
#include <dlfcn.h>
#include <sqlite3.h>

#include <string_view>

extern "C" int sqlite3_exec(sqlite3* database, const char* sql,
                            int (*row)(void*, int, char**, char**), void* context, char** error) {
  using Function = decltype(&sqlite3_exec);
  static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "sqlite3_exec"));
  const std::string_view text(sql);
  if (text == "BEGIN IMMEDIATE" || text == "COMMIT") return SQLITE_OK;
  if (text == "PRAGMA journal_mode = DELETE") {
    return real(database, "PRAGMA journal_mode = OFF", row, context, error);
  }
  return real(database, sql, row, context, error);
}
