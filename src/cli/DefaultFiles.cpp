#include "cli/DefaultFiles.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace wattlark {

namespace {

namespace fs = std::filesystem;

std::string HomeFolder() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
  const passwd* user = ::getpwuid(::geteuid());
  return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
}

bool IsWritable(const std::string& folder) {
  return !folder.empty() && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

}  // namespace

std::string DefaultProfileFolder() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && fs::path(data).is_absolute()) return fs::path(data) / "wattlark";
  const std::string home = HomeFolder();
  return home.empty() ? std::string() : home + "/.local/share/wattlark";
}

// Read once, at the start: after an upgrade the link of a program that still runs names a deleted
// file.
std::string ProgramFile() {
  static const std::string file = [] {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return error ? std::string() : program.string();
  }();
  return file;
}

std::string ProgramFolder() {
  return fs::path(ProgramFile()).parent_path().string();
}

std::string NoticeSoundFile() {
  const fs::path folder = ProgramFolder();
  std::error_code ignored;
  const fs::path own = folder / "notice.wav";
  return fs::exists(own, ignored) ? own : folder.parent_path() / "share/wattlark/notice.wav";
}

// The administrator can write into the system's folder of programs, but it is no place for data.
std::string DefaultCSVFilename(const std::string& profileFolder) {
  const std::string folder = ProgramFolder();
  const bool isOwn = IsWritable(folder) && fs::path(folder).filename() != "bin";
  return fs::path(isOwn ? folder : profileFolder) / "wattlark.csv";
}

}  // namespace wattlark
