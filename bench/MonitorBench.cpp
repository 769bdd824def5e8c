#include <benchmark/benchmark.h>

#include "BenchClock.h"
#include "SilentPorts.h"
#include "app/Monitor.h"
#include "twins/MemoryRegistry.h"

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
  BenchClock clock;
  SilentSerialPort serial;
  MemoryRegistry registry;
  FixedRandom random;
  SilentDesktop desktop;
  SilentPrompts prompts;
  ViewingListener listener;
  Monitor::Options options;
  options.checkpointSeconds = 1 << 30;
  Monitor monitor({clock, serial, registry, random, desktop, prompts},
                  RegionalSettings::UnitedStates(), options, listener);
  monitor.Load();
  monitor.Profile().Settings().LogToCSV = false;
  for (int address = 1; address <= state.range(0); ++address) {
    auto meter = std::make_unique<clsKillAWatt>();
    meter->SetName("Meter " + std::to_string(address));
    meter->SetXBeeAddress(static_cast<std::int16_t>(address));
    meter->Alarm().SetAlarmUpperLimit(1e6);
    meter->Alarm().SetAlarmActive(true);
    monitor.Profile().Meters().Add(std::move(meter));
  }
  monitor.StartRunning();
  listener.monitor = &monitor;
  for (auto _ : state) {
    state.PauseTiming();
    clock.Advance(1000);
    for (const auto& meter : monitor.Profile().Meters()) {
      meter->AddReading(120, 4, 450, clock.now, clock.ticks);
    }
    state.ResumeTiming();
    monitor.UpdateCycle();
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(Tick)->ArgName("meters")->RangeMultiplier(10)->Range(1, 10000)->Unit(
    benchmark::kMicrosecond);

}  // namespace
}  // namespace wattlark::bench
