#include <gmock/gmock.h>

#include <stdexcept>

#include "acquisition/Receiver.h"
#include "acquisition/clsXBee.h"

namespace wattlark {
namespace {

using testing::Each;
using testing::ElementsAre;

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
  EXPECT_THROW(receiver.decoder.AnalogSample(1, 7), std::out_of_range);
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

}  // namespace
}  // namespace wattlark
