// A damaged store: cut off, with wrong bytes, or something else in its place. The program starts,
// says what it did, sets the file aside untouched and takes over every meter that can still be
// read.
#include <fcntl.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <utility>

#include "app/ProfileData.h"
#include "config/modRegistry.h"
#include "integration/RunningProgram.h"
#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "platform/sqlite/SqliteRegistry.h"
#include "torture/GoodStore.h"
#include "torture/OtherUser.h"
#include "torture/Torture.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;

/// A bed that damaged files are laid into, one after the other.
class Bed {
 public:
  explicit Bed(Torture& torture) : torture_(torture), random_(torture.seed) {
    fs::permissions(folder_.Path(), fs::perms(0777));
    // Another user than the tests' may have no way to the program.
    fs::copy_file(WATTLARK_HEADLESS_PROGRAM, program_);
    Torture::Tell("bytes of the store", good_.Bytes().size());
    Torture::Tell("values of its meters", good_.ValueCount());
  }

  const std::string& Good() const { return good_.Bytes(); }
  std::size_t Below(std::size_t limit) { return random_() % limit; }

  /// `offsets` are the damaged bytes; everything from `good_.size()` downwards that `bad` lacks is
  /// damaged as well. The program itself is tried when `withProgram`.
  void Try(const std::string& what, const std::string& bad, const std::set<std::size_t>& offsets,
           bool withProgram) {
    Lay(bad);
    ++cases_;
    {
      const StoreOpening opening = torture_.isBroken ? OpenUnchecked() : OpenStore(profile_, 0);
      if (opening.registry == nullptr || !opening.savesChanges) {
        torture_.Find(what + ": no store to save to: " + opening.message);
        return;
      }
      const bool isSetAside = !opening.message.empty();
      setAside_ += isSetAside ? 1 : 0;
      ExpectKept(what, bad, isSetAside);
      const GoodStore::Loss loss =
          good_.Compare({bad.size(), offsets}, isSetAside, *opening.registry);
      lostValues_ += loss.missing;
      changedValues_ += loss.changed;
      for (const std::string& problem : loss.problems) torture_.Find(what + ": " + problem);
    }
    if (withProgram && !torture_.isBroken) {
      Lay(bad);
      ExpectProgramStarts(what, bad, offsets);
    }
  }

  /// Something else in place of a store: what the program says, whether it can be read, and that it
  /// is left or set aside as it was.
  struct Guard {
    const char* what;
    std::function<void(Bed&)> make;
    const char* message;
    enum { Left, SetAside, Used } fate;
    bool showsMeters;
  };
  void TryGuard(const Guard& guard) {
    Lay(good_.Bytes());
    guard.make(*this);
    const std::string before = Contents(File());
    const Run run = Start(guard.what, {"--demo"});
    torture_.Expect(
        run.messages.find(guard.message) != std::string::npos,
        std::string(guard.what) + ": it does not say \"" + guard.message + "\": " + run.messages);
    const std::string kept = guard.fate == Guard::SetAside ? File(".damaged-1") : File();
    torture_.Expect(guard.fate == Guard::Used || Contents(kept) == before,
                    std::string(guard.what) + ": the file was changed");
    torture_.Expect(run.showsMeters == guard.showsMeters,
                    std::string(guard.what) + ": meters wrongly shown or not: " + run.messages);
    ++guards_;
  }

  void TellFigures() const {
    Torture::Tell("damaged stores", cases_);
    Torture::Tell("of these set aside", setAside_);
    Torture::Tell("started with the program itself", starts_);
    Torture::Tell("other things in its place", guards_);
    Torture::Tell("values lost with a damaged place", lostValues_);
    Torture::Tell("values changed by an undetectable byte", changedValues_);
  }

  std::string File(const std::string& suffix = "") const {
    return profile_ + "/wattlark.db" + suffix;
  }
  const std::string& Profile() const { return profile_; }

 private:
  struct Run {
    int status = -1;
    std::string messages;
    bool showsMeters = false;
  };

  static std::string Contents(const std::string& file) {
    return fs::is_directory(file) ? FileBytes(file + "/inside") : FileBytes(file);
  }

  void Lay(const std::string& bytes) const {
    fs::permissions(profile_, fs::perms(0700));
    for (const auto& entry : fs::directory_iterator(profile_)) fs::remove_all(entry.path());
    WriteFile(File(), bytes);
  }

  StoreOpening OpenUnchecked() const {
    StoreOpening opening;
    SqliteDatabase database;
    database.Open(File(), SQLITE_OPEN_READWRITE, 0);
    opening.savesChanges =
        SqliteRegistry::Attach(std::move(database), "the store", opening.registry) == SQLITE_OK;
    return opening;
  }

  void ExpectKept(const std::string& what, const std::string& bad, bool isSetAside) {
    if (isSetAside) {
      torture_.Expect(FileBytes(File(".damaged-1")) == bad, what + ": not set aside as it was");
    } else {
      torture_.Expect(!fs::exists(File(".damaged-1")), what + ": set aside without a word");
    }
  }

  /// The program itself, ended as soon as it runs.
  Run Start(const std::string& what, const std::vector<std::string>& options) {
    ++starts_;
    std::vector<std::string> command = {program_, "--profile", profile_};
    command.insert(command.end(), options.begin(), options.end());
    RunningProgram program(AsOtherUser(std::move(command), profile_));
    Run run;
    const bool starts = WaitUntil([&] {
      run.showsMeters = program.Output().find("Meter 10") != std::string::npos;
      const std::string& messages = program.Messages();
      return run.showsMeters || messages.find("Unable to communicate") != std::string::npos ||
             messages.find("No Kill-A-Watts") != std::string::npos || !program.IsRunning();
    });
    const bool runs = starts && program.IsRunning();
    run.status = runs ? program.End(SIGTERM) : program.Wait();
    run.messages = program.Messages();
    torture_.Expect(runs, what + ": the program does not start: " + run.messages);
    return run;
  }
  void ExpectProgramStarts(const std::string& what, const std::string& bad,
                           const std::set<std::size_t>& offsets) {
    const Run run = Start(what, {"--device", folder_.File("none")});
    torture_.Expect(run.status == 0, what + ": it ends with " + run.messages);
    ExpectKept(what + " (program)", bad, fs::exists(File(".damaged-1")));
    torture_.Expect(
        run.messages.find("damaged") != std::string::npos || !fs::exists(File(".damaged-1")),
        what + ": it says nothing of the damage: " + run.messages);
    // What the program saved at its end must still have every meter without damage.
    const StoreOpening opening = OpenStore(profile_, 0);
    const RegionalSettings regional = RegionalSettings::UnitedStates();
    modRegistry store(*opening.registry);
    ProfileData profile(regional);
    profile.Load(store, "log.csv", At("2026-11-16T20:10:00"));
    for (int number = 0; number < GoodStore::kMeters; ++number) {
      if (!good_.IsWhole(number, {bad.size(), offsets})) continue;
      const clsKillAWatt* meter = profile.Meters().FindName(GoodStore::MeterName(number));
      torture_.Expect(
          meter != nullptr && meter->Statistics().Usage(ToDate) == GoodStore::ToDateOf(number),
          what + ": " + GoodStore::MeterName(number) +
              " is lost after a start and an end of the program");
    }
  }

  Torture& torture_;
  std::mt19937_64 random_;
  TemporaryFolder folder_;
  std::string profile_ = folder_.File("profile");
  std::string program_ = folder_.File("wattlark-headless");
  GoodStore good_{profile_};
  std::size_t cases_ = 0;
  std::size_t setAside_ = 0;
  std::size_t starts_ = 0;
  std::size_t guards_ = 0;
  std::size_t lostValues_ = 0;
  std::size_t changedValues_ = 0;
};

void Truncate(const Torture& torture, Bed& bed) {
  const std::size_t step = torture.isLong ? 512 : 512 * 47;
  for (std::size_t size = 512; size < bed.Good().size(); size += step) {
    bed.Try("cut to " + std::to_string(size), bed.Good().substr(0, size), {},
            torture.isLong || size == 512);
  }
}

void Flip(const Torture& torture, Bed& bed) {
  const int count = torture.isLong ? 1000 : 40;
  for (int i = 0; i < count; ++i) {
    // One byte in every second file, up to 40 in the others.
    const std::size_t bytes = i % 2 == 0 ? 1 : 1 + bed.Below(40);
    std::set<std::size_t> offsets;
    std::string bad = bed.Good();
    while (offsets.size() < bytes) {
      const std::size_t offset = bed.Below(bad.size());
      if (!offsets.insert(offset).second) continue;
      bad[offset] = static_cast<char>(bad[offset] ^ static_cast<char>(1 + bed.Below(255)));
    }
    bed.Try("flip " + std::to_string(i), bad, offsets, torture.isLong || i < 3);
  }
}

void SpoilPages(const Torture& torture, Bed& bed) {
  const std::size_t pages = bed.Good().size() / StoreRows::kPageSize;
  for (std::size_t page = 0; page < pages; page += torture.isLong ? 1 : 7) {
    std::string bad = bed.Good();
    bad.replace(page * StoreRows::kPageSize, StoreRows::kPageSize,
                std::string(StoreRows::kPageSize, '\xA5'));
    std::set<std::size_t> offsets;
    for (std::size_t i = 0; i < StoreRows::kPageSize; ++i) {
      offsets.insert(page * StoreRows::kPageSize + i);
    }
    bed.Try("page " + std::to_string(page), bad, offsets, torture.isLong);
  }
}

void SpoilHeader(const Torture& torture, Bed& bed) {
  for (std::size_t offset = 0; offset < 100; offset += torture.isLong ? 1 : 6) {
    // The number of the format: one that is higher than ours is a newer store, and left alone.
    if (offset >= 60 && offset < 64) continue;
    std::string bad = bed.Good();
    bad[offset] = static_cast<char>(bad[offset] ^ 0x55);
    bed.Try("header " + std::to_string(offset), bad, {offset}, torture.isLong);
  }
}

void PutInPlace(Bed& bed) {
  const auto mode = [](int file, int folder) {
    return [file, folder](Bed& in) {
      fs::permissions(in.File(), fs::perms(file));
      fs::permissions(in.Profile(), fs::perms(folder));
    };
  };
  const Bed::Guard guards[] = {
      {"empty", [](Bed& in) { WriteFile(in.File(), ""); }, "No Kill-A-Watts", Bed::Guard::Used,
       false},
      {"folder",
       [](Bed& in) {
         fs::remove(in.File());
         fs::create_directory(in.File());
         WriteFile(in.File() + "/inside", "1");
       },
       "is not a file", Bed::Guard::SetAside, false},
      {"foreign database",
       [](Bed& in) {
         fs::remove(in.File());
         RunSql(in.File(), "PRAGMA application_id = 7; CREATE TABLE theirs(x)");
       },
       "database of another program", Bed::Guard::SetAside, false},
      {"newer store", [](Bed& in) { RunSql(in.File(), "PRAGMA user_version = 3"); },
       "newer version", Bed::Guard::Left, false},
      {"not readable", mode(0000, 0700), "cannot be read", Bed::Guard::Left, false},
      {"not writable", mode(0400, 0700), "can only be read", Bed::Guard::Left, true},
      {"folder not writable", mode(0600, 0500), "can only be read", Bed::Guard::Left, true},
  };
  for (const Bed::Guard& guard : guards) bed.TryGuard(guard);
}

void Run(Torture& torture) {
  Bed bed(torture);
  Truncate(torture, bed);
  Flip(torture, bed);
  SpoilPages(torture, bed);
  SpoilHeader(torture, bed);
  if (!torture.isBroken) PutInPlace(bed);
  bed.TellFigures();
}

}  // namespace
}  // namespace wattlark

int main(int argc, char** argv) {
  return wattlark::RunTorture(argc, argv, wattlark::Run);
}
