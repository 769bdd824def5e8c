#pragma once

#include <algorithm>
#include <map>
#include <random>

#include "torture/FaultyDisk.h"

namespace wattlark {

/// A disk that is switched off: holds what was synced for sure, and of everything since an
/// arbitrary part. A write reaches the disk in sectors of 512 bytes, in any order; a file that was
/// created or deleted is so for sure only once its folder was synced.
class CutPower {
 public:
  enum class Fate { NothingUnsynced, EverythingUnsynced, SomeSectors, LastWriteTorn };
  using Files = std::map<std::string, std::string>;

  void Apply(const DiskOperation& operation) {
    State& file = files_[operation.file];
    switch (operation.kind) {
      case DiskOperation::Create:
        file.exists = true;
        file.pending.clear();
        file.pending.push_back(operation);
        break;
      case DiskOperation::Sync:
        for (const DiskOperation& pending : file.pending) Perform(pending, file.durable);
        file.pending.clear();
        break;
      case DiskOperation::SyncFolder:
        for (auto& [name, other] : files_) {
          if (!other.exists) other = State();
          other.isDurable = other.exists;
        }
        break;
      case DiskOperation::Delete:
        file.exists = false;
        break;
      case DiskOperation::Write:
      case DiskOperation::Truncate:
        // The program itself makes the store, before SQLite opens it.
        if (file.pending.empty() && !file.exists) file.exists = file.isDurable = true;
        file.pending.push_back(operation);
        break;
    }
  }

  /// The files that are found after a power cut now.
  Files After(Fate fate, std::mt19937_64& random) const {
    Files found;
    for (const auto& [name, file] : files_) {
      const bool isChance = fate == Fate::SomeSectors && random() % 2 == 0;
      const bool isWhole = fate == Fate::EverythingUnsynced || fate == Fate::LastWriteTorn;
      if (!(isWhole || isChance ? file.exists : file.isDurable)) continue;
      std::string bytes = file.durable;
      for (std::size_t i = 0; i < file.pending.size() && fate != Fate::NothingUnsynced; ++i) {
        const bool isTorn = fate == Fate::SomeSectors ||
                            (fate == Fate::LastWriteTorn && i + 1 == file.pending.size());
        if (isTorn) {
          PerformTorn(file.pending[i], bytes, random);
        } else {
          Perform(file.pending[i], bytes);
        }
      }
      found[name] = std::move(bytes);
    }
    return found;
  }

 private:
  struct State {
    bool exists = false;
    bool isDurable = false;
    std::string durable;
    std::vector<DiskOperation> pending;
  };

  static void Perform(const DiskOperation& operation, std::string& bytes) {
    if (operation.kind == DiskOperation::Create) bytes.clear();
    if (operation.kind == DiskOperation::Truncate) bytes.resize(operation.offset);
    if (operation.kind != DiskOperation::Write) return;
    const std::size_t end = operation.offset + operation.data.size();
    if (bytes.size() < end) bytes.resize(end);
    bytes.replace(operation.offset, operation.data.size(), operation.data);
  }

  static void PerformTorn(const DiskOperation& operation, std::string& bytes,
                          std::mt19937_64& random) {
    constexpr std::size_t kSector = 512;
    if (operation.kind == DiskOperation::Truncate && random() % 2 == 0) return;
    if (operation.kind != DiskOperation::Write) return Perform(operation, bytes);
    for (std::size_t at = 0; at < operation.data.size();) {
      const std::size_t place = operation.offset + at;
      const std::size_t size = std::min(kSector - place % kSector, operation.data.size() - at);
      const auto choice = random() % 8;
      if (choice < 4) {
        DiskOperation part = operation;
        part.offset = place;
        part.data = operation.data.substr(at, size);
        Perform(part, bytes);
      } else if (choice == 4 && place + size > bytes.size()) {
        // The file has grown already, but holds what the disk held there before.
        bytes.resize(place + size, '\xA5');
      }
      at += size;
    }
  }

  std::map<std::string, State> files_;
};

}  // namespace wattlark
