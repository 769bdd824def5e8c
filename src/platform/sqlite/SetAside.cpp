#include "platform/sqlite/SetAside.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

namespace wattlark {

namespace {

constexpr std::array kJournals = {"-journal", "-wal", "-shm"};

bool Exists(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

}  // namespace

std::string FreeNameAside(const std::string& file, const std::string& reason) {
  for (int number = 1;; ++number) {
    std::string target = file + "." + reason + "-" + std::to_string(number);
    if (!Exists(target) && std::ranges::none_of(kJournals, [&](const char* journal) {
          return Exists(target + journal);
        })) {
      return target;
    }
  }
}

bool SetJournalAside(const std::string& file, const std::string& target) {
  return std::ranges::all_of(kJournals, [&](const char* journal) {
    return !Exists(file + journal) ||
           std::rename((file + journal).c_str(), (target + journal).c_str()) == 0;
  });
}

void PutJournalBack(const std::string& file, const std::string& target) {
  const int error = errno;
  for (const char* journal : kJournals) {
    if (Exists(target + journal) && !Exists(file + journal)) {
      static_cast<void>(std::rename((target + journal).c_str(), (file + journal).c_str()));
    }
  }
  errno = error;
}

std::string SetAside(const std::string& file, const std::string& reason) {
  std::string target = FreeNameAside(file, reason);
  const bool isDone =
      SetJournalAside(file, target) && std::rename(file.c_str(), target.c_str()) == 0;
  if (isDone) return target;
  PutJournalBack(file, target);
  return {};
}

}  // namespace wattlark
