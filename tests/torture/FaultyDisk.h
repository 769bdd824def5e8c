#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace wattlark {

/// What SQLite does to its files, in order: all that a power cut depends on.
struct DiskOperation {
  enum Kind { Create, Write, Truncate, Sync, Delete } kind = Write;
  std::string file = {};        ///< without its folder
  std::size_t offset = 0;       ///< of a write; the size of a file that is truncated
  std::string data = {};        ///< of a write
  bool isFolderSynced = false;  ///< of a file that is deleted: the deletion is on the disk
};

/// SQLite's disk, as its default VFS while this object lives: records every operation, or lets some
/// of them fail. Nothing is ever waited for: no power is cut here.
class FaultyDisk {
 public:
  enum class Fault { NoSpace, IOError, ShortWrite };

  std::vector<DiskOperation> log;
  bool isRecording = false;
  bool dropsSyncs = false;      ///< recorded as if SQLite did not sync
  bool swallowsFaults = false;  ///< an operation that fails claims to have worked

  FaultyDisk() {
    vfs_ = *underlying_;
    vfs_.zName = "faulty";
    vfs_.szOsFile += static_cast<int>(sizeof(File));
    vfs_.pAppData = this;
    vfs_.xOpen = Open;
    vfs_.xDelete = Delete;
    if (sqlite3_vfs_register(&vfs_, 1) != SQLITE_OK) throw std::runtime_error("no VFS");
  }
  ~FaultyDisk() { sqlite3_vfs_unregister(&vfs_); }
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

 private:
  struct File {
    sqlite3_file base{};
    FaultyDisk* disk = nullptr;
    sqlite3_file* real = nullptr;
    char name[64] = {};
    bool counts = false;  ///< a database or its journal, on the disk
  };

  static File& Of(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }

  /// Whether the next operation fails.
  bool Fails() {
    if (isAside_) return false;
    const std::size_t number = operations_++;
    return number >= firstFault_ && number - firstFault_ < faults_;
  }
  void Record(DiskOperation operation) {
    if (isRecording && !isAside_) log.push_back(std::move(operation));
  }
  /// Records an operation on an open file, or answers what SQLite hears of its failure.
  static std::optional<int> Meet(File& file, DiskOperation operation, int ioError) {
    FaultyDisk& disk = *file.disk;
    if (!file.counts) return std::nullopt;
    if (disk.Fails()) {
      if (disk.swallowsFaults) return SQLITE_OK;
      return disk.fault_ == Fault::IOError ? ioError : SQLITE_FULL;
    }
    operation.file = file.name;
    disk.Record(std::move(operation));
    return std::nullopt;
  }

  static int Open(sqlite3_vfs* vfs, sqlite3_filename path, sqlite3_file* file, int flags,
                  int* outFlags) {
    FaultyDisk& disk = *static_cast<FaultyDisk*>(vfs->pAppData);
    File& opened = *new (file) File;
    opened.disk = &disk;
    opened.counts = (flags & (SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_MAIN_JOURNAL)) != 0;
    if (opened.counts && disk.Fails()) return SQLITE_CANTOPEN;
    opened.real = reinterpret_cast<sqlite3_file*>(&opened + 1);
    std::error_code missing;
    const auto size = path == nullptr ? 1 : std::filesystem::file_size(path, missing);
    const int result =
        disk.underlying_->xOpen(disk.underlying_, path, opened.real, flags, outFlags);
    if (opened.real->pMethods != nullptr) file->pMethods = Methods();
    if (result == SQLITE_OK && path != nullptr) {
      const std::string name = std::filesystem::path(path).filename();
      name.copy(opened.name, sizeof(opened.name) - 1);
      if ((missing || size == 0) && opened.counts)
        disk.Record({.kind = DiskOperation::Create, .file = name});
    }
    return result;
  }
  static int Delete(sqlite3_vfs* vfs, const char* path, int syncFolder) {
    FaultyDisk& disk = *static_cast<FaultyDisk*>(vfs->pAppData);
    if (disk.Fails()) return disk.swallowsFaults ? SQLITE_OK : SQLITE_IOERR_DELETE;
    const int result = disk.underlying_->xDelete(disk.underlying_, path, 0);
    if (result == SQLITE_OK) {
      disk.Record({.kind = DiskOperation::Delete,
                   .file = std::filesystem::path(path).filename(),
                   .isFolderSynced = syncFolder != 0 && !disk.dropsSyncs});
    }
    return result;
  }
  static int Write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset) {
    File& to = Of(file);
    const auto failure =
        Meet(to,
             {.kind = DiskOperation::Write,
              .offset = static_cast<std::size_t>(offset),
              .data = std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size))},
             SQLITE_IOERR_WRITE);
    if (failure && to.disk->fault_ != Fault::ShortWrite) return *failure;
    const int result = to.real->pMethods->xWrite(to.real, bytes, failure ? size / 2 : size, offset);
    return failure.value_or(result);
  }
  static int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    const auto failure =
        Meet(Of(file), {.kind = DiskOperation::Truncate, .offset = static_cast<std::size_t>(size)},
             SQLITE_IOERR_TRUNCATE);
    return failure ? *failure : Of(file).real->pMethods->xTruncate(Of(file).real, size);
  }
  static int Sync(sqlite3_file* file, int /*flags*/) {
    File& to = Of(file);
    const bool wasRecording = to.disk->isRecording;
    to.disk->isRecording = wasRecording && !to.disk->dropsSyncs;
    const auto failure = Meet(to, {.kind = DiskOperation::Sync}, SQLITE_IOERR_FSYNC);
    to.disk->isRecording = wasRecording;
    return failure.value_or(SQLITE_OK);
  }
  /// Hands a call on to the file below.
  template <auto Method, typename... Arguments>
  static int Pass(sqlite3_file* file, Arguments... arguments) {
    return (Of(file).real->pMethods->*Method)(Of(file).real, arguments...);
  }

  static const sqlite3_io_methods* Methods() {
    using M = sqlite3_io_methods;
    static const M methods = [] {
      M made{};
      made.iVersion = 1;
      made.xClose = Pass<&M::xClose>;
      made.xRead = Pass<&M::xRead>;
      made.xWrite = Write;
      made.xTruncate = Truncate;
      made.xSync = Sync;
      made.xFileSize = Pass<&M::xFileSize>;
      made.xLock = Pass<&M::xLock>;
      made.xUnlock = Pass<&M::xUnlock>;
      made.xCheckReservedLock = Pass<&M::xCheckReservedLock>;
      made.xFileControl = Pass<&M::xFileControl>;
      made.xSectorSize = Pass<&M::xSectorSize>;
      made.xDeviceCharacteristics = Pass<&M::xDeviceCharacteristics>;
      return made;
    }();
    return &methods;
  }

  sqlite3_vfs* underlying_ = sqlite3_vfs_find(nullptr);
  sqlite3_vfs vfs_{};
  bool isAside_ = false;
  std::size_t operations_ = 0;
  std::size_t firstFault_ = 0;
  std::size_t faults_ = 0;
  Fault fault_ = Fault::IOError;
};

}  // namespace wattlark
