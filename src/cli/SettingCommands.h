#pragma once

#include <string>

#include "cli/CommandEnvironment.h"

namespace wattlark {

/// The names of settings are "NAME" or "SECTION/NAME", without regard to case. The sections are
/// "Settings", which needs no naming; "PortDevices", where "COMn" holds the serial device of that
/// port number; "ServiceEndpoints", the addresses of web services; and "WindowSettings". The
/// commands answer the exit status; a refusal says why in the environment's messages and changes
/// nothing.

/// Prints the value in force, the default where none is stored, on a line of its own.
int GetSetting(const std::string& profileFolder, const std::string& name,
               CommandEnvironment& environment);
/// Stores the value typed; "-" stands for the whole of the environment's input, at most 64 KiB,
/// without a line end behind it. An empty text brings back the default.
int SetSetting(const std::string& profileFolder, const std::string& name, const std::string& typed,
               CommandEnvironment& environment);
/// Prints all settings, and what is stored in the other sections as "SECTION/NAME". The table hides
/// passwords and keys; the JSON object, for programs, does not.
int ListSettings(const std::string& profileFolder, bool asJson, CommandEnvironment& environment);

}  // namespace wattlark
