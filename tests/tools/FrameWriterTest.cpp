#include <gtest/gtest.h>

#include <algorithm>

#include "DecodedFrame.h"
#include "sim/FrameWriter.h"

namespace wattlark {
namespace {

TEST(FrameWriter, LaysOutTheFrameByteByByte) {
  Burst burst;
  burst.address = 0x1234;
  burst.rssi = 0x28;
  for (Sample& sample : burst.samples) sample = {0x0200, 0x01F2};
  burst.samples[0] = {0x03FF, 0x0000};

  const Bytes frame = EncodeFrame(burst);

  ASSERT_EQ(frame.size(), 88U);
  const Bytes head(frame.begin(), frame.begin() + 19);
  EXPECT_EQ(head, (Bytes{0x7E, 0x00, 0x54, 0x83, 0x12, 0x34, 0x28, 0x00, 0x13, 0x22, 0x00, 0x03,
                         0xFF, 0x00, 0x00, 0x02, 0x00, 0x01, 0xF2}));
  // 0x83+0x12+0x34+0x28+0x13+0x22 = 0x126, 0x03+0xFF = 0x102, 18 * (0x02+0x01+0xF2) = 0x113A;
  // together 0x1362, and 0xFF - 0x62 = 0x9D.
  EXPECT_EQ(frame.back(), 0x9D);
}

TEST(FrameWriter, GarbageHoldsEveryByteButTheDelimiter) {
  Random random(1);
  std::vector<int> seen(256);
  for (int i = 0; i < 2000; ++i) {
    const Bytes garbage = MakeGarbage(random);
    EXPECT_TRUE(!garbage.empty() && garbage.size() <= 32U) << garbage.size();
    for (const std::uint8_t byte : garbage) ++seen[byte];
  }
  EXPECT_EQ(seen[0x7E], 0);
  EXPECT_EQ(std::count(seen.begin(), seen.end(), 0), 1);
}

}  // namespace
}  // namespace wattlark
