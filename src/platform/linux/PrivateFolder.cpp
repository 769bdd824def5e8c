#include "platform/linux/PrivateFolder.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace wattlark {

std::string CreatePrivateFolder(const std::string& folder) {
  namespace fs = std::filesystem;
  fs::path path;
  for (const fs::path& part : fs::path(folder)) {
    path /= part;
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) continue;
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
      return "\"" + path.string() + "\" cannot be created: " + std::strerror(errno);
    }
  }
  std::error_code ignored;
  if (!fs::is_directory(path, ignored)) return "\"" + folder + "\" is not a folder";
  return {};
}

}  // namespace wattlark
