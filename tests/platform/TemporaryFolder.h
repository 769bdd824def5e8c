#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
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

}  // namespace wattlark
