#include <benchmark/benchmark.h>

#include <QApplication>

#include "BenchMonitor.h"
#include "app/MonitorRelay.h"
#include "app/forms/frmMain.h"

namespace wattlark::bench {
namespace {

constexpr int kMeters = 16;

// One second of the shown window with 16 receiving meters: the tick, the full refresh of the page
// and its painting.
void Refresh(benchmark::State& state) {
  MonitorRelay relay;
  BenchMonitor bench(kMeters, relay);
  modRegistry store(bench.registry);
  frmMain::Options windowOptions;
  windowOptions.endProgram = [] {};
  frmMain window({bench.monitor, store, bench.desktop, bench.prompts}, windowOptions);
  relay.SendTo(&window);
  bench.monitor.StartRunning();
  window.show();
  window.ShowPage(static_cast<int>(state.range(0)));
  double watts = 100;
  const auto second = [&] {
    watts = watts < 1000 ? watts + 1 : 100;
    bench.PassSecond(watts);
    bench.monitor.UpdateCycle();
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
