// Twenty meters, a frame of each every two seconds, through the program over a real store for a
// simulated year: memory and store stay as large as they were after the second day, and every total
// is what an independent sum of the same frames gives.

#include <malloc.h>

#include <cmath>
#include <cstdio>
#include <numeric>

#include "platform/TemporaryFolder.h"
#include "platform/sqlite/OpenStore.h"
#include "sim/MeterModel.h"
#include "torture/Torture.h"
#include "torture/core/CoreRun.h"
#include "twins/Frames.h"

namespace wattlark {
namespace {

constexpr std::uint16_t kMeters = 20;
constexpr int kVariants = 64;           ///< different frames of one meter
constexpr std::int64_t kPeriod = 2000;  // ms
constexpr int kSecondsOfDay = 86'400;
// The store's log is at its longest after 144 saves: it nearly is at the end of the second day, and
// no longer at the end of any other.
constexpr int kSaveSeconds = 300;
constexpr int kHeapMargin = 64 * 1024;
constexpr int kResidentMargin = 1024 * 1024;

/// A frame, and what it says by the formulas of the meter with its default calibration.
struct PreparedFrame {
  Bytes bytes;
  long double watts = 0;
};

PreparedFrame Prepare(const Burst& burst) {
  std::vector<std::uint16_t> voltage;
  std::vector<std::uint16_t> current;
  for (const Sample& sample : burst.samples) {
    voltage.push_back(sample.voltage);
    current.push_back(sample.current);
  }
  const auto [least, most] = std::ranges::minmax(voltage);
  const int middle = (least + most) / 2;
  std::int64_t sum = 0;  // in counts, exact
  for (std::size_t s = 1; s + 1 < voltage.size(); ++s)
    sum += std::int64_t{voltage[s] - middle} * (current[s] - 498);
  const long double watts =
      static_cast<long double>(sum) * 120 / 200 / 15.5L / static_cast<long double>(voltage.size());
  return {MeterFrame(burst.address, voltage, current), std::max(watts, 0.0L)};
}

/// Watts and hours of one meter.
struct IndependentSum {
  long double toDate = 0;
  std::int64_t lastTicks = -1;

  void Add(long double watts, std::int64_t ticks) {
    if (lastTicks >= 0) toDate += watts * static_cast<long double>(ticks - lastTicks) / 3600000;
    lastTicks = ticks;
  }
};

struct Sizes {
  std::size_t heap = 0;
  std::size_t resident = 0;
  std::uintmax_t store = 0;
};

Sizes Measure(const std::string& folder) {
  Sizes sizes;
  sizes.heap = ::mallinfo2().uordblks;
  std::size_t total = 0;
  std::ifstream("/proc/self/statm") >> total >> sizes.resident;
  sizes.resident *= static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    sizes.store += file.file_size();
  }
  return sizes;
}

class SimulatedYear : public MonitorListener {
 public:
  SimulatedYear(Torture& torture, const std::string& folder)
      : torture_(torture),
        folder_(folder),
        days_(torture.isLong ? 365 : 3),
        // In the short form every second frame is left out.
        period_(torture.isLong ? kPeriod : 2 * kPeriod),
        store_(OpenStore(folder)),
        run_(*store_.registry, clock_, kSaveSeconds, *this) {
    run_.AddMeters(kMeters);
    clock_.now = At("2026-01-01T00:00:00");
    for (std::uint16_t address = 1; address <= kMeters; ++address) {
      MeterSettings settings;
      settings.address = address;
      settings.watts = 20.0 * address;
      MeterModel model(settings, address);
      for (int i = 0; i < kVariants; ++i) frames_.push_back(Prepare(model.TakeBurst(37.0 * i)));
    }
  }

  void Run() {
    Sizes afterSecond;
    for (int day = 1; day <= days_; ++day) {
      for (int second = 0; second < kSecondsOfDay; ++second) RunSecond();
      CheckDay(day);
      const Sizes sizes = Measure(folder_);
      if (day == 2) afterSecond = sizes;
      if (day > 2) CheckSizes(day, sizes, afterSecond);
      if (day <= 2 || day % 30 == 0 || day == days_) {
        std::printf("day %3d: heap %zu, resident %zu, store %ju bytes, difference %.1Le\n", day,
                    sizes.heap, sizes.resident, sizes.store, worst_);
        std::fflush(stdout);
      }
    }
    torture_.Expect(readings_ == sent_, "a frame did not become a reading");
    torture_.Expect(run_.Program().Errors().IsEmpty(), "an error was reported");
    torture_.Count("frames", sent_);
  }

  void OnReading(const clsKillAWatt&, DateTime) override { ++readings_; }

 private:
  /// Each meter has its own moment of the period; the tick comes at the end of the second.
  void RunSecond() {
    const std::int64_t end = ticks_ + 1000;
    for (; nextTicks_ <= end; nextTicks_ += period_ / kMeters) {
      MoveTo(nextTicks_);
      const std::size_t meter = sent_ % kMeters;
      const std::size_t variant = (sent_ * 2654435761U >> 7) % kVariants;
      const PreparedFrame& frame = frames_[meter * kVariants + variant];
      ++sent_;
      // The fault: one frame that the sum forgets.
      const bool isForgotten = torture_.isBroken && sent_ == 100'000;
      sums_[meter].Add(isForgotten ? 0 : frame.watts, ticks_);
      watts_[meter] = frame.watts;
      run_.Receive(frame.bytes);
    }
    MoveTo(end);
    run_.Program().UpdateCycle();
    total_.Add(std::accumulate(watts_.begin(), watts_.end(), 0.0L), ticks_);
  }

  void MoveTo(std::int64_t ticks) {
    clock_.Advance(ticks - ticks_);
    ticks_ = ticks;
  }

  void CheckSum(const MeterStatistics& statistics, IndependentSum& sum, const std::string& name) {
    const auto differs = [&](double usage, long double expected) {
      const long double difference = std::fabs(usage - expected) / expected;
      worst_ = std::max(worst_, difference);
      return difference > 1e-9L;
    };
    // What comes at the stroke of midnight still counts for the old year, and begins the new one.
    const bool isNextYear = statistics.Timestamp().Civil().year == 2027;
    torture_.Expect(!differs(statistics.Usage(ToDate), sum.toDate) &&
                        !differs(statistics.Usage(SinceReset), sum.toDate) &&
                        (isNextYear ? statistics.Usage(ThisYear) == 0
                                    : !differs(statistics.Usage(ThisYear), sum.toDate)),
                    name + ": the total is not the sum of the readings");
  }

  void CheckDay(int day) {
    for (std::uint16_t address = 1; address <= kMeters; ++address) {
      CheckSum(run_.Program().Profile().Meters()[address - 1U].Statistics(), sums_[address - 1U],
               "day " + std::to_string(day) + ", meter " + std::to_string(address));
    }
    CheckSum(run_.Program().Profile().Total().Statistics(), total_,
             "day " + std::to_string(day) + ", the Total");
  }

  /// The store keeps growing only until its series are full and its periods differ: a month's
  /// entries, then the year's. SQLite has all its pages in memory.
  void CheckSizes(int day, const Sizes& sizes, const Sizes& afterSecond) const {
    const std::string when = "day " + std::to_string(day);
    torture_.Expect(sizes.heap + afterSecond.store <= afterSecond.heap + sizes.store + kHeapMargin,
                    when + ": the heap has grown");
    torture_.Expect(sizes.resident <= afterSecond.resident + kResidentMargin,
                    when + ": the process has grown");
    torture_.Expect(sizes.store <= 2 * afterSecond.store, when + ": the store has grown");
  }

  Torture& torture_;
  const std::string folder_;
  const int days_;
  const std::int64_t period_;
  StoreOpening store_;
  HandClock clock_;
  CoreRun run_;
  std::vector<PreparedFrame> frames_;
  std::array<IndependentSum, kMeters> sums_;
  std::array<long double, kMeters> watts_{};
  IndependentSum total_;
  std::int64_t nextTicks_ = 1100;
  std::int64_t ticks_ = 1000;  ///< never wraps, as the program's does
  std::uint64_t sent_ = 0;
  std::uint64_t readings_ = 0;
  long double worst_ = 0;
};

}  // namespace

void Run(Torture& torture) {
  const TemporaryFolder folder;
  SimulatedYear(torture, folder.Path()).Run();
}

}  // namespace wattlark
