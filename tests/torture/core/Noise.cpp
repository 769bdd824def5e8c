// Frames on a disturbed line, read by the program: a reading is the last one that a plain decoder
// finds in the same bytes, and an intact frame is lost behind a false start only.

#include <cmath>
#include <map>
#include <optional>
#include <set>

#include "sim/Random.h"
#include "torture/Torture.h"
#include "torture/core/CoreRun.h"
#include "torture/core/ReferenceDecoder.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

constexpr std::size_t kSamples = 19;

/// One frame as sent.
struct SentFrame {
  std::size_t start = 0;  ///< in the stream
  bool isIntact = true;   ///< every byte of it arrived, in a row
};

/// Frames of some meters on a disturbed line, and what became of each.
struct NoisyStream {
  Bytes bytes;
  std::vector<SentFrame> frames;
  /// Of frames that kept their length: the checksum that a decoder without a check would take.
  std::map<std::size_t, std::uint8_t> rightSums;
};

constexpr std::uint16_t kMeters = 20;

/// `rate` is the share of frames that a disturbance of some kind meets. Hostile noise looks like
/// beginnings of frames.
NoisyStream MakeNoisyStream(std::size_t count, double rate, bool isHostile, Random& random) {
  constexpr std::uint8_t kHostile[] = {0x7E, 0, 1, 0x80, 0xFF, 0x7F, 0xFB, 0xFC};
  NoisyStream stream;
  stream.bytes.reserve(count * 96);
  const auto noise = [&] {
    return isHostile ? kHostile[random.Below(8)] : static_cast<std::uint8_t>(random.Below(256));
  };
  for (std::size_t number = 0; number < count; ++number) {
    std::vector<std::uint16_t> volts;
    std::vector<std::uint16_t> amps;
    for (std::size_t s = 0; s < kSamples; ++s) {
      volts.push_back(static_cast<std::uint16_t>(300 + random.Below(400)));
      amps.push_back(static_cast<std::uint16_t>(random.Below(1024)));
    }
    Bytes frame = MeterFrame(static_cast<std::uint16_t>(1 + number % kMeters), volts, amps);
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
          for (std::uint32_t n = 1 + random.Below(32); n > 0; --n) stream.bytes.push_back(noise());
          break;
        default: {  // a beginning that ends: the sender was interrupted and starts again
          const auto end = frame.begin() + somewhere();
          stream.bytes.insert(stream.bytes.end(), frame.begin(), end);
          break;
        }
      }
    }
    stream.frames.push_back({stream.bytes.size(), frame == sent});
    stream.bytes.insert(stream.bytes.end(), frame.begin(), frame.end());
    if (frame.size() == sent.size() && std::equal(sent.begin(), sent.begin() + 3, frame.begin())) {
      stream.rightSums[stream.bytes.size() - 1] =
          WrapFrame({frame.begin() + 3, frame.end() - 1}).back();
    }
  }
  return stream;
}

constexpr std::size_t kPrefix = 3;
constexpr std::size_t kFrameSize = kPrefix + 8 + 4 * kSamples + 1;

unsigned Word(const Bytes& bytes, std::size_t at) {
  return bytes[at] * 256U + bytes[at + 1];
}

/// What a frame of a meter says: its address and the readings of lines A0 and A4 in turn. Nothing
/// for one of another form, which damage has made and its checksum fits by chance.
std::optional<std::vector<int>> Reading(const Bytes& frame) {
  const bool isOfMeter = frame.size() == 8 + 4 * kSamples + 1 && frame[0] == 0x83 &&
                         Word(frame, 1) >= 1 && Word(frame, 1) <= kMeters && frame[5] == kSamples &&
                         Word(frame, 6) == 0x2200;
  if (!isOfMeter) return std::nullopt;
  std::vector<int> reading{static_cast<int>(Word(frame, 1))};
  for (std::size_t i = 0; i < 2 * kSamples; ++i) {
    reading.push_back(static_cast<std::int16_t>(Word(frame, 8 + 2 * i)));
  }
  return reading;
}

/// Takes readings back to what their frames must have said, through the default calibration.
class Deliveries : public MonitorListener {
 public:
  std::vector<std::vector<int>> readings;

  void OnReading(const clsKillAWatt& meter, DateTime) override {
    std::vector<int> reading{meter.XBeeAddress()};
    meter.GetSamples(volts_, amps_);
    for (std::size_t s = 0; s < volts_.size(); ++s) {
      reading.push_back(static_cast<int>(std::lround(volts_[s] * 200 / 120)) +
                        meter.VoltageOffset());
      reading.push_back(static_cast<int>(std::lround(amps_[s] * 15.5)) + 498);
    }
    readings.push_back(reading);
  }

 private:
  std::vector<double> volts_;
  std::vector<double> amps_;
};

/// Marks every byte that a delimiter outside the frames that arrived may have claimed.
std::vector<bool> ClaimedByFalseStarts(const NoisyStream& stream, const std::vector<bool>& arrived,
                                       std::uint32_t longestRead) {
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
    claimEnd = std::max(claimEnd, at + kPrefix + 1 + (length > 0x7FFB ? longestRead : length));
  }
  return claimed;
}

/// Counts what becomes of the frames, which are of this kind. Reads shorter than a frame hide none.
void Read(const NoisyStream& stream, const std::string& kind, std::uint32_t largestRead,
          Random& random, Torture& torture) {
  MemoryRegistry registry;
  Deliveries deliveries;
  HandClock clock;
  CoreRun run(registry, clock, 1 << 30, deliveries);
  run.AddMeters(kMeters);
  Bytes fed = stream.bytes;
  if (torture.isBroken) {
    for (const auto& [at, sum] : stream.rightSums) fed[at] = sum;
  }
  ReferenceDecoder reference;
  std::size_t readings = 0;
  for (std::size_t at = 0; at < fed.size();) {
    const std::size_t end = std::min(fed.size(), at + 1 + random.Below(largestRead));
    deliveries.readings.clear();
    run.Receive(Slice(fed, at, end));
    clock.Advance(1);
    const std::size_t before = reference.frames.size();
    reference.Read(Slice(stream.bytes, at, end));
    at = end;
    std::vector<std::vector<int>> expected;
    if (reference.frames.size() > before) {
      const auto reading = Reading(reference.frames.back());
      if (!reading) continue;
      if (std::ranges::min(*reading) >= 0) expected.push_back(*reading);  // no field is negative
    }
    readings += expected.size();
    torture.Expect(deliveries.readings == expected, [&] {
      const std::string what = expected.empty() ? "a reading that no right checksum stands for"
                                                : "another reading than that of the frame";
      return what + " reached meter " +
             (deliveries.readings.empty() ? "-" : std::to_string(deliveries.readings[0][0]));
    });
  }

  std::size_t intact = 0;
  std::size_t found = 0;
  std::vector<bool> arrived(stream.frames.size());
  const std::set<std::size_t> starts(reference.starts.begin(), reference.starts.end());
  for (std::size_t i = 0; i < stream.frames.size(); ++i) {
    if (!stream.frames[i].isIntact) continue;
    ++intact;
    arrived[i] = starts.contains(stream.frames[i].start);
    if (arrived[i]) ++found;
  }
  const std::vector<bool> claimed = ClaimedByFalseStarts(stream, arrived, largestRead);
  for (std::size_t i = 0; i < stream.frames.size(); ++i) {
    torture.Expect(
        !stream.frames[i].isIntact || arrived[i] || claimed[stream.frames[i].start], [&] {
          return "intact frame " + std::to_string(i) + " is lost without a false start before it";
        });
  }
  torture.Expect(run.Program().Frames().completed == starts.size() || torture.isBroken,
                 "not as many frames are found as by the plain decoder");
  torture.Count(kind + "intact", intact);
  torture.Count(kind + "at once", readings);
  // Behind a false start several are found in one read, or none.
  torture.Count(kind + "late", starts.size() - readings);
  torture.Count(kind + "lost", intact - found);
  torture.Count(kind + "damaged", stream.frames.size() - intact);
  torture.Count(kind + "damaged, but the checksum fits by chance", starts.size() - found);
  torture.Expect(run.Program().Errors().IsEmpty(), "an error was reported");
}

}  // namespace

void Run(Torture& torture) {
  const std::size_t count = torture.isLong ? 100'000 : 20'000;
  for (int seed = 1; seed <= (torture.isLong ? 20 : 1); ++seed) {
    for (const int percent : {1, 10, 50}) {
      Random random(static_cast<std::uint64_t>(seed));
      Read(MakeNoisyStream(count, percent / 100.0, false, random), std::to_string(percent) + " %, ",
           64, random, torture);
    }
    Random random(static_cast<std::uint64_t>(seed));
    Read(MakeNoisyStream(count, 0.5, true, random), "hostile, ", 400, random, torture);
  }
}

}  // namespace wattlark
