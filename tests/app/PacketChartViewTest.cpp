#include <gmock/gmock.h>

#include "acquisition/clsXBee.h"
#include "app/PacketChartView.h"
#include "support/RegionalForms.h"
#include "twins/Frames.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

using testing::DoubleEq;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(PacketChart, ShowsThePacketOrWhenThereWasOne) {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  clsKillAWatt meter;
  const auto view = [&] { return MakePacketChartView(meter, regional); };
  EXPECT_EQ(view().header, "No Data");
  EXPECT_THAT(view().amps, IsEmpty());
  // The time is that of the packet before the start.
  meter.Statistics().SetTimestamp(At("2026-11-15T08:05:01"));
  EXPECT_EQ(view().header, "Sampled @ 8:05:01 AM");
  EXPECT_THAT(view().volts, IsEmpty());
  HandClock clock;
  clsXBee decoder(clock);
  decoder.ParseBytes(MeterFrame(5, {512, 612, 412}, {498, 529, 467}));
  ASSERT_TRUE(decoder.SampleDecoded());
  meter.ProcessPacket(decoder);
  // 0.6 V a count from the middle of 412 and 612; 1/15.5 A a count from 498.
  EXPECT_THAT(view().volts, ElementsAre(DoubleEq(0), DoubleEq(60), DoubleEq(-60)));
  EXPECT_THAT(view().amps, ElementsAre(DoubleEq(0), DoubleEq(2), DoubleEq(-2)));
  EXPECT_EQ(view().header, "Sampled @ 8:10:00 PM");
  regional = France();
  EXPECT_EQ(view().header, "Sampled @ 20:10:00");
}

}  // namespace
}  // namespace wattlark
