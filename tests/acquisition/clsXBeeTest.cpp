#include <stdexcept>

#include "acquisition/clsXBee.h"
#include "twins/Frames.h"
#include "twins/HandClock.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

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
  const Bytes bytes = MeterFrame(0x7FFF, {700, 300, 512}, {498, 0, 1023}, {.options = 2});
  receiver.Read(Join({TwoSampleFrame(5), Slice(bytes, 0, 6)}));
  receiver.clock.Advance(1500);  // a frame's moment is that of its last byte
  EXPECT_TRUE(receiver.Read(Slice(bytes, 6, bytes.size())));
  const clsXBee& frame = receiver.decoder;
  EXPECT_TRUE(frame.FrameReceived());
  EXPECT_TRUE(frame.SampleDecoded());
  EXPECT_EQ(frame.ApiIdentifier(), 0x83);
  EXPECT_EQ(frame.SourceAddress(), 0x7FFF);
  EXPECT_EQ(frame.RSSI(), 40);
  EXPECT_FALSE(frame.OptionBit0());
  EXPECT_TRUE(frame.OptionBit1());
  EXPECT_EQ(frame.SampleCount(), 3);
  EXPECT_EQ(frame.FrameTime(), At("2026-11-16T20:10:01.500"));
  EXPECT_EQ(frame.FrameTicks(), 2500U);
  EXPECT_THAT(Channel(frame, 1), ElementsAre(700, 300, 512));
  EXPECT_THAT(Channel(frame, 5), ElementsAre(498, 0, 1023));
  for (const int channel : {2, 3, 4, 6}) EXPECT_THAT(Channel(frame, channel), Each(-1));
}

TEST(clsXBee, RefusesSamplesAndChannelsThatDoNotExist) {
  Receiver receiver;
  receiver.Read(TwoSampleFrame(5));
  const clsXBee& frame = receiver.decoder;
  std::vector<std::int16_t> readings(2);
  for (const bool above : {false, true}) {
    EXPECT_THROW(frame.AnalogSample(above ? 3 : 0, 1), std::out_of_range) << above;
    EXPECT_THROW(frame.AnalogSample(1, above ? 7 : 0), std::out_of_range) << above;
    EXPECT_THROW(frame.CopyChannel(above ? 7 : 0, readings), std::out_of_range) << above;
    EXPECT_THROW(frame.DigitalSample(1, above ? 10 : 0), std::out_of_range) << above;
  }
}

TEST(clsXBee, ReadsSampleTablesOfEveryMask) {
  // The words of two samples; for each, six channels and the bits of the lines: 1 if not enabled.
  using Case = std::tuple<std::uint16_t, std::vector<std::uint16_t>, std::vector<int>>;
  for (const auto& [mask, words, expected] :
       {Case{0x0200, {11, 21}, {11, -1, -1, -1, -1, -1, 0x1FF, 21, -1, -1, -1, -1, -1, 0x1FF}},
        Case{0x7E00,
             {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12},
             {1, 2, 3, 4, 5, 6, 0x1FF, 7, 8, 9, 10, 11, 12, 0x1FF}},
        Case{0x01FF, {0x101, 0x7E00}, {-1, -1, -1, -1, -1, -1, 0x101, -1, -1, -1, -1, -1, -1, 0}},
        Case{0x4405,
             {4, 50, 60, 1, 51, 61},
             {-1, 50, -1, -1, -1, 60, 0x1FE, -1, 51, -1, -1, -1, 61, 0x1FB}},
        Case{0, {}, {-1, -1, -1, -1, -1, -1, 0x1FF, -1, -1, -1, -1, -1, -1, 0x1FF}}}) {
    Receiver receiver;
    receiver.Read(SampleFrame(5, 2, words, {.mask = mask}));
    EXPECT_TRUE(receiver.decoder.SampleDecoded());
    std::vector<int> read;
    for (int s = 1; s <= 2; ++s) {
      for (int i = 1; i <= 6; ++i) read.push_back(receiver.decoder.AnalogSample(s, i));
      int lines = 0;
      for (int i = 1; i <= 9; ++i) lines |= receiver.decoder.DigitalSample(s, i) << (i - 1);
      read.push_back(lines);
    }
    EXPECT_EQ(read, expected) << mask;
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
    // As the last of a read, they hide what is before them.
    EXPECT_TRUE(receiver.Read(Join({TwoSampleFrame(5), WrapFrame(data)})));
    EXPECT_TRUE(receiver.decoder.FrameReceived());
    EXPECT_FALSE(receiver.decoder.SampleDecoded());
    EXPECT_EQ(receiver.decoder.ApiIdentifier(), data.empty() ? 0xFF : data[0]);
  }
  EXPECT_EQ(receiver.Completed(), 6U);
  EXPECT_TRUE(receiver.Read({}));
  EXPECT_FALSE(receiver.decoder.FrameReceived());
}

// How frames are found in a stream of bytes: besides, as a plain decoder finds them on a noisy line
// (the torture of noise).

TEST(clsXBeeStream, LosesNoIntactFrameBehindOneThatWasCutShort) {
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
  EXPECT_FALSE(receiver.Read({0x7E, 0x7F, 0xFC})) << "none is longer";
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
