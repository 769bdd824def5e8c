// Frames on a disturbed line, read by the program: what was sent intact and is not behind a false
// start arrives, and nothing arrives that no frame with a right checksum says.

#include <array>

#include "sim/Random.h"
#include "torture/Torture.h"
#include "torture/core/CoreRun.h"
#include "twins/Frames.h"
#include "twins/MemoryRegistry.h"

namespace wattlark {
namespace {

constexpr std::size_t kSamples = 19;

/// What one frame says: the readings of lines A0 and A4, sample by sample.
struct Message {
  std::uint16_t address = 0;
  std::array<std::uint16_t, 2 * kSamples> words{};

  bool operator==(const Message&) const = default;
};

/// One frame as sent.
struct SentFrame {
  Message message;
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
      message.words[2 * s] = static_cast<std::uint16_t>(300 + random.Below(400));
      message.words[2 * s + 1] = static_cast<std::uint16_t>(random.Below(1024));
    }
    message.words[1] = static_cast<std::uint16_t>(number & 0x3FF);
    message.words[3] = static_cast<std::uint16_t>(number >> 10 & 0x3FF);
    Bytes frame =
        SampleFrame(message.address, kSamples, {message.words.begin(), message.words.end()});
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

/// What a frame that begins at `start` says, with a right checksum and from a meter. One of another
/// number of samples or other lines leaves its samples 0.
std::optional<Message> ReadMessage(const Bytes& stream, std::size_t start) {
  if (start + kPrefix > stream.size()) return std::nullopt;
  const std::size_t length = Word(stream, start + 1);
  if (length < 8 || start + kPrefix + length + 1 > stream.size()) return std::nullopt;
  const auto first = stream.begin() + static_cast<std::ptrdiff_t>(start + kPrefix);
  const Bytes data(first, first + static_cast<std::ptrdiff_t>(length));
  Message message{static_cast<std::uint16_t>(Word(data, 1))};
  const bool isOfMeter = message.address >= 1 && message.address <= kMeters;
  const std::uint8_t sum = stream[start + kPrefix + length];
  if (data[0] != 0x83 || !isOfMeter || WrapFrame(data).back() != sum) return std::nullopt;
  if (data[5] != kSamples || Word(data, 6) != 0x2200 || length < 8 + 4 * kSamples) return message;
  for (std::size_t i = 0; i < message.words.size(); ++i) {
    message.words[i] = static_cast<std::uint16_t>(Word(data, 8 + 2 * i));
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
      message.words[2 * s] =
          static_cast<std::uint16_t>(std::lround(volts_[s] * 200 / 120) + meter.VoltageOffset());
      message.words[2 * s + 1] = static_cast<std::uint16_t>(std::lround(amps_[s] * 15.5) + 498);
    }
    messages.push_back(message);
  }

 private:
  std::vector<double> volts_;
  std::vector<double> amps_;
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

/// Counts what becomes of the frames, `percent` of which a disturbance meets.
void Read(const NoisyStream& stream, const std::string& percent, Random& random, Torture& torture) {
  MemoryRegistry registry;
  Deliveries deliveries;
  HandClock clock;
  CoreRun run(registry, clock, 1 << 30, deliveries);
  run.AddMeters(kMeters);
  Bytes fed = stream.bytes;
  if (torture.isBroken) {
    for (const auto& [at, sum] : stream.rightSums) fed[at] = sum;
  }
  // Reads shorter than a frame, so that none hides another.
  for (std::size_t at = 0; at < fed.size();) {
    const std::size_t size = std::min<std::size_t>(fed.size() - at, 1 + random.Below(64));
    const auto first = fed.begin() + static_cast<std::ptrdiff_t>(at);
    run.Receive({first, first + static_cast<std::ptrdiff_t>(size)});
    clock.Advance(1);
    at += size;
  }

  std::size_t atOnce = 0;
  std::vector<Message> chanceFits;
  std::vector<bool> startsIntact(stream.bytes.size());
  for (const SentFrame& frame : stream.frames) startsIntact[frame.start] = frame.isIntact;
  for (std::size_t at = 0; at < stream.bytes.size(); ++at) {
    if (startsIntact[at] || stream.bytes[at] != 0x7E) continue;
    if (const auto message = ReadMessage(stream.bytes, at)) chanceFits.push_back(*message);
  }

  std::vector<bool> arrived(stream.frames.size());
  for (const Message& message : deliveries.messages) {
    const std::size_t number = message.words[1] + message.words[3] * std::size_t{1024};
    const bool isSent = number < stream.frames.size() && stream.frames[number].isIntact &&
                        stream.frames[number].message == message;
    if (isSent) {
      torture.Expect(!arrived[number],
                     [&] { return "frame " + std::to_string(number) + " came twice"; });
      arrived[number] = true;
      ++atOnce;
      continue;
    }
    // Each stands for one reading.
    auto fit = std::ranges::find(chanceFits, message);
    if (fit == chanceFits.end()) fit = std::ranges::find(chanceFits, Message{message.address});
    if (fit == chanceFits.end()) {
      torture.Find("a reading that no right checksum stands for reached meter " +
                   std::to_string(message.address));
      continue;
    }
    chanceFits.erase(fit);
    torture.Count(percent + "damaged, but the checksum fits by chance");
  }

  std::size_t intact = 0;
  const std::vector<bool> claimed = ClaimedByFalseStarts(stream, arrived);
  for (std::size_t i = 0; i < stream.frames.size(); ++i) {
    const SentFrame& frame = stream.frames[i];
    if (!frame.isIntact) continue;
    ++intact;
    torture.Expect(arrived[i] || claimed[frame.start], [&] {
      return "intact frame " + std::to_string(i) + " is lost without a false start before it";
    });
  }
  // Behind a false start several are found in one read, or none.
  const auto completed = static_cast<std::size_t>(run.Program().Frames().completed);
  const std::size_t late = completed - deliveries.messages.size();
  torture.Count(percent + "intact", intact);
  torture.Count(percent + "at once", atOnce);
  torture.Count(percent + "late", late);
  torture.Count(percent + "lost", intact - std::min(intact, atOnce + late));
  torture.Count(percent + "damaged", stream.frames.size() - intact);
  torture.Expect(run.Program().Errors().IsEmpty(), "an error was reported");
}

}  // namespace

void Run(Torture& torture) {
  for (const int percent : {1, 10, 50}) {
    for (int seed = 1; seed <= (torture.isLong ? 20 : 1); ++seed) {
      Random random(static_cast<std::uint64_t>(seed));
      const NoisyStream stream =
          MakeNoisyStream(torture.isLong ? 100'000 : 20'000, percent / 100.0, random);
      Read(stream, std::to_string(percent) + " %, ", random, torture);
    }
  }
}

}  // namespace wattlark
