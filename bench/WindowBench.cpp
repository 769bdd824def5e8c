#include <benchmark/benchmark.h>

#include <QApplication>

#include "BenchClock.h"
#include "SilentPorts.h"
#include "app/MonitorRelay.h"
#include "app/forms/frmMain.h"
#include "twins/MemoryRegistry.h"

namespace wattlark::bench {
namespace {

constexpr int kMeters = 16;

// One second of the shown window with 16 receiving meters: the tick, the full refresh of the page
// and its painting.
void Refresh(benchmark::State& state) {
  BenchClock clock;
  SilentSerialPort serial;
  MemoryRegistry registry;
  FixedRandom random;
  SilentDesktop desktop;
  SilentPrompts prompts;
  MonitorRelay relay;
  modRegistry store(registry);
  Monitor::Options options;
  options.checkpointSeconds = 1 << 30;
  Monitor monitor({clock, serial, registry, random, desktop, prompts},
                  RegionalSettings::UnitedStates(), options, relay);
  monitor.Load();
  monitor.Profile().Settings().LogToCSV = false;
  for (int address = 1; address <= kMeters; ++address) {
    auto meter = std::make_unique<clsKillAWatt>();
    meter->SetName("Meter " + std::to_string(address));
    meter->SetXBeeAddress(static_cast<std::int16_t>(address));
    monitor.Profile().Meters().Add(std::move(meter));
  }
  frmMain::Options windowOptions;
  windowOptions.endProgram = [] {};
  frmMain window({monitor, store, desktop, prompts}, windowOptions);
  relay.SendTo(&window);
  monitor.StartRunning();
  window.show();
  window.ShowPage(static_cast<int>(state.range(0)));
  double watts = 100;
  const auto second = [&] {
    clock.Advance(1000);
    watts = watts < 1000 ? watts + 1 : 100;
    for (const auto& meter : monitor.Profile().Meters()) {
      meter->AddReading(120, 4, watts, clock.now, clock.ticks);
    }
    monitor.UpdateCycle();
    QCoreApplication::processEvents();
  };
  for (int i = 0; i < 120; ++i) second();
  for (auto _ : state) second();
  relay.SendTo(nullptr);
}
BENCHMARK(Refresh)->ArgName("page")->DenseRange(1, 4)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace wattlark::bench

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
