#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>

#include "BenchClock.h"
#include "FrameStream.h"
#include "acquisition/MeterCollection.h"
#include "acquisition/clsXBee.h"

namespace wattlark::bench {
namespace {

constexpr int kFrames = 10000;

void SetRates(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kFrames);
  state.SetBytesProcessed(state.iterations() * kFrames * static_cast<std::int64_t>(kFrameSize));
}

void MemoryCopy(benchmark::State& state) {
  const std::vector<std::uint8_t> from(64 << 20, 1);
  std::vector<std::uint8_t> to(from.size());
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), from.size());
    benchmark::DoNotOptimize(to.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(from.size()));
}
BENCHMARK(MemoryCopy);

// What the least possible decoder does: delimiter, length, checksum, every ADC word.
void BareLoop(benchmark::State& state) {
  const auto stream = FrameStream(kFrames);
  std::int16_t words[255 * 6];
  for (auto _ : state) {
    const std::uint8_t* p = stream.data();
    const std::uint8_t* end = p + stream.size();
    std::uint64_t intact = 0;
    while (end - p >= 4) {
      if (*p != 0x7E) {
        ++p;
        continue;
      }
      const int length = p[1] << 8 | p[2];
      std::uint8_t sum = 0;
      for (int i = 0; i <= length; ++i) sum = static_cast<std::uint8_t>(sum + p[3 + i]);
      if (sum == 0xFF) ++intact;
      const std::uint8_t* sample = p + 3 + 8;
      for (int i = 0; i < (length - 8) / 2; ++i) {
        words[i] = static_cast<std::int16_t>(sample[2 * i] << 8 | sample[2 * i + 1]);
      }
      benchmark::DoNotOptimize(words);
      p += length + 4;
    }
    benchmark::DoNotOptimize(intact);
  }
  SetRates(state);
}
BENCHMARK(BareLoop);

// One call over the whole stream, and one call a frame as a port delivers them.
void ParseBytes(benchmark::State& state) {
  const auto stream = FrameStream(kFrames);
  const auto read = static_cast<std::size_t>(state.range(0));
  BenchClock clock;
  clsXBee decoder(clock);
  for (auto _ : state) {
    for (std::size_t at = 0; at < stream.size(); at += read) {
      decoder.ParseBytes(std::span(stream).subspan(at, std::min(read, stream.size() - at)));
    }
    benchmark::DoNotOptimize(decoder.AnalogSample(1, 1));
  }
  if (decoder.DecodedFrames() != static_cast<std::uint64_t>(state.iterations()) * kFrames) {
    state.SkipWithError("not every frame was decoded");
  }
  SetRates(state);
}
BENCHMARK(ParseBytes)->ArgName("bytesARead")->Arg(kFrameSize)->Arg(65536)->Arg(7);

void BytesToStatistics(benchmark::State& state) {
  const auto stream = FrameStream(kFrames);
  BenchClock clock;
  clsXBee decoder(clock);
  MeterCollection meters;
  for (int address = 1; address <= kAddresses; ++address) {
    auto meter = std::make_unique<clsKillAWatt>();
    meter->SetXBeeAddress(static_cast<std::int16_t>(address));
    meters.Add(std::move(meter));
  }
  for (auto _ : state) {
    for (std::size_t at = 0; at < stream.size(); at += kFrameSize) {
      clock.Advance(20);  // each of the 100 meters sends every 2 s
      if (!decoder.ParseBytes(std::span(stream).subspan(at, kFrameSize))) continue;
      if (clsKillAWatt* meter = meters.FindAddress(decoder.SourceAddress())) {
        meter->ProcessPacket(decoder);
      }
    }
  }
  benchmark::DoNotOptimize(meters[0].Watts());
  SetRates(state);
}
BENCHMARK(BytesToStatistics);

}  // namespace
}  // namespace wattlark::bench
