// Power cuts and a failing disk, during a scripted minute: commands that set up a profile, a run of
// the monitor that saves every few seconds, and commands again.
#include <fcntl.h>

#include <set>
#include <tuple>

#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStoreCopy.h"
#include "torture/CutPower.h"
#include "torture/ScriptedMinute.h"
#include "torture/Torture.h"

namespace {

/// How many renames work before one fails; -1 when none does.
int workingRenames = -1;

}  // namespace

// In place of the C library's: SQLite syncs with the one, and a store is set aside with the other.
extern "C" int fdatasync(int descriptor) {
  return wattlark::FaultyDisk::Sync(descriptor);
}

extern "C" int rename(const char* from, const char* to) {
  if (workingRenames >= 0 && workingRenames-- == 0) {
    errno = EIO;
    return -1;
  }
  return ::renameat(AT_FDCWD, from, AT_FDCWD, to);
}

namespace wattlark {
namespace {

constexpr std::size_t kLongestWait = 17;  ///< a checkpoint, and five seconds to try again

void Describe(Registry& registry, const std::string& path, std::string& text) {
  for (const auto& value : registry.Values(Hive::CurrentUser, path)) {
    text += path + "|" + value.name + "=" +
            std::string(value.value.data.begin(), value.value.data.end()) + "\n";
  }
  for (const std::string& name : registry.SubKeys(Hive::CurrentUser, path)) {
    Describe(registry, path.empty() ? name : path + "\\" + name, text);
  }
}

/// All that a store holds; a text in angle brackets when it cannot be read.
std::string Contents(const StoreOpening& opening) {
  if (opening.registry == nullptr || !opening.message.empty()) return "<" + opening.message + ">";
  std::string text;
  Describe(*opening.registry, "", text);
  return text;
}

/// How many values of meters a store has.
std::size_t MeterValues(const std::string& contents) {
  std::size_t count = 0;
  std::istringstream lines(contents);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("\\KillAWatts\\") != std::string::npos) ++count;
  }
  return count;
}

class DiskTorture {
 public:
  explicit DiskTorture(Torture& torture) : torture_(torture), random_(torture.seed) {
    disk_.isRecording = true;
    disk_.dropsSyncs = torture.isBroken;
    const std::string profile = folder_.File("undisturbed");
    disk_.FailFrom(0, 0, FaultyDisk::Fault::IOError);
    ScriptedMinute minute(profile, [&] {
      states_.push_back(Look(profile));
      ends_.push_back(disk_.log.size());
    });
    minute.Play();
    operations_ = disk_.Operations();
    disk_.isRecording = false;
    torture_.Expect(minute.answers.empty() && minute.errors.empty(),
                    "an undisturbed minute speaks");
    torture_.Expect(std::ranges::count(disk_.log, DiskOperation::Write, &DiskOperation::kind) > 0,
                    "SQLite writes by another call");
    torture_.Count("actions", states_.size());
    torture_.Count("operations of the disk", disk_.log.size());
  }

  void CutPowerEverywhere() {
    using Fate = CutPower::Fate;
    CutPower power;
    std::size_t action = 0;
    const std::size_t step = torture_.isLong ? 1 : 29;
    const int repeats = torture_.isLong ? 4 : 1;
    for (std::size_t at = 0; at <= disk_.log.size(); ++at) {
      while (action + 1 < ends_.size() && ends_[action] < at) ++action;
      const bool isEnd = ends_[action] == at;
      if (at % step == 0 || isEnd) {
        std::set<std::string> allowed = {states_[action]};
        // Once an action is over, what it saved is there for good.
        if (!isEnd) allowed.insert(action == 0 ? std::string() : states_[action - 1]);
        const std::string where = "power cut after " + std::to_string(at) + " operations, action " +
                                  std::to_string(action);
        using Way = std::tuple<const char*, Fate, int>;
        for (const auto& [way, fate, times] : {Way{", nothing", Fate::NothingUnsynced, 1},
                                               Way{", everything", Fate::EverythingUnsynced, 1},
                                               Way{", some sectors", Fate::SomeSectors, repeats},
                                               Way{", torn", Fate::LastWriteTorn, repeats}}) {
          for (int i = 0; i < times; ++i) {
            torture_.Count("power cuts");
            ExpectAfter(where + way, power.After(fate, random_), allowed);
          }
        }
      }
      if (at < disk_.log.size()) power.Apply(disk_.log[at]);
    }
  }

  void FailEverywhere() {
    using Fault = FaultyDisk::Fault;
    std::size_t runs = 0;
    disk_.swallowsFaults = torture_.isBroken;
    const std::size_t step = torture_.isLong ? 1 : 211;
    for (const Fault fault : {Fault::NoSpace, Fault::IOError, Fault::ShortWrite}) {
      // Once, and for a while: everything a save does fails some times over.
      for (const std::size_t count : {std::size_t{1}, std::size_t{8}}) {
        const std::size_t every = count == 1 ? step : step * 7;
        for (std::size_t first = runs % every; first < operations_; first += every) {
          ExpectSurvived(first, count, fault);
          ++runs;
        }
      }
    }
    torture_.Count("minutes with a failing disk", runs);
  }

  /// What cannot be set aside stays where it is, together with its journal.
  void FailRenames() {
    for (const int works : {0, 1}) {
      const std::string profile = folder_.File("unnamed" + std::to_string(works));
      const std::string inside = profile + "/wattlark.db/inside";
      const std::string journal = profile + "/wattlark.db-journal";
      std::filesystem::create_directories(profile + "/wattlark.db");
      WriteFile(inside, "1");
      WriteFile(journal, "2");
      workingRenames = torture_.isBroken ? -1 : works;
      const StoreOpening opening = OpenStore(profile, 0);
      torture_.Expect(!opening.savesChanges && opening.registry != nullptr &&
                          opening.message.find("could not be moved") != std::string::npos,
                      "a rename that fails is not told: " + opening.message);
      torture_.Expect(FileBytes(inside) == "1" && FileBytes(journal) == "2",
                      "a rename that fails parts a store from its journal");
      torture_.Expect(OpenStore(profile, 0).savesChanges, "saving does not resume");
    }
  }

 private:
  std::string Look(const std::string& profile) {
    return disk_.Aside([&] { return Contents(OpenStoreCopy(profile, 0)); });
  }

  void ExpectAfter(const std::string& where, const CutPower::Files& files,
                   const std::set<std::string>& allowed) {
    const std::string profile = folder_.File("cut");
    std::filesystem::remove_all(profile);
    std::filesystem::create_directory(profile);
    for (const auto& [name, bytes] : files) WriteFile(profile + "/" + name, bytes);
    const std::string found = disk_.Aside([&] { return Contents(OpenStore(profile, 0)); });
    if (found.starts_with("<")) {
      torture_.Find(where + ": " + found);
    } else {
      torture_.Expect(allowed.contains(found), where + ": not the state before or after");
    }
  }

  void ExpectSurvived(std::size_t first, std::size_t count, FaultyDisk::Fault fault) {
    const std::string profile = folder_.File("failing");
    std::filesystem::remove_all(profile);
    const std::string what = "operation " + std::to_string(first) + " fails " +
                             std::to_string(count) + " times, fault " +
                             std::to_string(static_cast<int>(fault));
    std::string last;
    std::size_t waited = 0;
    std::size_t operations = 0;
    ScriptedMinute minute(profile, [&] {
      // Without an operation the store is as it was.
      const bool isChanged = disk_.Operations() != operations;
      operations = disk_.Operations();
      const std::string found = isChanged ? Look(profile) : last;
      torture_.Expect(!found.starts_with("<"), what + ": " + found);
      // What was saved at another time is another state, but a whole one.
      torture_.Expect(MeterValues(found) % MeterValues(states_.front()) == 0,
                      what + ": half a meter is stored");
      waited = found == last ? waited + 1 : 0;
      if (count == 1) {
        torture_.Largest("longest time without a save after a single failure, s",
                         static_cast<double>(waited));
        torture_.Expect(waited <= kLongestWait, what + ": a save is tried again too late");
      }
      last = found;
    });
    disk_.FailFrom(first, count, fault);
    try {
      minute.Play();
    } catch (const std::exception& error) {
      torture_.Find(what + ": it does not go on: " + error.what());
    }
    disk_.Mend();
    torture_.Expect(last == states_.back(), what + ": saving does not resume");
    torture_.Count("of these with a message", !minute.answers.empty() || !minute.errors.empty());
    // Whoever tries again while the disk still fails is told again; within a run it is told once.
    torture_.Expect(
        minute.errors.size() <= 1 &&
            (count > 1 || minute.answers.size() + minute.errors.size() <= 1),
        what + ": told more than once: " + (minute.errors.empty() ? "" : minute.errors.back()));
  }

  Torture& torture_;
  std::mt19937_64 random_;
  TemporaryFolder folder_;
  FaultyDisk disk_;
  // Of an undisturbed minute: what the store holds after each action, and how long the disk's log
  // is then.
  std::vector<std::string> states_;
  std::vector<std::size_t> ends_;
  std::size_t operations_ = 0;
};

}  // namespace

void Run(Torture& torture) {
  DiskTorture disk(torture);
  disk.CutPowerEverywhere();
  disk.FailEverywhere();
  disk.FailRenames();
}

}  // namespace wattlark
