#pragma once

#include <string>
#include <utility>

namespace wattlark {

/// Keeps a profile folder for one process: an exclusive lock on its file "lock", or on the folder
/// when that file is missing and cannot be created. The system releases it however the process
/// ends; the file itself stays.
class ProfileLock {
 public:
  explicit ProfileLock(std::string profileFolder) : folder_(std::move(profileFolder)) {}
  ~ProfileLock();
  ProfileLock(const ProfileLock&) = delete;
  ProfileLock& operator=(const ProfileLock&) = delete;

  /// Never waits; creates the folder as needed. True as well when this object has the lock already.
  /// False when another holder has it, or when `Problem` says why there can be none.
  bool TryAcquire();
  /// Why the last `TryAcquire` could not even ask for the lock, in words; empty otherwise.
  const std::string& Problem() const { return problem_; }

 private:
  std::string folder_;
  std::string problem_;
  int file_ = -1;
};

}  // namespace wattlark
