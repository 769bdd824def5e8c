#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <system_error>

namespace wattlark {

/// A new folder that others may enter; removed with all it holds at the end of its life.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string path = std::filesystem::temp_directory_path() / "wattlark-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = path;
    std::filesystem::permissions(path_, std::filesystem::perms(0755));
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string Path() const { return path_.string(); }
  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

inline std::string FileBytes(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

inline void WriteFile(const std::string& file, const std::string& bytes) {
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << bytes;
  if (!stream.flush()) throw std::runtime_error("cannot write " + file);
}

/// The permission bits of a file; all bits when it is not there.
inline int ModeOf(const std::string& file) {
  return static_cast<int>(std::filesystem::status(file).permissions());
}

/// The names and bytes of all that a folder holds, if it is there.
inline std::map<std::string, std::string> FilesIn(const std::string& folder) {
  std::map<std::string, std::string> files;
  if (!std::filesystem::exists(folder)) return files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    files[entry.path().filename()] = entry.is_regular_file() ? FileBytes(entry.path()) : "";
  }
  return files;
}

/// While it lives, permission bits bind the process even when it runs as root.
class WithoutRoot {
 public:
  WithoutRoot() : isRoot_(::geteuid() == 0) {
    if (isRoot_ && ::seteuid(65534) != 0) throw std::system_error(errno, std::generic_category());
  }
  ~WithoutRoot() {
    if (isRoot_ && ::seteuid(0) != 0) std::abort();
  }
  WithoutRoot(const WithoutRoot&) = delete;
  WithoutRoot& operator=(const WithoutRoot&) = delete;

 private:
  bool isRoot_;
};

/// While it lives, no write to a file succeeds, as on a full disk.
class FileSizeLimit {
 public:
  FileSizeLimit() : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit none = before_;
    none.rlim_cur = 0;
    ::setrlimit(RLIMIT_FSIZE, &none);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signal_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*signal_)(int);
  rlimit before_{};
};

}  // namespace wattlark
