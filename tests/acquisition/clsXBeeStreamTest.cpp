// How frames are found in a stream of bytes.

#include <gtest/gtest.h>

#include "acquisition/Receiver.h"

namespace wattlark {
namespace {

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
  const std::size_t frameSize = TwoSampleFrame(6).size();
  for (const int length : {0x0011, 0x0123, 0x1000, 0x7FFB}) {
    const std::size_t frames = static_cast<std::size_t>(length) / frameSize + 2;
    const Bytes stream = Join(
        {{0x7E, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length & 0xFF)},
         Repeated(TwoSampleFrame(6), frames)});
    Receiver receiver;
    receiver.Read(stream);
    EXPECT_EQ(receiver.Decoded(), frames) << length;
    EXPECT_EQ(receiver.Dropped(), 1U) << length;
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
