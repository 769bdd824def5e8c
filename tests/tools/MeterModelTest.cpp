#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "DecodedFrame.h"
#include "sim/FrameWriter.h"
#include "sim/MeterModel.h"

namespace wattlark {
namespace {

TEST(MeterModel, ReadsAsTheChosenWattsAndVoltsAtEveryPhase) {
  const struct {
    double watts;
    double nominalVoltage;
    double frequency;
    double powerFactor;
    double tolerance;  ///< share of the watts
  } loads[] = {{20, 120, 60, 0.95, 0.02},  {84, 120, 60, 1, 0.02},     {1700, 120, 60, 0.95, 0.02},
               {612, 120, 50, 0.95, 0.02}, {900, 120, 50, 0.5, 0.03},  {0, 120, 60, 0.95, 0},
               {350, 240, 60, 0.95, 0.02}, {3400, 240, 50, 0.95, 0.02}};
  for (const auto& load : loads) {
    MeterSettings settings;
    settings.watts = load.watts;
    settings.nominalVoltage = load.nominalVoltage;
    settings.frequency = load.frequency;
    settings.powerFactor = load.powerFactor;
    settings.varies = false;
    // What half a count of current in a sample at the peak of the voltage amounts to.
    const double roundingWatts = 0.5 / 15.5 * load.nominalVoltage * std::sqrt(2.0) / 19.0;
    MeterModel meter(settings, 77);
    for (int burst = 0; burst < 500; ++burst) {
      SCOPED_TRACE(burst);
      const DecodedFrame frame(EncodeFrame(meter.TakeBurst(2.0 * burst)), load.nominalVoltage);
      ASSERT_TRUE(frame.isWellFormed);
      EXPECT_NEAR(frame.watts, load.watts, load.tolerance * load.watts + roundingWatts);
      EXPECT_NEAR(frame.volts, load.nominalVoltage, 0.02 * load.nominalVoltage);
    }
  }
}

TEST(MeterModel, PhaseMovesOnFromBurstToBurstAsTheSeedHasIt) {
  MeterModel meter(MeterSettings{}, 3);
  MeterModel same(MeterSettings{}, 3);
  MeterModel other(MeterSettings{}, 4);
  std::uint16_t lowest = 1023;
  std::uint16_t highest = 0;
  for (int second = 0; second < 120; second += 2) {
    const Burst burst = meter.TakeBurst(second);
    lowest = std::min(lowest, burst.samples[0].voltage);
    highest = std::max(highest, burst.samples[0].voltage);
    EXPECT_EQ(EncodeFrame(burst), EncodeFrame(same.TakeBurst(second)));
    EXPECT_NE(EncodeFrame(burst), EncodeFrame(other.TakeBurst(second)));
  }
  EXPECT_GT(highest - lowest, 400);
}

}  // namespace
}  // namespace wattlark
