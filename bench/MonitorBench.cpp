#include <benchmark/benchmark.h>

#include "BenchMonitor.h"
#include "FrameStream.h"

namespace wattlark::bench {
namespace {

// Takes what a face takes after every tick.
class ViewingListener : public MonitorListener {
 public:
  void OnUpdateStatus() override {
    if (monitor == nullptr) return;
    benchmark::DoNotOptimize(monitor->MainAreaText());
    benchmark::DoNotOptimize(monitor->Tray());
  }
  const Monitor* monitor = nullptr;
};

// One tick of the update cycle with so many receiving meters, each watching its alarm.
void Tick(benchmark::State& state) {
  ViewingListener listener;
  BenchMonitor bench(static_cast<int>(state.range(0)), listener);
  bench.monitor.StartRunning();
  listener.monitor = &bench.monitor;
  for (auto _ : state) {
    state.PauseTiming();
    bench.PassSecond(450);
    state.ResumeTiming();
    bench.monitor.UpdateCycle();
  }
}
BENCHMARK(Tick)->ArgName("meters")->RangeMultiplier(10)->Range(1, 10000)->Unit(
    benchmark::kMicrosecond);

// One frame from the port into the statistics of its meter, the meters in turn.
void Reading(benchmark::State& state) {
  ViewingListener listener;
  const int meters = static_cast<int>(state.range(0));
  BenchMonitor bench(meters, listener);
  bench.monitor.StartRunning();
  const std::vector<std::uint8_t> frames = FrameStream(meters, meters);
  std::size_t at = 0;
  for (auto _ : state) {
    if (at == frames.size()) {
      at = 0;
      bench.clock.Advance(2000);
    }
    bench.serial.waiting.assign(frames.begin() + static_cast<std::ptrdiff_t>(at),
                                frames.begin() + static_cast<std::ptrdiff_t>(at + kFrameSize));
    at += kFrameSize;
    bench.monitor.ReceiveXBeeData();
  }
}
BENCHMARK(Reading)->ArgName("meters")->RangeMultiplier(10)->Range(1, 10000)->Unit(
    benchmark::kMicrosecond);

}  // namespace
}  // namespace wattlark::bench
