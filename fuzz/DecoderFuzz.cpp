// Frames from any bytes in any split: the decoder never reads out of bounds, every sample it offers
// can be read, and a meter that takes them stays finite.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "Require.h"
#include "acquisition/clsKillAWatt.h"
#include "acquisition/clsXBee.h"

namespace {

class StandingClock : public wattlark::Clock {
 public:
  wattlark::DateTime Now() const override { return wattlark::DateTime::FromMilliseconds(0); }
  std::uint32_t Ticks() const override { return 1000; }
};

}  // namespace

// The first byte chooses the size of the reads, the others are the stream.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t read = data[0] == 0 ? size : data[0];
  auto stream = std::span(data, size).subspan(1);
  const StandingClock clock;
  wattlark::clsXBee decoder(clock);
  wattlark::clsKillAWatt meter;
  std::uint64_t completed = 0;
  while (!stream.empty()) {
    const auto bytes = stream.first(std::min(read, stream.size()));
    stream = stream.subspan(bytes.size());
    const bool whole = decoder.ParseBytes(bytes);
    Require(decoder.FrameReceived() == (decoder.CompletedFrames() > completed));
    Require(whole || !decoder.FrameReceived());
    completed = decoder.CompletedFrames();
    if (!decoder.SampleDecoded()) continue;
    for (int s = 1; s <= decoder.SampleCount(); ++s) {
      for (int a = 1; a <= wattlark::clsXBee::AnalogChannels; ++a) {
        Require(decoder.AnalogSample(s, a) >= wattlark::clsXBee::NotSampled);
      }
      for (int d = 1; d <= wattlark::clsXBee::DigitalLines; ++d) decoder.DigitalSample(s, d);
    }
    meter.ProcessPacket(decoder);
    Require(std::isfinite(meter.Volts()) && std::isfinite(meter.Amps()) && meter.Watts() >= 0);
  }
  return 0;
}
