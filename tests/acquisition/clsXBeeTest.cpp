#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <stdexcept>

#include "acquisition/clsXBee.h"
#include "twins/Frames.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

using testing::Each;
using testing::ElementsAre;

/// A decoder with a clock of its own.
struct Receiver {
  HandClock clock;
  clsXBee decoder{clock};

  bool Read(const Bytes& bytes) { return decoder.ParseBytes(bytes); }
  void ReadEachByte(const Bytes& bytes) {
    for (const std::uint8_t byte : bytes) Read({byte});
  }
  std::uint64_t Completed() const { return decoder.CompletedFrames(); }
  std::uint64_t Decoded() const { return decoder.DecodedFrames(); }
  std::uint64_t Dropped() const { return decoder.DroppedFrames(); }
};

/// Two samples, no byte of which is a delimiter.
Bytes TwoSampleFrame(std::uint16_t address) {
  return MeterFrame(address, {700, 300}, {498, 529});
}

Bytes Repeated(const Bytes& part, std::size_t times) {
  Bytes whole;
  for (std::size_t i = 0; i < times; ++i) whole.insert(whole.end(), part.begin(), part.end());
  return whole;
}

Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t to) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
          bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

std::vector<int> Channel(const clsXBee& decoder, int channel) {
  std::vector<int> readings;
  for (int s = 1; s <= decoder.SampleCount(); ++s) {
    readings.push_back(decoder.AnalogSample(s, channel));
  }
  std::vector<std::int16_t> copied(readings.size(), 9999);
  decoder.CopyChannel(channel, copied);
  EXPECT_THAT(copied, testing::ElementsAreArray(readings));
  return readings;
}

TEST(clsXBee, DecodesEveryField) {
  Receiver receiver;
  receiver.clock.now = At("2026-11-16T20:10:00.250");
  receiver.clock.ticks = 4711;
  EXPECT_TRUE(receiver.Read(MeterFrame(0x7FFF, {700, 300, 512}, {498, 0, 1023}, {.options = 2})));
  const clsXBee& frame = receiver.decoder;
  EXPECT_TRUE(frame.FrameReceived());
  EXPECT_TRUE(frame.SampleDecoded());
  EXPECT_EQ(frame.ApiIdentifier(), 0x83);
  EXPECT_EQ(frame.SourceAddress(), 0x7FFF);
  EXPECT_EQ(frame.RSSI(), 40);
  EXPECT_FALSE(frame.OptionBit0());
  EXPECT_TRUE(frame.OptionBit1());
  EXPECT_EQ(frame.SampleCount(), 3);
  EXPECT_EQ(frame.FrameTime(), At("2026-11-16T20:10:00.250"));
  EXPECT_EQ(frame.FrameTicks(), 4711U);
  EXPECT_THAT(Channel(frame, 1), ElementsAre(700, 300, 512));
  EXPECT_THAT(Channel(frame, 5), ElementsAre(498, 0, 1023));
  for (const int channel : {2, 3, 4, 6}) EXPECT_THAT(Channel(frame, channel), Each(-1));
}

TEST(clsXBee, RefusesSamplesAndChannelsThatDoNotExist) {
  Receiver receiver;
  receiver.Read(TwoSampleFrame(5));
  std::vector<std::int16_t> readings(2);
  for (const int wrong : {0, 10}) {
    EXPECT_THROW(receiver.decoder.DigitalSample(1, wrong), std::out_of_range) << wrong;
    EXPECT_THROW(receiver.decoder.CopyChannel(wrong, readings), std::out_of_range) << wrong;
  }
  for (const int sample : {0, 3}) {
    EXPECT_THROW(receiver.decoder.AnalogSample(sample, 1), std::out_of_range) << sample;
  }
  for (const int channel : {0, 7}) {
    EXPECT_THROW(receiver.decoder.AnalogSample(1, channel), std::out_of_range) << channel;
  }
}

TEST(clsXBee, ReadsSampleTablesOfEveryMask) {
  struct Case {
    std::uint16_t mask;
    std::vector<std::uint16_t> words;  // of two samples
    std::array<std::array<int, 6>, 2> analog;
    std::array<std::uint16_t, 2> digital;  // a line that is not enabled reads true
  };
  const Case cases[] = {
      {0x0200, {11, 21}, {{{11, -1, -1, -1, -1, -1}, {21, -1, -1, -1, -1, -1}}}, {0x1FF, 0x1FF}},
      {0x7E00,
       {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12},
       {{{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}}},
       {0x1FF, 0x1FF}},
      {0x01FF,
       {0x0101, 0x7E00},
       {{{-1, -1, -1, -1, -1, -1}, {-1, -1, -1, -1, -1, -1}}},
       {0x101, 0}},
      {0x4405,
       {0x0004, 50, 60, 0x0001, 51, 61},
       {{{-1, 50, -1, -1, -1, 60}, {-1, 51, -1, -1, -1, 61}}},
       {0x1FE, 0x1FB}},
      {0x0000, {}, {{{-1, -1, -1, -1, -1, -1}, {-1, -1, -1, -1, -1, -1}}}, {0x1FF, 0x1FF}}};
  Receiver receiver;
  for (const Case& test : cases) {
    SCOPED_TRACE(test.mask);
    receiver.Read(SampleFrame(5, 2, test.words, {.mask = test.mask}));
    EXPECT_TRUE(receiver.decoder.SampleDecoded());
    for (int s = 1; s <= 2; ++s) {
      const auto row = static_cast<std::size_t>(s - 1);
      std::array<int, 6> analog{};
      for (int i = 1; i <= 6; ++i) {
        analog[static_cast<std::size_t>(i - 1)] = receiver.decoder.AnalogSample(s, i);
      }
      EXPECT_EQ(analog, test.analog[row]);
      int digital = 0;
      for (int i = 1; i <= 9; ++i) digital |= receiver.decoder.DigitalSample(s, i) << (i - 1);
      EXPECT_EQ(digital, test.digital[row]);
    }
  }
}

TEST(clsXBee, FailsDecodingOfWhatASignedFieldCannotHold) {
  // A digital word and two readings, twice.
  const std::vector<std::uint16_t> words{0, 1, 2, 3, 4, 5};
  FrameOptions options{.mask = 0x2201};
  Receiver receiver;
  const auto decodes = [&receiver](const Bytes& frame) {
    receiver.Read(frame);
    EXPECT_TRUE(receiver.decoder.FrameReceived());
    return receiver.decoder.SampleDecoded();
  };
  EXPECT_TRUE(decodes(SampleFrame(0x7FFF, 2, words, options)));
  EXPECT_FALSE(decodes(SampleFrame(0x8000, 2, words, options)));
  EXPECT_FALSE(decodes(SampleFrame(0xFFFF, 2, words, options)));
  for (std::size_t i = 0; i < words.size(); ++i) {
    auto changed = words;
    changed[i] = 0x7FFF;
    EXPECT_TRUE(decodes(SampleFrame(5, 2, changed, options))) << i;
    changed[i] = 0x8000;
    EXPECT_FALSE(decodes(SampleFrame(5, 2, changed, options))) << i;
  }
  options.mask |= 0x8000;
  EXPECT_FALSE(decodes(SampleFrame(5, 2, words, options)));
}

TEST(clsXBee, FailsDecodingOfFramesTooShortForWhatTheyAnnounce) {
  const Bytes whole = TwoSampleFrame(5);
  const Bytes data = Slice(whole, 3, whole.size() - 1);
  Receiver receiver;
  for (std::size_t size = 1; size < data.size(); ++size) {
    // The missing byte must not be taken from the checksum, which follows where it would stand.
    receiver.Read(WrapFrame(Slice(data, 0, size)));
    EXPECT_TRUE(receiver.decoder.FrameReceived()) << size;
    EXPECT_FALSE(receiver.decoder.SampleDecoded()) << size;
  }
  receiver.Read(WrapFrame(Join({data, {1, 2, 3}})));
  EXPECT_TRUE(receiver.decoder.SampleDecoded());
  receiver.Read(SampleFrame(5, 0, {}));
  EXPECT_TRUE(receiver.decoder.SampleDecoded());
  EXPECT_TRUE(Channel(receiver.decoder, 1).empty());
  EXPECT_EQ(receiver.Completed(), data.size() + 1);
  EXPECT_EQ(receiver.Decoded(), 2U);
}

TEST(clsXBee, CompletesFramesOfOtherKindsWithoutDecodingThem) {
  Receiver receiver;
  for (const Bytes& data : {Bytes{0x88, 1, 2}, Bytes{0x82}, Bytes{}}) {
    EXPECT_TRUE(receiver.Read(WrapFrame(data)));
    EXPECT_TRUE(receiver.decoder.FrameReceived());
    EXPECT_FALSE(receiver.decoder.SampleDecoded());
    EXPECT_EQ(receiver.decoder.ApiIdentifier(), data.empty() ? 0xFF : data[0]);
  }
  EXPECT_EQ(receiver.Completed(), 3U);
  EXPECT_TRUE(receiver.Read({}));
  EXPECT_FALSE(receiver.decoder.FrameReceived());
}

// How frames are found in a stream of bytes.

// Garbage, a delimiter inside a frame, damage, a frame inside a damaged one and one behind it.
const Bytes& TrickyStream() {
  static const Bytes stream = Join({{1, 2, 0xFF},
                                    TwoSampleFrame(0x7E),
                                    MeterFrame(6, {0x7E, 0x017E}, {0x7E7E, 498}),
                                    MeterFrame(7, {700, 300}, {498, 529}, {.wrongChecksum = true}),
                                    {0x7E, 0x00, 0x30},
                                    TwoSampleFrame(8),
                                    TwoSampleFrame(9),
                                    TwoSampleFrame(10),
                                    {0x7E, 0x00, 0x00, 0x00},
                                    {0x44, 0x7E, 0x00, 0x02},
                                    TwoSampleFrame(11),
                                    Repeated(TwoSampleFrame(12), 3)});
  return stream;
}

TEST(clsXBeeStream, DecodesTheSameHoweverAStreamIsSplit) {
  Receiver whole;
  whole.Read(TrickyStream());
  EXPECT_EQ(whole.Completed(), 9U);
  for (std::size_t split = 0; split <= TrickyStream().size(); ++split) {
    Receiver other;
    other.Read(Slice(TrickyStream(), 0, split));
    other.Read(Slice(TrickyStream(), split, TrickyStream().size()));
    EXPECT_EQ(other.Completed(), whole.Completed()) << split;
    EXPECT_EQ(other.Decoded(), whole.Decoded()) << split;
    EXPECT_EQ(other.Dropped(), whole.Dropped()) << split;
    EXPECT_EQ(other.decoder.SourceAddress(), 12) << split;
    EXPECT_EQ(other.decoder.AnalogSample(2, 5), 529) << split;
  }
}

TEST(clsXBeeStream, KeepsTheLastFrameOfARead) {
  Receiver receiver;
  EXPECT_TRUE(receiver.Read(Join({TwoSampleFrame(5), {9, 9}, TwoSampleFrame(6)})));
  EXPECT_EQ(receiver.Decoded(), 2U);
  EXPECT_EQ(receiver.decoder.SourceAddress(), 6);
  // A last frame that is none of samples hides the one before it.
  receiver.Read(Join({TwoSampleFrame(5), WrapFrame({0x88, 0})}));
  EXPECT_FALSE(receiver.decoder.SampleDecoded());
}

TEST(clsXBeeStream, StampsAFrameWithTheMomentItWasCompleted) {
  Receiver receiver;
  const Bytes frame = TwoSampleFrame(5);
  receiver.Read(Slice(frame, 0, 6));
  receiver.clock.Advance(1500);
  receiver.Read(Slice(frame, 6, frame.size()));
  EXPECT_EQ(receiver.decoder.FrameTime(), At("2026-11-16T20:10:01.500"));
  EXPECT_EQ(receiver.decoder.FrameTicks(), 2500U);
}

TEST(clsXBeeStream, LosesNoIntactFrameBehindOneThatWasCutShortOrDamaged) {
  // A cut within the length field makes a length of up to 0x7E00 of what follows.
  const Bytes intact = Repeated(TwoSampleFrame(6), 1700);
  for (std::size_t size = 0; size < TwoSampleFrame(5).size(); ++size) {
    const Bytes stream = Join({Slice(TwoSampleFrame(5), 0, size), intact});
    Receiver atOnce;
    atOnce.Read(stream);
    EXPECT_EQ(atOnce.Decoded(), 1700U) << size;
    EXPECT_EQ(atOnce.decoder.SourceAddress(), 6) << size;
    Receiver bytewise;
    bytewise.ReadEachByte(stream);
    EXPECT_EQ(bytewise.Decoded(), 1700U) << size;
    // The high byte of the length is tested below: it can reach far ahead, or end the read.
    for (const int flip : {0x01, 0x10, 0x40}) {
      if (size == 1) continue;
      Bytes damaged = Join({TwoSampleFrame(5), Repeated(TwoSampleFrame(6), 10)});
      damaged[size] = static_cast<std::uint8_t>(damaged[size] ^ flip);
      Receiver receiver;
      receiver.Read(damaged);
      EXPECT_EQ(receiver.Decoded(), 10U) << size << ' ' << flip;
    }
  }
}

TEST(clsXBeeStream, FindsTheFramesInsideALengthThatLied) {
  // Within what a false start claims: one that ends in there, one of a length that overflows, one
  // that reaches beyond the claim, and frames.
  const Bytes inside = Join({{0x7E, 0x00, 0x01, 0x55, 0x55},
                             {0x7E, 0x90, 0x11},
                             TwoSampleFrame(6),
                             {0x7E, 0x00, 0x60},
                             TwoSampleFrame(7)});
  const auto length = static_cast<std::uint8_t>(inside.size());
  for (const std::size_t size : {std::size_t{1}, std::size_t{1000}}) {
    Receiver receiver;
    const Bytes stream =
        Join({{0x7E, 0x00, length}, inside, {0x00}, Repeated(TwoSampleFrame(8), 5)});
    for (std::size_t at = 0; at < stream.size(); at += size) {
      receiver.Read(Slice(stream, at, std::min(stream.size(), at + size)));
    }
    EXPECT_EQ(receiver.Decoded(), 7U) << size;
  }
}

TEST(clsXBeeStream, DoesNotWaitForALengthThatNoSampleFrameHas) {
  for (const int length : {0x0DFB, 0x4000, 0x7FFB}) {
    const Bytes stray{0x7E, static_cast<std::uint8_t>(length >> 8),
                      static_cast<std::uint8_t>(length & 0xFF)};
    Receiver receiver;
    receiver.ReadEachByte(stray);
    receiver.Read(TwoSampleFrame(6));
    EXPECT_EQ(receiver.Decoded(), 1U) << length;
  }
  // 255 samples of all lines are 3578 bytes: within those, bytes are data.
  Receiver receiver;
  receiver.Read({0x7E, 0x0D, 0xFA});
  receiver.Read(TwoSampleFrame(6));
  EXPECT_EQ(receiver.Decoded(), 0U);
}

TEST(clsXBeeStream, TakesTheLongestFrame) {
  Bytes data(0x7FFB, 0x7E);
  data[0] = 0x88;
  Receiver receiver;
  EXPECT_TRUE(receiver.Read(WrapFrame(data)));
  EXPECT_EQ(receiver.Completed(), 1U);
  receiver.ReadEachByte(WrapFrame(data));
  EXPECT_EQ(receiver.Completed(), 2U);
  // Whole at last, it counts though a length behind it overflows.
  const Bytes frame = WrapFrame(Bytes(0x1000, 0x11));
  receiver.Read(Slice(frame, 0, 100));
  EXPECT_TRUE(receiver.Read(Join({Slice(frame, 100, frame.size()), {0x7E, 0x90}})));
  EXPECT_EQ(receiver.Completed(), 3U);
}

TEST(clsXBeeStream, DropsTheRestOfAReadWhoseLengthOverflows) {
  for (const Bytes& start : {Bytes{0x7E, 0x7F, 0xFC}, Bytes{0x7E, 0x7F, 0xFF}, Bytes{0x7E, 0x80},
                             Bytes{0x7E, 0x80, 0x00}, Bytes{0x7E, 0xFF, 0xFF}}) {
    SCOPED_TRACE(testing::PrintToString(start));
    Receiver receiver;
    EXPECT_FALSE(receiver.Read(Join({start, TwoSampleFrame(5)})));
    EXPECT_FALSE(receiver.decoder.FrameReceived());
    // Only the rest of that read is lost, and a frame that was complete before it is not.
    EXPECT_TRUE(receiver.Read(Join({TwoSampleFrame(6), start, TwoSampleFrame(5)})));
    EXPECT_TRUE(receiver.decoder.FrameReceived());
    EXPECT_EQ(receiver.decoder.SourceAddress(), 6);
    EXPECT_TRUE(receiver.Read({0x7E}));
    EXPECT_FALSE(receiver.Read(Join({Slice(start, 1, start.size()), TwoSampleFrame(5)})));
    EXPECT_TRUE(receiver.Read(TwoSampleFrame(7)));
    EXPECT_EQ(receiver.Completed(), 2U);
    EXPECT_EQ(receiver.Dropped(), 0U);
  }
}

// The rules of the stream in their plainest form: everything is kept, every sum is taken anew.
struct ReferenceDecoder {
  Bytes bytes;
  std::size_t position = 0, failedEnd = 0, claimedEnd = 0;
  // End and start, found in damaged bytes.
  std::vector<std::pair<std::size_t, std::size_t>> waiting;
  std::vector<Bytes> frames;
  std::uint64_t dropped = 0;

  void Take(std::size_t start, std::size_t end) {
    const Bytes frame = Slice(bytes, start + 3, end);
    if (std::accumulate(frame.begin(), frame.end(), 0U) % 256 != 255) {
      ++dropped;
      failedEnd = std::max(failedEnd, end);
      position = std::max(position, start + 1);
      return;
    }
    frames.push_back(frame);
    std::erase_if(waiting, [end](const auto& other) { return other.second < end; });
    position = std::max(position, end);
  }

  bool TakeFirstWaiting(std::size_t limit) {
    const auto first = std::min_element(waiting.begin(), waiting.end());
    if (first == waiting.end() || first->first > limit) return false;
    const auto [end, start] = *first;
    waiting.erase(first);
    Take(start, end);
    return true;
  }

  bool Read(const Bytes& read) {
    bytes.insert(bytes.end(), read.begin(), read.end());
    const std::size_t framesBefore = frames.size();
    while (true) {
      while (position < bytes.size() && bytes[position] != 0x7E) ++position;
      const std::size_t left = bytes.size() - position;
      const bool lengthKnown = left >= 3;
      const bool searched = position < failedEnd || (!waiting.empty() && position < claimedEnd);
      const std::size_t length =
          lengthKnown ? bytes[position + 1] * 256U + bytes[position + 2] : 0U;
      const std::size_t end = position + length + 4;
      if ((left >= 2 && bytes[position + 1] >= 0x80) || length > 0x7FFB) {
        if (searched) {
          ++position;
        } else if (!TakeFirstWaiting(position + 1)) {
          waiting.clear();
          position = bytes.size();
          return frames.size() > framesBefore;
        }
      } else if (lengthKnown && end <= bytes.size()) {
        if (!TakeFirstWaiting(end)) Take(position, end);
      } else if (lengthKnown && (searched || length > 3578)) {
        if (waiting.empty()) claimedEnd = 0;
        if (!searched) claimedEnd = end;
        waiting.emplace_back(end, position);
        ++position;
      } else if (!TakeFirstWaiting(bytes.size())) {
        return true;
      }
    }
  }
};

TEST(clsXBeeStream, AgreesWithAPlainDecoderOnRandomStreams) {
  std::mt19937 random(20261116);
  const auto below = [&random](unsigned n) { return static_cast<std::size_t>(random() % n); };
  std::uint64_t completed = 0;
  std::uint64_t dropped = 0;
  for (int round = 0; round < 400; ++round) {
    Bytes stream;
    for (int piece = 0; piece < 40; ++piece) {
      Bytes part = TwoSampleFrame(static_cast<std::uint16_t>(random() & 0x7FFF));
      const std::size_t kind = below(6);
      if (kind == 0) part.resize(below(static_cast<unsigned>(part.size())));
      if (kind == 1)
        part[below(static_cast<unsigned>(part.size()))] ^= Bytes{1, 8, 64, 128}[below(4)];
      if (kind == 2) {
        part.resize(below(30));
        for (auto& byte : part) byte = Bytes{0x7E, 0, 1, 0x83, 0xFF, 0x7F, 0xFB, 0xFC}[below(8)];
      }
      stream = Join({stream, part});
    }
    Receiver receiver;
    ReferenceDecoder reference;
    for (std::size_t from = 0; from < stream.size();) {
      const std::size_t to = std::min(stream.size(), from + 1 + below(round % 2 == 0 ? 4 : 400));
      const Bytes read = Slice(stream, from, to);
      const std::size_t framesBefore = reference.frames.size();
      ASSERT_EQ(receiver.Read(read), reference.Read(read)) << round << ' ' << from;
      ASSERT_EQ(receiver.Completed(), reference.frames.size()) << round << ' ' << from;
      ASSERT_EQ(receiver.decoder.FrameReceived(), reference.frames.size() > framesBefore);
      ASSERT_EQ(receiver.Dropped(), reference.dropped) << round << ' ' << from;
      if (receiver.decoder.SampleDecoded()) {
        const Bytes& last = reference.frames.back();
        ASSERT_EQ(receiver.decoder.SourceAddress(), last[1] * 256 + last[2]);
      }
      from = to;
    }
    completed += receiver.Completed();
    dropped += receiver.Dropped();
  }
  EXPECT_GT(completed, 1000U);
  EXPECT_GT(dropped, 1000U);
}

// Work that grew with the square of the input, or with a false frame's length for every byte of it,
// would not end within the time limit of a test.
TEST(clsXBeeStream, DoesBoundedWorkForAnyInput) {
  constexpr std::size_t kBytes = 1 << 19;
  const Bytes patterns[] = {
      {0x7E},       {0x7E, 0x7F, 0xFB}, {0x7E, 0x7F},
      {0x7E, 0x00}, {0x7E, 0x00, 0x00}, {0x7E, 0x40, 0x00, 0x7E, 0x7F, 0x00, 0x7E, 0xFF}};
  for (const Bytes& pattern : patterns) {
    SCOPED_TRACE(testing::PrintToString(pattern));
    const Bytes input = Repeated(pattern, kBytes / pattern.size());
    for (const bool isBytewise : {false, true}) {
      Receiver receiver;
      isBytewise ? receiver.ReadEachByte(input) : static_cast<void>(receiver.Read(input));
      // Still alive: once the longest frame that may be pending is over, frames come through.
      receiver.Read(Repeated(TwoSampleFrame(5), 4000));
      receiver.Read(TwoSampleFrame(6));
      EXPECT_EQ(receiver.decoder.SourceAddress(), 6);
    }
  }
}

}  // namespace
}  // namespace wattlark
