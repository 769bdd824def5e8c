#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "DecodedFrame.h"
#include "sim/FrameWriter.h"
#include "sim/MeterModel.h"

namespace wattlark {
namespace {

DecodedFrame Send(MeterModel& meter, double seconds) {
  return DecodedFrame(EncodeFrame(meter.TakeBurst(seconds)));
}

struct Load {
  double watts;
  double nominalVoltage;
  double frequency;
  double powerFactor;
  double tolerance;  // share of the watts
};

class DecodedLoad : public testing::TestWithParam<Load> {};

TEST_P(DecodedLoad, ReadsAsTheChosenWattsAndVoltsAtEveryPhase) {
  const Load& load = GetParam();
  MeterSettings settings;
  settings.watts = load.watts;
  settings.nominalVoltage = load.nominalVoltage;
  settings.frequency = load.frequency;
  settings.powerFactor = load.powerFactor;
  settings.varies = false;
  const double voltsPerCount = load.nominalVoltage / 200.0;
  // What half a count of current in a sample at the peak of the voltage amounts to.
  const double roundingWatts = 0.5 / 15.5 * load.nominalVoltage * std::sqrt(2.0) / 19.0;

  for (const std::uint64_t seed : {1U, 2U, 77U}) {
    MeterModel meter(settings, seed);
    for (int burst = 0; burst < 200; ++burst) {
      const DecodedFrame frame = Send(meter, 2.0 * burst);
      ASSERT_TRUE(frame.isWellFormed);
      EXPECT_NEAR(frame.Watts(voltsPerCount), load.watts,
                  load.tolerance * load.watts + roundingWatts)
          << "seed " << seed << " burst " << burst;
      EXPECT_NEAR(frame.Volts(voltsPerCount), load.nominalVoltage, 0.02 * load.nominalVoltage);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Loads, DecodedLoad,
    testing::Values(Load{20, 120, 60, 0.95, 0.02}, Load{84, 120, 60, 1, 0.02},
                    Load{612, 120, 60, 0.95, 0.02}, Load{1700, 120, 60, 0.95, 0.02},
                    Load{20, 120, 50, 0.95, 0.02}, Load{612, 120, 50, 0.95, 0.02},
                    Load{900, 120, 50, 0.5, 0.03}, Load{0, 120, 60, 0.95, 0},
                    Load{350, 240, 60, 0.95, 0.02}, Load{3400, 240, 50, 0.95, 0.02}));

TEST(MeterModel, CurrentLagsByThePowerFactor) {
  // At a power factor of 1 voltage and current cross the middle together, so that no sample has
  // them on clearly different sides; at 0.5 a third of a half-wave has.
  const auto countOpposite = [](double powerFactor) {
    MeterSettings settings;
    settings.watts = 500;
    settings.powerFactor = powerFactor;
    settings.noise = 0;
    MeterModel meter(settings, 1);
    const Burst burst = meter.TakeBurst(0.0);
    return std::count_if(burst.samples.begin(), burst.samples.end(), [](const Sample& sample) {
      return (sample.voltage > 522 && sample.current < 488) ||
             (sample.voltage < 502 && sample.current > 508);
    });
  };
  EXPECT_EQ(countOpposite(1.0), 0);
  EXPECT_GE(countOpposite(0.5), 4);
}

TEST(MeterModel, PhaseMovesOnFromBurstToBurst) {
  MeterModel meter(MeterSettings{}, 3);
  std::uint16_t lowest = 1023;
  std::uint16_t highest = 0;
  for (int burst = 0; burst < 60; ++burst) {
    const std::uint16_t first = meter.TakeBurst(2.0 * burst).samples[0].voltage;
    lowest = std::min(lowest, first);
    highest = std::max(highest, first);
  }
  EXPECT_GT(highest - lowest, 400);
}

TEST(MeterModel, DriftStaysNearTheChosenLoadAndGoesBothWays) {
  for (const bool isGenerator : {false, true}) {
    MeterSettings settings;
    settings.watts = 350;
    settings.isGenerator = isGenerator;
    const MeterModel meter(settings, 9);
    double lowest = 1e9;
    double highest = 0;
    for (int second = 0; second < 7200; second += 2) {
      const double watts = meter.WattsAt(second);
      EXPECT_LT(std::abs(meter.WattsAt(second + 2) - watts), 0.03 * 350) << "a jump, not a drift";
      lowest = std::min(lowest, watts);
      highest = std::max(highest, watts);
    }
    EXPECT_GT(lowest, 350 * 0.8);
    EXPECT_LT(lowest, 350 * 0.97);
    EXPECT_GT(highest, 350 * 1.03);
    EXPECT_LT(highest, 350 * 1.2);
  }
}

TEST(MeterModel, StrongestNoiseStaysInsideTheConverter) {
  MeterSettings settings;
  settings.powerFactor = 0.5;
  settings.frequency = 50;
  settings.watts = settings.MaximumWatts();
  settings.noise = 0.2;
  MeterModel meter(settings, 5);
  for (int burst = 0; burst < 500; ++burst) {
    const Burst taken = meter.TakeBurst(2.0 * burst);
    for (const Sample& sample : taken.samples) {
      EXPECT_LE(sample.voltage, 1023);
      EXPECT_LE(sample.current, 1023);
    }
  }
}

TEST(MeterModel, SameSeedSameBytesOtherSeedOthers) {
  MeterModel first(MeterSettings{}, 11);
  MeterModel same(MeterSettings{}, 11);
  MeterModel other(MeterSettings{}, 12);
  const Bytes bytes = EncodeFrame(first.TakeBurst(4.0));
  EXPECT_EQ(bytes, EncodeFrame(same.TakeBurst(4.0)));
  EXPECT_NE(bytes, EncodeFrame(other.TakeBurst(4.0)));
}

}  // namespace
}  // namespace wattlark
