// Frames on a disturbed line, read by the program: what was sent intact and is not behind a false
// start arrives, and nothing arrives that no frame with a right checksum says.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sim/Random.h"
#include "torture/Torture.h"
#include "torture/core/CoreRun.h"
#include "twins/Frames.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

constexpr std::size_t kSamples = 19;
using Counts = std::array<std::uint16_t, kSamples>;

/// What one frame says: the readings of lines A0 and A4.
struct Message {
  std::uint16_t address = 0;
  Counts voltage{};
  Counts current{};

  bool operator==(const Message&) const = default;
};

/// One frame as sent.
struct SentFrame {
  Message message;
  std::size_t start = 0;  ///< in the stream
  bool isIntact = true;   ///< every byte of it arrived, in a row
};

/// A checksum that a decoder without a check would have taken as right.
struct Bypass {
  std::size_t at = 0;
  std::uint8_t checksum = 0;
};

/// Frames of some meters on a disturbed line, and what became of each.
struct NoisyStream {
  std::vector<std::uint8_t> bytes;
  std::vector<SentFrame> frames;
  std::vector<Bypass> bypasses;  ///< of frames that kept their length
};

constexpr std::uint16_t kMeters = 20;

/// `rate` is the share of frames that a disturbance of some kind meets. The current readings of the
/// first two samples hold the frame's number.
NoisyStream MakeNoisyStream(std::size_t count, double rate, Random& random) {
  NoisyStream stream;
  stream.bytes.reserve(count * 96);
  const auto noise = [&random] { return static_cast<std::uint8_t>(random.Below(256)); };
  const auto noiseOf = [&](std::uint32_t most) {
    for (std::uint32_t left = 1 + random.Below(most); left > 0; --left) {
      stream.bytes.push_back(noise());
    }
  };
  for (std::size_t number = 0; number < count; ++number) {
    Message message{static_cast<std::uint16_t>(1 + number % kMeters)};
    for (std::size_t s = 0; s < kSamples; ++s) {
      message.voltage[s] = static_cast<std::uint16_t>(300 + random.Below(400));
      message.current[s] = static_cast<std::uint16_t>(random.Below(1024));
    }
    message.current[0] = static_cast<std::uint16_t>(number & 0x3FF);
    message.current[1] = static_cast<std::uint16_t>(number >> 10 & 0x3FF);
    Bytes frame = MeterFrame(message.address, {message.voltage.begin(), message.voltage.end()},
                             {message.current.begin(), message.current.end()});
    const Bytes sent = frame;
    const auto somewhere = [&] {
      return static_cast<std::ptrdiff_t>(random.Below(static_cast<std::uint32_t>(frame.size())));
    };
    if (random.Chance(rate)) {
      switch (random.Below(7)) {
        case 0:  // one bit
          frame[static_cast<std::size_t>(somewhere())] ^=
              static_cast<std::uint8_t>(1U << random.Below(8));
          break;
        case 1:  // some bytes
          for (std::uint32_t n = 1 + random.Below(8); n > 0; --n) {
            frame[static_cast<std::size_t>(somewhere())] = noise();
          }
          break;
        case 2: {  // bytes lost
          const auto first = frame.begin() + somewhere();
          const auto most = static_cast<std::uint32_t>(frame.end() - first);
          frame.erase(first, first + 1 + random.Below(most));
          break;
        }
        case 3:  // bytes too many
          for (std::uint32_t n = 1 + random.Below(4); n > 0; --n) {
            frame.insert(frame.begin() + somewhere(), noise());
          }
          break;
        case 4:  // a burst over the rest of the frame
          for (auto byte = frame.begin() + somewhere(); byte != frame.end(); ++byte) {
            *byte = noise();
          }
          break;
        case 5:  // between two frames
          noiseOf(32);
          break;
        default: {  // a beginning that ends: the sender was interrupted and starts again
          const auto end = frame.begin() + somewhere();
          stream.bytes.insert(stream.bytes.end(), frame.begin(), end);
          break;
        }
      }
    }
    stream.frames.push_back({message, stream.bytes.size(), frame == sent});
    if (frame != sent && frame.size() == sent.size() &&
        std::equal(frame.begin(), frame.begin() + 3, sent.begin())) {
      unsigned sum = 0;
      for (std::size_t i = 3; i + 1 < frame.size(); ++i) sum += frame[i];
      stream.bypasses.push_back(
          {stream.bytes.size() + frame.size() - 1, static_cast<std::uint8_t>(0xFF - (sum & 0xFF))});
    }
    stream.bytes.insert(stream.bytes.end(), frame.begin(), frame.end());
  }
  return stream;
}

constexpr std::size_t kPrefix = 3;
constexpr std::size_t kFrameSize = kPrefix + 8 + 4 * kSamples + 1;

unsigned Word(std::span<const std::uint8_t> bytes, std::size_t at) {
  return bytes[at] * 256U + bytes[at + 1];
}

/// Where a frame would end that begins at `start`; nothing when the stream ends before.
std::optional<std::size_t> EndOfFrame(std::span<const std::uint8_t> stream, std::size_t start) {
  if (stream[start] != 0x7E || start + kPrefix > stream.size()) return std::nullopt;
  const std::size_t end = start + kPrefix + Word(stream, start + 1) + 1;
  return end <= stream.size() ? std::optional(end) : std::nullopt;
}

/// What a frame that begins at `start` says, with a right checksum and from a meter. One of another
/// number of samples or other lines leaves its samples 0.
std::optional<Message> ReadMessage(std::span<const std::uint8_t> stream, std::size_t start) {
  const auto end = EndOfFrame(stream, start);
  if (!end || *end - start < kPrefix + 8 + 1) return std::nullopt;
  unsigned sum = 0;
  for (const std::uint8_t byte : stream.subspan(start + kPrefix, *end - start - kPrefix)) {
    sum += byte;
  }
  const auto data = stream.subspan(start + kPrefix, *end - start - kPrefix - 1);
  Message message{static_cast<std::uint16_t>(Word(data, 1))};
  const bool isOfMeter = message.address >= 1 && message.address <= kMeters;
  if ((sum & 0xFF) != 0xFF || data[0] != 0x83 || !isOfMeter) return std::nullopt;
  if (data[5] != kSamples || Word(data, 6) != 0x2200 || *end - start < kFrameSize) return message;
  for (std::size_t s = 0; s < kSamples; ++s) {
    message.voltage[s] = static_cast<std::uint16_t>(Word(data, 8 + 4 * s));
    message.current[s] = static_cast<std::uint16_t>(Word(data, 10 + 4 * s));
  }
  return message;
}

/// Takes the readings back to what the frame must have said, through the default calibration.
class Deliveries : public MonitorListener {
 public:
  std::vector<Message> messages;

  void OnReading(const clsKillAWatt& meter, DateTime) override {
    Message message{static_cast<std::uint16_t>(meter.XBeeAddress())};
    const bool isWhole = meter.GetSamples(volts_, amps_) && volts_.size() == kSamples;
    for (std::size_t s = 0; isWhole && s < kSamples; ++s) {
      message.voltage[s] =
          static_cast<std::uint16_t>(std::lround(volts_[s] * 200 / 120) + meter.VoltageOffset());
      message.current[s] = static_cast<std::uint16_t>(std::lround(amps_[s] * 15.5) + 498);
    }
    messages.push_back(message);
  }

 private:
  std::vector<double> volts_;
  std::vector<double> amps_;
};

struct Figures {
  std::size_t intact = 0;
  std::size_t atOnce = 0;     ///< reached their meter
  std::size_t late = 0;       ///< found behind a false start, several in one read
  std::size_t swallowed = 0;  ///< behind a false start and never found
  std::size_t byChance = 0;   ///< damaged, and the checksum fits nevertheless
  std::size_t damaged = 0;
};

/// Marks every byte that a delimiter outside the frames that arrived may have claimed.
std::vector<bool> ClaimedByFalseStarts(const NoisyStream& stream,
                                       const std::vector<bool>& arrived) {
  std::vector<bool> inside(stream.bytes.size());
  for (std::size_t i = 0; i < stream.frames.size(); ++i) {
    if (!arrived[i]) continue;
    const auto first = inside.begin() + static_cast<std::ptrdiff_t>(stream.frames[i].start);
    std::fill(first, first + kFrameSize, true);
  }
  for (const SentFrame& frame : stream.frames) {
    if (frame.isIntact) inside[frame.start] = true;  // its own delimiter is no false one
  }
  std::vector<bool> claimed(stream.bytes.size());
  std::size_t claimEnd = 0;
  for (std::size_t at = 0; at < stream.bytes.size(); ++at) {
    claimed[at] = at < claimEnd;
    if (inside[at] || stream.bytes[at] != 0x7E || at + kPrefix > stream.bytes.size()) continue;
    // A length that overflows drops the rest of its read, at most the longest.
    const unsigned length = Word(stream.bytes, at + 1);
    claimEnd = std::max(claimEnd, at + kPrefix + 1 + (length > 0x7FFB ? 64 : length));
  }
  return claimed;
}

Figures Read(const NoisyStream& stream, Random& random, Torture& torture) {
  MemoryRegistry registry;
  Deliveries deliveries;
  HandClock clock;
  CoreRun run(registry, clock, 1 << 30, deliveries);
  run.AddMeters(kMeters);
  std::vector<std::uint8_t> fed = stream.bytes;
  if (torture.isBroken) {
    for (const Bypass& bypass : stream.bypasses) fed[bypass.at] = bypass.checksum;
  }
  // Reads shorter than a frame, so that none hides another.
  for (std::size_t at = 0; at < fed.size();) {
    const std::size_t size = std::min<std::size_t>(fed.size() - at, 1 + random.Below(64));
    const auto first = fed.begin() + static_cast<std::ptrdiff_t>(at);
    run.Receive({first, first + static_cast<std::ptrdiff_t>(size)});
    clock.Advance(1);
    at += size;
  }

  Figures figures;
  std::vector<Message> chanceFits;
  std::vector<bool> startsIntact(stream.bytes.size());
  for (const SentFrame& frame : stream.frames) startsIntact[frame.start] = frame.isIntact;
  for (std::size_t at = 0; at < stream.bytes.size(); ++at) {
    if (startsIntact[at] || stream.bytes[at] != 0x7E) continue;
    if (const auto message = ReadMessage(stream.bytes, at)) chanceFits.push_back(*message);
  }

  std::vector<bool> arrived(stream.frames.size());
  for (const Message& message : deliveries.messages) {
    const std::size_t number = message.current[0] + message.current[1] * std::size_t{1024};
    const bool isSent = number < stream.frames.size() && stream.frames[number].isIntact &&
                        stream.frames[number].message == message;
    if (isSent) {
      torture.Expect(!arrived[number],
                     [&] { return "frame " + std::to_string(number) + " came twice"; });
      arrived[number] = true;
      ++figures.atOnce;
    } else {
      // Each stands for one reading.
      auto fit = std::ranges::find(chanceFits, message);
      if (fit == chanceFits.end()) fit = std::ranges::find(chanceFits, Message{message.address});
      if (fit == chanceFits.end()) {
        torture.Find("a reading that no right checksum stands for reached meter " +
                     std::to_string(message.address));
        continue;
      }
      chanceFits.erase(fit);
      ++figures.byChance;
    }
  }

  const std::vector<bool> claimed = ClaimedByFalseStarts(stream, arrived);
  for (std::size_t i = 0; i < stream.frames.size(); ++i) {
    const SentFrame& frame = stream.frames[i];
    if (!frame.isIntact) {
      ++figures.damaged;
      continue;
    }
    ++figures.intact;
    torture.Expect(arrived[i] || claimed[frame.start], [&] {
      return "intact frame " + std::to_string(i) + " is lost without a false start before it";
    });
  }
  const auto completed = static_cast<std::size_t>(run.Program().Frames().completed);
  figures.late = completed - deliveries.messages.size();
  figures.swallowed = figures.intact - std::min(figures.intact, figures.atOnce + figures.late);
  torture.Expect(run.Program().Errors().IsEmpty(), [] { return "an error was reported"; });
  return figures;
}

void Run(Torture& torture) {
  std::printf("%8s %8s %8s %8s %8s %8s %8s\n", "noise", "intact", "at once", "late", "lost",
              "damaged", "chance");
  for (const double rate : {0.01, 0.1, 0.5}) {
    for (int seed = 1; seed <= (torture.isLong ? 20 : 1); ++seed) {
      Random random(static_cast<std::uint64_t>(seed));
      const NoisyStream stream = MakeNoisyStream(torture.isLong ? 100'000 : 20'000, rate, random);
      const Figures f = Read(stream, random, torture);
      std::printf("%7.0f%% %8zu %8zu %8zu %8zu %8zu %8zu\n", rate * 100, f.intact, f.atOnce, f.late,
                  f.swallowed, f.damaged, f.byChance);
    }
  }
}

}  // namespace
}  // namespace wattlark

int main(int argc, char** argv) {
  return wattlark::RunTorture(argc, argv, wattlark::Run);
}
