#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace wattlark {

// Commands for the user to type, in messages.

/// One word of a POSIX shell's command line, quoted where that is needed.
std::string ShellWord(std::string_view text);
/// A command of the running program: "wattlark meter discover --profile DIR", without the option
/// when the folder is the user's own.
std::string ProfileCommand(const std::string& command, const std::string& profileFolder);
/// The command that makes a device, or the word for one, that of a port number.
std::string DeviceCommand(const std::string& profileFolder, int portNumber,
                          const std::string& device = "PATH");
/// The command that adds a meter of that address.
std::string AddCommand(const std::string& profileFolder, std::int16_t address);

}  // namespace wattlark
