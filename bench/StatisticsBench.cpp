#include <benchmark/benchmark.h>
#include <rrd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "BenchClock.h"
#include "FrameStream.h"
#include "acquisition/clsKillAWatt.h"
#include "acquisition/clsXBee.h"

namespace wattlark::bench {
namespace {

// One reading after another, `gap` seconds apart; 2 s is the steady state.
void AddReading(benchmark::State& state) {
  clsKillAWatt meter;
  BenchClock clock;
  const std::int64_t gap = state.range(0) * 1000;
  double watts = 400;
  for (auto _ : state) {
    clock.Advance(gap);
    watts = watts > 600 ? 400 : watts + 1;
    meter.AddReading(120, 4, watts, clock.now, clock.ticks);
  }
  benchmark::DoNotOptimize(meter.AverageDemand(60));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(AddReading)
    ->ArgName("gapSeconds")
    ->Arg(2)
    ->Arg(30)
    ->Arg(3600)
    ->Arg(86400)
    ->Arg(40 * 86400);

// A round-robin database of the same shape: two sources, six archives, one file in memory.
void RoundRobinDatabase(benchmark::State& state) {
  const std::filesystem::path folder =
      std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path();
  const std::string file = (folder / "wattlark-bench.rrd").string();
  const char* definition[] = {"DS:demand:GAUGE:10:U:U",   "DS:usage:GAUGE:10:U:U",
                              "RRA:AVERAGE:0.5:1:60",     "RRA:AVERAGE:0.5:60:60",
                              "RRA:AVERAGE:0.5:3600:24",  "RRA:AVERAGE:0.5:86400:7",
                              "RRA:AVERAGE:0.5:86400:31", "RRA:AVERAGE:0.5:2592000:12"};
  const std::time_t start = 1763323200;
  std::filesystem::remove(file);
  if (rrd_create_r(file.c_str(), 1, start, 8, definition) != 0) {
    state.SkipWithError(rrd_get_error());
    return;
  }
  std::time_t now = start;
  char update[64];
  for (auto _ : state) {
    now += 2;
    std::snprintf(update, sizeof update, "%lld:%d:%d", static_cast<long long>(now), 450, 1);
    const char* arguments[] = {update};
    if (rrd_update_r(file.c_str(), nullptr, 1, arguments) != 0) {
      state.SkipWithError(rrd_get_error());
      break;
    }
  }
  std::filesystem::remove(file);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(RoundRobinDatabase);

void MeterBytes(benchmark::State& state) {
  BenchClock clock;
  clsXBee decoder(clock);
  decoder.ParseBytes(FrameStream(1));
  clsKillAWatt meter;
  meter.ProcessPacket(decoder);
  for (auto _ : state) benchmark::DoNotOptimize(meter.Watts());
  // The object, its name if that is not held inside, and three arrays of doubles.
  state.counters["bytes"] = static_cast<double>(sizeof meter + 3 * kSamples * sizeof(double));
}
BENCHMARK(MeterBytes);

}  // namespace
}  // namespace wattlark::bench
