// Killed at any moment: the program on a pseudo-terminal that the simulator feeds, saving every two
// seconds, and the commands that add and remove meters. After each kill the store must open, hold
// every meter, and no total may be less than what was read from the store before.
#include <random>

#include "integration/RunningProgram.h"
#include "platform/sqlite/OpenStoreCopy.h"
#include "torture/GoodStore.h"
#include "torture/Torture.h"

namespace wattlark {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

/// One profile that is killed over and over, in a thread of its own.
class Victim {
 public:
  Victim(Torture& torture, std::uint64_t seed) : torture_(torture), random_(seed) {
    WaitUntil([this] { return std::filesystem::exists(device_); });
    for (const auto& [name, address] : {std::pair("Kitchen", "5"), std::pair("Office", "6")}) {
      RunningProgram add(Program({"meter", "add", "--name", name, "--address", address}));
      if (add.Wait() != 0) throw std::runtime_error("no meter: " + add.Messages());
      meters_[name] = 0;
    }
  }

  void KillProgram(bool insideSave) {
    RunningProgram program(Program({"--device", device_, "--checkpoint", "2"}, torture_.isBroken));
    const auto end = Clock::now() + (insideSave ? milliseconds(6000) : Below(4500));
    const std::size_t wanted = random_() % 2;
    std::size_t seen = 0;
    bool wasSaving = false;
    while (Clock::now() < end && program.IsRunning()) {
      const bool isSaving = IsSaving();
      if (isSaving && insideSave && seen >= wanted) {
        // A save takes some milliseconds.
        std::this_thread::sleep_for(microseconds(random_() % 8000));
        break;
      }
      if (wasSaving && !isSaving) {
        ++seen;
        // What is in the store now must be there after the kill.
        ExpectStore("a save", true);
      }
      wasSaving = isSaving;
      std::this_thread::sleep_for(isSaving || insideSave ? microseconds(100) : microseconds(1000));
    }
    if (!program.IsRunning()) torture_.Find("the program ended by itself: " + program.Messages());
    Kill(program, "kills of the running program");
    if (seen > 0) torture_.Count("of these with a checkpoint to compare with");
    if (program.Messages().find("damaged") != std::string::npos) torture_.Find(program.Messages());
    ExpectStore("a kill of the program");
  }

  /// Adds or removes a meter; whether it is there afterwards is open, the others are.
  void KillCommand() {
    const bool adds = !extra_;
    std::vector<std::string> arguments = {"meter", "remove", "Extra"};
    if (adds) arguments = {"meter", "add", "--name", "Extra", "--address", "9"};
    RunningProgram command(Program(arguments, torture_.isBroken));
    const auto end = Clock::now() + Below(400);
    const bool insideSave = random_() % 2 == 0;
    while (Clock::now() < end && command.IsRunning()) {
      if (insideSave && IsSaving()) {
        std::this_thread::sleep_for(microseconds(random_() % 4000));
        break;
      }
      std::this_thread::sleep_for(microseconds(50));
    }
    const bool isDone = !command.IsRunning();
    if (Kill(command, "kills of meter add and meter remove") == 0 && isDone) extra_ = adds;
    ExpectStore("a kill of meter " + arguments[1]);
  }

 private:
  int Kill(RunningProgram& program, const char* what) {
    if (IsSaving()) torture_.Count("kills inside a save");
    torture_.Count(what);
    return program.End(SIGKILL);
  }
  milliseconds Below(int limit) {
    return milliseconds(static_cast<int>(random_() % static_cast<unsigned>(limit)));
  }
  std::vector<std::string> Program(std::vector<std::string> arguments,
                                   bool isBroken = false) const {
    arguments.insert(arguments.begin(), {WATTLARK_HEADLESS_PROGRAM, "--profile", profile_});
    if (isBroken) {
      arguments.insert(arguments.begin(), {"/usr/bin/env", "LD_PRELOAD=" WATTLARK_CARELESS_LIBRARY,
                                           "ASAN_OPTIONS=verify_asan_link_order=0"});
    }
    return arguments;
  }
  bool IsSaving() const {
    if (!torture_.isBroken) return std::filesystem::exists(profile_ + "/wattlark.db-journal");
    // The careless variant has no journal: what it writes is seen in the file itself.
    std::error_code missing;
    const auto written = std::filesystem::last_write_time(profile_ + "/wattlark.db", missing);
    return !missing && std::filesystem::file_time_type::clock::now() - written < milliseconds(10);
  }
  void ExpectStore(const std::string& when, bool mayBeLocked = false) {
    const StoreOpening opening = OpenStoreCopy(profile_, 2000);
    if (!opening.message.empty() || opening.registry == nullptr) {
      if (!mayBeLocked) {
        torture_.Find("the store cannot be read after " + when + ": " + opening.message);
      }
      return;
    }
    const std::map<std::string, double> totals = StoredTotals(*opening.registry);
    extra_ = totals.contains("Extra");
    for (auto& [name, total] : meters_) {
      const auto found = totals.find(name);
      torture_.Expect(found != totals.end(), name + " is lost after " + when);
      if (found == totals.end()) continue;
      torture_.Expect(found->second >= total, name + " falls from " + std::to_string(total) +
                                                  " to " + std::to_string(found->second) +
                                                  " after " + when);
      total = std::max(total, found->second);
    }
  }

  Torture& torture_;
  std::mt19937_64 random_;
  TemporaryFolder folder_;
  std::string profile_ = folder_.File("profile");
  std::string device_ = folder_.File("receiver");
  RunningProgram sim_{{WATTLARK_SIM_PROGRAM, "--link", device_, "--period", "0.1", "--meter",
                       "Kitchen:5:400", "--meter", "Office:6:90"}};
  std::map<std::string, double> meters_;  ///< the most that was ever stored, Wh
  bool extra_ = false;
};

}  // namespace

void Run(Torture& torture) {
  const int victims = torture.isLong ? 12 : 4;
  const int kills = torture.isLong ? 2004 : 24;
  torture.InThreads(victims, [&](int number) {
    Victim victim(torture, torture.seed * 1000 + static_cast<unsigned>(number));
    // A save takes some milliseconds: few kills may hit none of a careless program's.
    const auto goesOn = [&](int i) {
      return i < kills / victims ||
             (torture.isBroken && torture.Faults() == 0 && i < 6 * kills / victims);
    };
    for (int i = 0; goesOn(i); ++i) {
      if (i % 3 == 2) {
        victim.KillCommand();
      } else {
        victim.KillProgram(i % 3 == 0);
      }
    }
  });
}

}  // namespace wattlark
