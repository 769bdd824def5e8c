// Unplugged: the device is lost and comes back, under its name or another that a link leads to, or
// may not be opened for a while. The first reading comes at most three seconds after the return,
// from the same process, which neither spins nor grows.
#include <sys/stat.h>

#include <memory>
#include <optional>
#include <random>

#include "integration/RunningProgram.h"
#include "platform/TemporaryFolder.h"
#include "torture/Torture.h"
#include "twins/Frames.h"
#include "twins/TestTerminal.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kLimit{3000};

/// What the program uses of the machine.
struct Usage {
  double processorSeconds = 0;
  long kilobytes = 0;
  long descriptors = 0;

  explicit Usage(pid_t process) {
    const std::string folder = "/proc/" + std::to_string(process);
    std::ifstream times(folder + "/stat");
    std::string field;
    for (int i = 0; i < 13; ++i) times >> field;
    double user = 0;
    double system = 0;
    times >> user >> system;
    processorSeconds = (user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
    std::ifstream(folder + "/statm") >> kilobytes >> kilobytes;
    kilobytes *= ::sysconf(_SC_PAGESIZE) / 1024;
    descriptors = std::distance(fs::directory_iterator(folder + "/fd"), fs::directory_iterator());
  }
};

/// A program whose device comes and goes, in a thread of its own.
class Bench {
 public:
  Bench(Torture& torture, std::uint64_t seed) : torture_(torture), random_(seed) {
    PlugIn();
    RunningProgram add(Command({"meter", "add", "--name", "Kitchen", "--address", "5"}));
    if (add.Wait() != 0) throw std::runtime_error("no meter: " + add.Messages());
  }

  void Run(int cycles) {
    RunningProgram program(Command({"--device", device_, "--record", capture_}));
    if (!WaitUntil([&] { return SendAndSee(); })) {
      throw std::runtime_error("no reading at all: " + program.Messages());
    }
    // What grows once, the texts of the first losses for one, is no growth.
    const int settled = std::min(cycles / 4, 50);
    std::optional<Usage> before;
    const auto start = Clock::now();
    const double processor = Usage(program.Process()).processorSeconds;
    for (int cycle = 0; cycle < cycles; ++cycle) {
      if (cycle == settled) before.emplace(program.Process());
      LoseAndReturn(cycle);
      if (!program.IsRunning()) return torture_.Find("the program ended: " + program.Messages());
      static_cast<void>(program.Output());
      static_cast<void>(program.Messages());
    }
    const std::chrono::duration<double> took = Clock::now() - start;
    const Usage after(program.Process());
    const auto expectBelow = [this](const char* what, double value, double limit) {
      torture_.Largest(what, value);
      torture_.Expect(value < limit, std::string(what) + ": " + std::to_string(value));
    };
    expectBelow("share of a processor", (after.processorSeconds - processor) / took.count(), 0.1);
    const auto growth = static_cast<double>(after.kilobytes - before->kilobytes);
    expectBelow("growth of memory, kB", growth, torture_.isLong ? 1024 : 1e9);
    // One device may be open at one time and not at the other.
    expectBelow("growth of open files",
                static_cast<double>(after.descriptors - before->descriptors), 3);
  }

 private:
  std::vector<std::string> Command(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {WATTLARK_HEADLESS_PROGRAM, "--profile", profile_});
    // Modes do not bind root, who may open any device; without this privilege they do.
    if (::geteuid() == 0) {
      arguments.insert(arguments.begin(),
                       {"/usr/bin/setpriv", "--bounding-set=-dac_override,-dac_read_search"});
    }
    return arguments;
  }
  void PlugIn() {
    // Made while the old one is still there, so that the new one has another name.
    terminal_ = std::make_unique<TestTerminal>();
    Link();
  }
  void Link() const {
    fs::remove(device_);
    fs::create_symlink(terminal_->Path(), device_);
  }

  void LoseAndReturn(int cycle) {
    enum { Unplugged, Renamed, Forbidden };
    const int kind = cycle % 3;
    // Forbidding alone takes no device from whoever has it open.
    if (kind != Renamed) terminal_.reset();
    fs::remove(device_);
    if (kind == Forbidden) {
      terminal_ = std::make_unique<TestTerminal>();
      ::chmod(terminal_->Path().c_str(), 0);
      Link();
    }
    std::this_thread::sleep_for(milliseconds(random_() % 2500));
    if (torture_.isBroken) return ExpectReading("never restored");
    if (kind == Unplugged) PlugIn();
    if (kind == Renamed) Link();
    if (kind == Forbidden) ::chmod(terminal_->Path().c_str(), 0600);
    ExpectReading(kind == Unplugged ? "unplugged" : kind == Renamed ? "renamed" : "forbidden");
  }

  /// A meter sends ten times a second; what nobody reads is lost.
  void ExpectReading(const char* what) {
    const auto start = Clock::now();
    const auto before = Recorded();
    std::chrono::duration<double> took{};
    while (Recorded() == before && took < 3 * kLimit) {
      if (terminal_) SendBurst();
      std::this_thread::sleep_for(milliseconds(20));
      took = Clock::now() - start;
    }
    torture_.Count("losses and returns");
    torture_.Count("seconds to the first readings after them", took.count());
    torture_.Largest("slowest of these", took.count());
    torture_.Expect(took <= kLimit, std::string(what) + ": the first reading comes after " +
                                        std::to_string(took.count()) + " s");
  }
  bool SendAndSee() {
    const auto before = Recorded();
    SendBurst();
    std::this_thread::sleep_for(milliseconds(50));
    return Recorded() > before;
  }
  void SendBurst() {
    const std::vector<std::uint16_t> volts(19, 600);
    const std::vector<std::uint16_t> amps(19, 520);
    const Bytes frame = MeterFrame(5, volts, amps);
    // The terminal holds 4096 bytes for a reader that is not there; what is more is lost.
    const ssize_t ignored = ::write(terminal_->Master(), frame.data(), frame.size());
    static_cast<void>(ignored);
  }
  /// How often the program has recorded a read.
  std::size_t Recorded() {
    std::ifstream file(capture_);
    file.seekg(static_cast<std::streamoff>(read_));
    std::string line;
    while (std::getline(file, line) && !file.eof()) {
      read_ += line.size() + 1;
      if (line.find(" rx ") != std::string::npos) ++reads_;
    }
    return reads_;
  }

  Torture& torture_;
  std::mt19937_64 random_;
  TemporaryFolder folder_;
  std::string profile_ = folder_.File("profile");
  std::string device_ = folder_.File("receiver");
  std::string capture_ = folder_.File("capture");
  std::unique_ptr<TestTerminal> terminal_;
  std::size_t read_ = 0;
  std::size_t reads_ = 0;
};

}  // namespace

void Run(Torture& torture) {
  const int benches = torture.isLong ? 6 : 3;
  const int cycles = torture.isLong ? 1002 : torture.isBroken ? 3 : 9;
  torture.InThreads(benches, [&](int number) {
    Bench(torture, torture.seed * 1000 + static_cast<unsigned>(number)).Run(cycles / benches);
  });
}

}  // namespace wattlark
