#include "platform/linux/ProfileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/linux/PrivateFolder.h"

namespace wattlark {

namespace {

/// A descriptor to lock, or -1 with the reason in errno.
int OpenLock(const std::string& folder, const std::string& path) {
  // Close-on-exec: a browser or sound player that outlives the program must not keep the lock.
  constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW;
  int file = ::open(path.c_str(), O_RDWR | O_CREAT | kFlags, 0600);
  if (file >= 0 || (errno != EACCES && errno != EROFS && errno != EPERM)) return file;
  // A profile that can only be read can still be shown: without a file of its own to lock, the
  // folder serves.
  file = ::open(path.c_str(), O_RDONLY | kFlags);
  if (file >= 0 || errno != ENOENT) return file;
  return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

}  // namespace

ProfileLock::~ProfileLock() {
  if (file_ >= 0) ::close(file_);
}

bool ProfileLock::TryAcquire() {
  if (file_ >= 0) return true;
  problem_ = CreatePrivateFolder(folder_);
  if (!problem_.empty()) return false;
  const std::string path = folder_ + "/lock";
  const int file = OpenLock(folder_, path);
  if (file < 0) {
    problem_ = "\"" + path + "\" cannot be opened: " + std::strerror(errno);
    return false;
  }
  int result = 0;
  do {
    result = ::flock(file, LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  if (result != 0) {
    if (errno != EWOULDBLOCK) {
      problem_ = "\"" + path + "\" cannot be locked: " + std::strerror(errno);
    }
    ::close(file);
    return false;
  }
  file_ = file;
  return true;
}

}  // namespace wattlark
