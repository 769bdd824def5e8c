// A damaged store: cut off, with wrong bytes, or without a page. The program starts, says what it
// did, sets the file aside untouched and takes over every meter that can still be read.
#include <random>

#include "integration/RunningProgram.h"
#include "platform/sqlite/SqliteRegistry.h"
#include "torture/GoodStore.h"
#include "torture/Torture.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;

/// A bed that damaged files are laid into, one after the other.
class Bed {
 public:
  explicit Bed(Torture& torture) : torture_(torture) {}

  const std::string& Good() const { return good_.Bytes(); }

  /// The program itself is tried when `withProgram`.
  void Try(const std::string& what, const std::string& bad, bool withProgram) {
    const GoodStore::Damage damage(good_.Bytes(), bad);
    Lay(bad);
    torture_.Count("damaged stores");
    {
      const StoreOpening opening = torture_.isBroken ? OpenUnchecked() : OpenStore(profile_, 0);
      if (opening.registry == nullptr || !opening.savesChanges) {
        torture_.Find(what + ": no store to save to: " + opening.message);
        return;
      }
      const bool isSetAside = !opening.message.empty();
      torture_.Count("of these set aside", isSetAside);
      ExpectKept(what, bad, isSetAside);
      const GoodStore::Loss loss = good_.Compare(damage, isSetAside, *opening.registry);
      torture_.Count("values lost with a damaged place", loss.missing);
      torture_.Count("values changed by an undetectable byte", loss.changed);
      for (const std::string& problem : loss.problems) torture_.Find(what + ": " + problem);
    }
    if (withProgram && !torture_.isBroken) {
      Lay(bad);
      ExpectProgramStarts(what, bad, damage);
    }
  }

 private:
  std::string File(const std::string& suffix = "") const {
    return profile_ + "/wattlark.db" + suffix;
  }
  void Lay(const std::string& bytes) const {
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
    torture_.Expect(fs::exists(File(".damaged-1")) == isSetAside, what + ": set aside or not?");
    torture_.Expect(!isSetAside || FileBytes(File(".damaged-1")) == bad,
                    what + ": not set aside as it was");
  }
  /// The program itself, ended as soon as it runs.
  void ExpectProgramStarts(const std::string& what, const std::string& bad,
                           const GoodStore::Damage& damage) {
    RunningProgram program(
        {WATTLARK_HEADLESS_PROGRAM, "--profile", profile_, "--device", folder_.File("none")});
    const auto says = [&](const char* text) {
      return program.Messages().find(text) != std::string::npos;
    };
    const bool starts = WaitUntil([&] {
      return says("Unable to communicate") || says("No Kill-A-Watts") || !program.IsRunning();
    });
    const bool ends = starts && program.IsRunning() && program.End(SIGTERM) == 0;
    torture_.Expect(ends, what + ": does not run: " + program.Messages());
    const bool isSetAside = fs::exists(File(".damaged-1"));
    ExpectKept(what + " (program)", bad, isSetAside);
    torture_.Expect(!isSetAside || says("damaged"),
                    what + ": it says nothing of the damage: " + program.Messages());
    // What the program saved at its end must still have every meter without damage.
    auto totals = StoredTotals(*OpenStore(profile_, 0).registry);
    for (int number = 0; number < GoodStore::kMeters; ++number) {
      if (!good_.IsWhole(number, damage)) continue;
      const std::string name = GoodStore::MeterName(number);
      torture_.Expect(totals[name] == GoodStore::ToDateOf(number),
                      what + ": " + name + " is lost after a start and an end of the program");
    }
  }

  Torture& torture_;
  TemporaryFolder folder_;
  std::string profile_ = folder_.File("profile");
  GoodStore good_{profile_};
};

}  // namespace

void Run(Torture& torture) {
  Bed bed(torture);
  const std::string& good = bed.Good();
  for (std::size_t size = 512; size < good.size(); size += torture.isLong ? 512 : 512 * 47) {
    bed.Try("cut to " + std::to_string(size), good.substr(0, size), torture.isLong || size == 512);
  }
  std::mt19937_64 random(torture.seed);
  for (int i = 0; i < (torture.isLong ? 1000 : 40); ++i) {
    // One byte in every second file, up to 40 in the others.
    std::string bad = good;
    for (std::size_t bytes = i % 2 == 0 ? 1 : 1 + random() % 40; bytes > 0; --bytes) {
      char& byte = bad[random() % bad.size()];
      byte = static_cast<char>(byte ^ static_cast<char>(1 + random() % 255));
    }
    bed.Try("flip " + std::to_string(i), bad, torture.isLong || i < 3);
  }
  constexpr std::size_t kPage = GoodStore::kPageSize;
  for (std::size_t page = 0; page < good.size() / kPage; page += torture.isLong ? 1 : 7) {
    bed.Try("page " + std::to_string(page),
            std::string(good).replace(page * kPage, kPage, std::string(kPage, '\xA5')),
            torture.isLong);
  }
  for (std::size_t offset = 0; offset < 100; offset += torture.isLong ? 1 : 6) {
    // The number of the format: one that is higher than ours is a newer store, and left alone.
    if (offset >= 60 && offset < 64) continue;
    std::string bad = good;
    bad[offset] = static_cast<char>(bad[offset] ^ 0x55);
    bed.Try("header " + std::to_string(offset), bad, torture.isLong);
  }
}

}  // namespace wattlark
