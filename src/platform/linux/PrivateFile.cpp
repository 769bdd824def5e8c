#include "platform/linux/PrivateFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace wattlark {

namespace {

namespace fs = std::filesystem;

std::string Named(const std::string& file) {
  return "\"" + file + "\"";
}

std::string FolderOf(const std::string& file) {
  const std::string folder = fs::path(file).parent_path();
  return folder.empty() ? "." : folder;
}

/// A rename lasts only once its folder is on the disk.
void SyncFolder(const std::string& file) {
  const int descriptor = ::open(FolderOf(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

PrivateFile::PrivateFile(std::string file) : file_(std::move(file)) {
  std::error_code error;
  const fs::path target = fs::is_symlink(file_, error) ? fs::canonical(file_, error) : fs::path();
  if (!error && !target.empty()) file_ = target;
}

PrivateFile::~PrivateFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

std::string PrivateFile::CannotWrite() const {
  return Named(file_) + " cannot be written: " + std::strerror(errno);
}

std::string PrivateFile::Problem(bool replaces) const {
  struct stat status {};
  if (::lstat(file_.c_str(), &status) != 0) return errno == ENOENT ? "" : CannotWrite();
  if (!S_ISREG(status.st_mode)) return Named(file_) + " is there already and is not a file";
  return replaces ? "" : Named(file_) + " is there already";
}

std::string PrivateFile::Create() {
  descriptor_ = ::open(FolderOf(file_).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (descriptor_ >= 0) return {};
  std::string name = file_ + ".new-XXXXXX";
  descriptor_ = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor_ < 0) return CannotWrite();
  temporary_ = name;
  return {};
}

std::string PrivateFile::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return CannotWrite();
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return {};
}

/// Gives a file without a name a temporary one.
bool PrivateFile::Name() {
  const std::string source = "/proc/self/fd/" + std::to_string(descriptor_);
  for (int number = 1; temporary_.empty(); ++number) {
    const std::string name = file_ + ".new-" + std::to_string(number);
    if (::linkat(AT_FDCWD, source.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
      temporary_ = name;
    } else if (errno != EEXIST) {
      return false;
    }
  }
  return true;
}

bool PrivateFile::Rename(bool replaces) const {
  if (replaces) return std::rename(temporary_.c_str(), file_.c_str()) == 0;
  if (::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, file_.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  // Not every file system knows how to leave a file alone.
  if (errno != EINVAL && errno != ENOSYS) return false;
  std::error_code ignored;
  if (!fs::exists(fs::symlink_status(file_, ignored))) {
    return std::rename(temporary_.c_str(), file_.c_str()) == 0;
  }
  errno = EEXIST;
  return false;
}

std::string PrivateFile::Keep(bool replaces) {
  if (::fsync(descriptor_) != 0 || !Name() || !Rename(replaces)) return CannotWrite();
  temporary_.clear();
  SyncFolder(file_);
  return {};
}

}  // namespace wattlark
