#pragma once

#include <string>

namespace wattlark {

/// The user's own profile folder: "wattlark" in $XDG_DATA_HOME, or in ~/.local/share when that is
/// not set to an absolute path. Empty when the user has no home folder.
std::string DefaultProfileFolder();
/// The running program's file; empty when the system does not tell.
std::string ProgramFile();
/// The folder that holds the running program; empty when the system does not tell.
std::string ProgramFolder();
/// The sound of an alarm notice: "notice.wav" in the program's folder, or in "share/wattlark"
/// beside that folder where the program is installed.
std::string NoticeSoundFile();
/// The default of the setting `CSVFilename`: "wattlark.csv" in the program's folder, or in the
/// profile's where the program's cannot be written or holds the programs of the system.
std::string DefaultCSVFilename(const std::string& profileFolder);

}  // namespace wattlark
