#include <gmock/gmock.h>

#include "acquisition/HeardMeters.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

using testing::ElementsAre;

TEST(HeardMetersTest, CountsFramesByAddress) {
  const DateTime first = At("2026-11-16T20:10:00");
  const DateTime second = At("2026-11-16T20:10:02");
  HeardMeters heard;
  heard.Note(7, first);
  heard.Note(5, first);
  heard.Note(7, second);
  EXPECT_THAT(heard.All(), ElementsAre(HeardMeter{5, 1, first}, HeardMeter{7, 2, second}));
}

TEST(HeardMetersTest, NoiseDisplacesNoiseAndNoMeter) {
  const DateTime now = At("2026-11-16T20:10:00");
  HeardMeters heard;
  for (int frame = 0; frame < 2; ++frame) heard.Note(5, now);
  for (int address = 1000; address < 31000; ++address) {
    heard.Note(static_cast<std::int16_t>(address), now);
  }
  const std::vector<HeardMeter> all = heard.All();
  ASSERT_EQ(all.size(), HeardMeters::Most);
  EXPECT_EQ(all.front(), (HeardMeter{5, 2, now}));
  EXPECT_EQ(all[1].address, 31000 - 63);
}

}  // namespace
}  // namespace wattlark
