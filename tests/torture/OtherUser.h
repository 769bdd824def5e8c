#pragma once

#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace wattlark {

/// A command that runs as another user than root, whom modes do not bind, and who is given the
/// folder with all that it holds. For any other user the command stays as it is.
inline std::vector<std::string> AsOtherUser(std::vector<std::string> command,
                                            const std::string& folder) {
  constexpr uid_t kNobody = 65534;
  if (::geteuid() != 0) return command;
  const auto give = [](const std::string& path) {
    if (::chown(path.c_str(), kNobody, kNobody) != 0) throw std::runtime_error("chown");
  };
  give(folder);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    give(entry.path());
  }
  command.insert(command.begin(),
                 {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
  return command;
}

}  // namespace wattlark
