#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace wattlark {

/// What SQLite does to its files, in order: all that a power cut depends on.
struct DiskOperation {
  enum Kind { Create, Write, Truncate, Sync, Delete } kind = Write;
  std::string file;  ///< without its folder
  std::size_t offset = 0;
  std::string data = {};
  std::size_t size = 0;         ///< of a file that is truncated
  bool isFolderSynced = false;  ///< of a file that is deleted: the deletion is on the disk
};

/// SQLite's disk, as its default VFS while this object lives: records every operation, or lets some
/// of them fail. Nothing is ever waited for: no power is cut here.
class FaultyDisk {
 public:
  enum class Fault { NoSpace, IOError, ShortWrite };

  std::vector<DiskOperation> log;
  bool isRecording = false;
  bool dropsSyncs = false;                ///< recorded as if SQLite did not sync
  bool swallowsFaults = false;            ///< an operation that fails claims to have worked
  std::function<void()> beforeOperation;  ///< of those that count

  FaultyDisk() : base_(*sqlite3_vfs_find(nullptr)) {
    vfs_ = base_;
    vfs_.zName = "faulty";
    vfs_.szOsFile = static_cast<int>(sizeof(File)) + base_.szOsFile;
    vfs_.pAppData = this;
    vfs_.xOpen = Open;
    vfs_.xDelete = Delete;
    underlying_ = sqlite3_vfs_find(nullptr);
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
  bool IsFailing() const { return faults_ > 0 && operations_ >= firstFault_; }
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
  static FaultyDisk& Of(sqlite3_vfs* vfs) { return *static_cast<FaultyDisk*>(vfs->pAppData); }

  /// Whether the next operation fails.
  bool Fails() {
    if (isAside_) return false;
    if (beforeOperation) beforeOperation();
    const std::size_t number = operations_++;
    return faults_ > 0 && number >= firstFault_ && number - firstFault_ < faults_;
  }
  bool Records(const File& file) const { return isRecording && !isAside_ && file.counts; }
  int Failure(int ioError) const {
    if (swallowsFaults) return SQLITE_OK;
    return fault_ == Fault::IOError ? ioError : SQLITE_FULL;
  }

  static int Open(sqlite3_vfs* vfs, sqlite3_filename path, sqlite3_file* file, int flags,
                  int* outFlags) {
    FaultyDisk& disk = Of(vfs);
    File& opened = *new (file) File;
    opened.disk = &disk;
    opened.counts = (flags & (SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_MAIN_JOURNAL)) != 0;
    if (opened.counts && disk.Fails()) return SQLITE_CANTOPEN;
    opened.real = reinterpret_cast<sqlite3_file*>(&opened + 1);
    const bool isNew = path != nullptr && !disk.Exists(path);
    const int result =
        disk.underlying_->xOpen(disk.underlying_, path, opened.real, flags, outFlags);
    if (opened.real->pMethods != nullptr) file->pMethods = Methods();
    if (result == SQLITE_OK && path != nullptr) {
      const std::string_view name = BaseName(path);
      name.copy(opened.name, sizeof(opened.name) - 1);
      if (isNew && disk.Records(opened))
        disk.log.push_back({DiskOperation::Create, opened.name, 0, {}, 0});
    }
    return result;
  }
  static int Delete(sqlite3_vfs* vfs, const char* path, int syncFolder) {
    FaultyDisk& disk = Of(vfs);
    if (disk.Fails()) return disk.swallowsFaults ? SQLITE_OK : SQLITE_IOERR_DELETE;
    const int result = disk.underlying_->xDelete(disk.underlying_, path, 0);
    if (result == SQLITE_OK && disk.isRecording && !disk.isAside_) {
      disk.log.push_back({DiskOperation::Delete,
                          std::string(BaseName(path)),
                          0,
                          {},
                          0,
                          syncFolder != 0 && !disk.dropsSyncs});
    }
    return result;
  }
  static int Write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset) {
    File& to = Of(file);
    if (to.counts && to.disk->Fails()) {
      if (to.disk->fault_ == Fault::ShortWrite) {
        to.real->pMethods->xWrite(to.real, bytes, size / 2, offset);
      }
      return to.disk->Failure(SQLITE_IOERR_WRITE);
    }
    if (to.disk->Records(to)) {
      to.disk->log.push_back(
          {DiskOperation::Write, to.name, static_cast<std::size_t>(offset),
           std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size))});
    }
    return to.real->pMethods->xWrite(to.real, bytes, size, offset);
  }
  static int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    File& to = Of(file);
    if (to.counts && to.disk->Fails()) return to.disk->Failure(SQLITE_IOERR_TRUNCATE);
    if (to.disk->Records(to)) {
      to.disk->log.push_back(
          {DiskOperation::Truncate, to.name, 0, {}, static_cast<std::size_t>(size)});
    }
    return to.real->pMethods->xTruncate(to.real, size);
  }
  static int Sync(sqlite3_file* file, int /*flags*/) {
    File& to = Of(file);
    if (to.counts && to.disk->Fails()) return to.disk->Failure(SQLITE_IOERR_FSYNC);
    if (to.disk->Records(to) && !to.disk->dropsSyncs) {
      to.disk->log.push_back({DiskOperation::Sync, to.name, 0, {}, 0});
    }
    return SQLITE_OK;
  }

  static const sqlite3_io_methods* Methods() {
    static const sqlite3_io_methods methods = {
        1,
        [](sqlite3_file* f) { return Of(f).real->pMethods->xClose(Of(f).real); },
        [](sqlite3_file* f, void* to, int size, sqlite3_int64 offset) {
          return Of(f).real->pMethods->xRead(Of(f).real, to, size, offset);
        },
        Write,
        Truncate,
        Sync,
        [](sqlite3_file* f, sqlite3_int64* size) {
          return Of(f).real->pMethods->xFileSize(Of(f).real, size);
        },
        [](sqlite3_file* f, int lock) { return Of(f).real->pMethods->xLock(Of(f).real, lock); },
        [](sqlite3_file* f, int lock) { return Of(f).real->pMethods->xUnlock(Of(f).real, lock); },
        [](sqlite3_file* f, int* result) {
          return Of(f).real->pMethods->xCheckReservedLock(Of(f).real, result);
        },
        [](sqlite3_file* f, int operation, void* argument) {
          return Of(f).real->pMethods->xFileControl(Of(f).real, operation, argument);
        },
        [](sqlite3_file* f) { return Of(f).real->pMethods->xSectorSize(Of(f).real); },
        [](sqlite3_file* f) { return Of(f).real->pMethods->xDeviceCharacteristics(Of(f).real); },
        nullptr,
        nullptr,
        nullptr,
        nullptr,
        nullptr,
        nullptr};
    return &methods;
  }

  bool Exists(const char* path) const {
    int result = 0;
    underlying_->xAccess(underlying_, path, SQLITE_ACCESS_EXISTS, &result);
    return result != 0;
  }
  static std::string_view BaseName(std::string_view path) {
    return path.substr(path.find_last_of('/') + 1);
  }

  sqlite3_vfs base_;
  sqlite3_vfs vfs_{};
  sqlite3_vfs* underlying_ = nullptr;
  bool isAside_ = false;
  std::size_t operations_ = 0;
  std::size_t firstFault_ = 0;
  std::size_t faults_ = 0;
  Fault fault_ = Fault::IOError;
};

}  // namespace wattlark
