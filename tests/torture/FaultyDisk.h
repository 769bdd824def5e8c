#pragma once

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace wattlark {

/// What SQLite does to its files, in order: all that a power cut depends on.
struct DiskOperation {
  enum Kind { Create, Write, Truncate, Sync, SyncFolder, Delete } kind = Write;
  std::string file = {};   ///< without its folder
  std::size_t offset = 0;  ///< of a write; the size of a file that is truncated
  std::string data = {};   ///< of a write
};

/// The system calls by which SQLite changes a store, while this object lives: records every one, or
/// lets some of them fail. Nothing is ever waited for: no power is cut here. One at a time.
class FaultyDisk {
 public:
  enum class Fault { NoSpace, IOError, ShortWrite };

  std::vector<DiskOperation> log;
  bool isRecording = false;
  bool dropsSyncs = false;      ///< recorded as if SQLite did not sync
  bool swallowsFaults = false;  ///< what fails claims to have worked; no file's making fails then

  FaultyDisk() {
    here_ = this;
    Replace("open", reinterpret_cast<sqlite3_syscall_ptr>(Open));
    Replace("pwrite64", reinterpret_cast<sqlite3_syscall_ptr>(Write));
    Replace("ftruncate", reinterpret_cast<sqlite3_syscall_ptr>(Truncate));
    Replace("unlink", reinterpret_cast<sqlite3_syscall_ptr>(Delete));
  }
  ~FaultyDisk() {
    vfs_->xSetSystemCall(vfs_, nullptr, nullptr);
    here_ = nullptr;
  }
  FaultyDisk(const FaultyDisk&) = delete;
  FaultyDisk& operator=(const FaultyDisk&) = delete;

  /// From the operation `first` on, counted from 0 from now, `count` of them fail.
  void FailFrom(std::size_t first, std::size_t count, Fault fault) {
    operations_ = 0;
    firstFault_ = first;
    faults_ = count;
    fault_ = fault;
  }
  void Mend() { faults_ = 0; }
  std::size_t Operations() const { return operations_; }
  /// Looks at the disk from outside: nothing of it is counted, recorded or fails.
  template <typename Work>
  auto Aside(Work work) {
    isAside_ = true;
    auto result = work();
    isAside_ = false;
    return result;
  }

  /// What `fdatasync` does meanwhile: SQLite has no other way to have that call replaced. A
  /// folder's never fails: SQLite would call a change that is in the store a failed one.
  static int Sync(int descriptor) {
    if (here_ == nullptr || here_->names_[descriptor].empty()) return 0;
    if (here_->names_[descriptor] != kFolder) {
      return here_->Meet({DiskOperation::Sync}, descriptor, [] { return 0; });
    }
    here_->Record({DiskOperation::SyncFolder});
    return 0;
  }

 private:
  static constexpr const char* kFolder = ".";

  void Replace(const char* name, sqlite3_syscall_ptr call) {
    if (vfs_->xSetSystemCall(vfs_, name, call) != SQLITE_OK) throw std::runtime_error(name);
  }
  static bool IsStore(const std::string& name) { return name.starts_with("wattlark.db"); }
  static std::string NameOf(const char* path) { return std::filesystem::path(path).filename(); }

  /// Whether the next operation fails; `errno` then says why.
  bool Fails() {
    if (isAside_) return false;
    const std::size_t number = operations_++;
    if (number < firstFault_ || number - firstFault_ >= faults_) return false;
    errno = fault_ == Fault::IOError ? EIO : ENOSPC;
    return true;
  }
  void Record(DiskOperation operation) {
    const bool isSync =
        operation.kind == DiskOperation::Sync || operation.kind == DiskOperation::SyncFolder;
    if (isRecording && !isAside_ && !(isSync && dropsSyncs)) log.push_back(std::move(operation));
  }
  /// Fails, or carries the operation out with `work` and records it.
  template <typename Work>
  auto Meet(DiskOperation operation, Work work) -> decltype(work()) {
    if (Fails()) return swallowsFaults ? static_cast<decltype(work())>(operation.data.size()) : -1;
    const auto result = work();
    if (result >= 0) Record(std::move(operation));
    return result;
  }
  template <typename Work>
  auto Meet(DiskOperation operation, int descriptor, Work work) -> decltype(work()) {
    operation.file = names_[descriptor];
    return operation.file.empty() ? work() : Meet(std::move(operation), work);
  }

  static int Open(const char* path, int flags, int mode) {
    const std::string name = NameOf(path);
    const auto open = [&] { return ::open(path, flags, mode); };
    const bool isNew = IsStore(name) && (flags & O_CREAT) != 0 && !std::filesystem::exists(path) &&
                       !here_->swallowsFaults;
    const int descriptor =
        isNew ? here_->Meet({.kind = DiskOperation::Create, .file = name}, open) : open();
    here_->names_[descriptor] = IsStore(name)                         ? name
                                : std::filesystem::is_directory(path) ? kFolder
                                                                      : "";
    return descriptor;
  }
  static int Delete(const char* path) {
    return here_->Meet({.kind = DiskOperation::Delete, .file = NameOf(path)},
                       [&] { return ::unlink(path); });
  }
  static ssize_t Write(int descriptor, const void* bytes, std::size_t size, off_t offset) {
    const std::string data(static_cast<const char*>(bytes), size);
    const ssize_t written =
        here_->Meet({.offset = static_cast<std::size_t>(offset), .data = data}, descriptor,
                    [&] { return ::pwrite(descriptor, bytes, size, offset); });
    if (written >= 0 || here_->fault_ != Fault::ShortWrite) return written;
    const ssize_t ignored = ::pwrite(descriptor, bytes, size / 2, offset);
    static_cast<void>(ignored);
    errno = ENOSPC;
    return written;
  }
  static int Truncate(int descriptor, off_t size) {
    return here_->Meet({.kind = DiskOperation::Truncate, .offset = static_cast<std::size_t>(size)},
                       descriptor, [&] { return ::ftruncate(descriptor, size); });
  }

  static inline FaultyDisk* here_ = nullptr;
  sqlite3_vfs* vfs_ = sqlite3_vfs_find(nullptr);
  std::map<int, std::string> names_;  ///< of open descriptors; empty when not of a store
  bool isAside_ = false;
  std::size_t operations_ = 0;
  std::size_t firstFault_ = 0;
  std::size_t faults_ = 0;
  Fault fault_ = Fault::IOError;
};

}  // namespace wattlark
