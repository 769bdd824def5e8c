#include <benchmark/benchmark.h>

#include "BenchClock.h"
#include "publish/GoogleFeeds.h"
#include "publish/GoogleRow.h"
#include "publish/PachubeLogger.h"
#include "publish/PowerMeterLogger.h"
#include "publish/TwitterLogger.h"

namespace wattlark::bench {
namespace {

constexpr int kMeters = 100;

/// What every destination makes its body of.
struct Readings {
  Readings() {
    settings.PachubeInterval = 300;
    settings.GoogleInterval = 300;
    for (int address = 1; address <= kMeters; ++address) {
      auto meter = std::make_unique<clsKillAWatt>();
      meter->SetName("Living Room " + std::to_string(address));
      meter->SetXBeeAddress(static_cast<std::int16_t>(address));
      for (int minute = 0; minute < 70; ++minute) {
        meter->AddReading(120, 4, 100.123456789 * address + minute, clock.now.PlusMinutes(minute),
                          clock.ticks + static_cast<std::uint32_t>(minute) * 60000);
      }
      meters.Add(std::move(meter));
    }
  }

  BenchClock clock;
  AppSettings settings;
  RegionalSettings regional = RegionalSettings::UnitedStates();
  MeterCollection meters;
};

void PachubeBody(benchmark::State& state) {
  const Readings r;
  for (auto _ : state) {
    benchmark::DoNotOptimize(PachubeDocument(r.settings, r.meters, r.regional, true));
  }
}
BENCHMARK(PachubeBody)->Unit(benchmark::kMicrosecond);

void GoogleBody(benchmark::State& state) {
  const Readings r;
  for (auto _ : state) {
    benchmark::DoNotOptimize(GoogleRow(r.settings, r.meters, r.regional, r.clock.now, true));
  }
}
BENCHMARK(GoogleBody)->Unit(benchmark::kMicrosecond);

void PowerMeterBody(benchmark::State& state) {
  const Readings r;
  for (auto _ : state) {
    benchmark::DoNotOptimize(PowerMeterEntry(r.clock.now, 600, 200.123456, r.regional));
  }
}
BENCHMARK(PowerMeterBody)->Unit(benchmark::kMicrosecond);

void TwitterStatusBody(benchmark::State& state) {
  const Readings r;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        TwitterBody(TwitterMessageText("Currently using %W, %D so far today, %Y yesterday.",
                                       r.meters[0], r.regional, r.clock.now)));
  }
}
BENCHMARK(TwitterStatusBody)->Unit(benchmark::kMicrosecond);

void FeedOfOneMebibyte(benchmark::State& state) {
  std::string feed;
  while (feed.size() < 1024 * 1024) {
    feed += "<entry><title>other</title><link rel='#worksheetsfeed' href='http://h/o'/></entry>";
  }
  feed += "<entry><title>wattlark</title><link rel='#worksheetsfeed' href='http://h/w'/></entry>";
  for (auto _ : state) benchmark::DoNotOptimize(FindWorksheetsFeed(feed, "wattlark"));
}
BENCHMARK(FeedOfOneMebibyte)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace wattlark::bench
