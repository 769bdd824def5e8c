#pragma once

#include <string>

#include "cli/CommandEnvironment.h"

namespace wattlark {

/// Moving and keeping what a profile has stored. The commands answer the exit status; a refusal
/// says why in the environment's messages and changes nothing. A file that is written has mode
/// 0600, appears only when it is whole, and with `replaces` alone takes the place of another.

/// Writes settings and statistics as a registry text (see `WriteStoreText`), beside a running
/// program too. "-" is the environment's output.
int ExportStore(const std::string& profileFolder, const std::string& file, bool replaces,
                CommandEnvironment& environment);
/// Merges a registry text into the store, in one transaction (see `StoreImport`); with `replaces`,
/// what is there goes first. "-" is the environment's input. Refused while a program runs.
int ImportStore(const std::string& profileFolder, const std::string& file, bool replaces,
                CommandEnvironment& environment);
/// Copies the store as it is at one moment, beside a running program too.
int BackUpStore(const std::string& profileFolder, const std::string& file, bool replaces,
                CommandEnvironment& environment);
/// Puts such a copy in the place of the store, which is kept under another name. Refused while a
/// program runs, and unless the copy is whole and of a known version.
int RestoreStore(const std::string& profileFolder, const std::string& file,
                 CommandEnvironment& environment);

}  // namespace wattlark
