#include <gtest/gtest.h>

#include "config/MeterCalibration.h"
#include "support/RegionalForms.h"

namespace wattlark {
namespace {

using enum CalibrationStep;

// From 0.6 volts/bit, 498 counts and 0.0625 amps/bit; the scales are limited to 0.75 and 1.25 times
// 0.6 and 1 / 15.5, the offset to 0 and 1023.
constexpr struct {
  CalibrationStep step;
  int position;
  double value;
  const char* text;
  bool isLimited;
} kAdjustments[] = {
    {VoltageScaler, 0, 0.6, "0.6 volts/bit", false},
    {VoltageScaler, 10, 0.54, "0.54 volts/bit", false},
    {VoltageScaler, -10, 0.66, "0.66 volts/bit", false},
    {VoltageScaler, 100, 0.45, "0.45 volts/bit", true},
    {VoltageScaler, -100, 0.75, "0.75 volts/bit", true},
    {CurrentOffset, 1, 499, "499 counts", false},
    {CurrentOffset, -100, 398, "398 counts", false},
    {CurrentScaler, 20, 0.05, "0.05 amps/bit", false},
    {CurrentScaler, -20, 0.075, "0.075 amps/bit", false},
    {CurrentScaler, 100, 0.75 / 15.5, "0.0483870967741935 amps/bit", true},
    {CurrentScaler, -100, 1.25 / 15.5, "0.0806451612903226 amps/bit", true},
};

double ValueOf(const clsKillAWatt& meter, CalibrationStep step) {
  if (step == VoltageScaler) return meter.VoltageScaler();
  return step == CurrentOffset ? meter.CurrentOffset() : meter.CurrentScaler();
}

TEST(MeterCalibrationTest, AdjustsFromTheStartingValuesWithinTheLimits) {
  clsKillAWatt meter;
  meter.SetCurrentScaler(0.0625);
  MeterCalibration calibration(meter);
  for (const auto& test : kAdjustments) {
    calibration.Adjust(test.step, test.position);
    EXPECT_NEAR(ValueOf(meter, test.step), test.value, 1e-15) << test.text;
    EXPECT_EQ(calibration.ValueText(test.step, RegionalSettings::UnitedStates()), test.text);
    EXPECT_EQ(calibration.IsLimited(test.step), test.isLimited) << test.text;
  }
  calibration.Adjust(CurrentScaler, 0);
  EXPECT_EQ(calibration.ValueText(CurrentScaler, Germany()), "0,0625 amps/bit");
}

TEST(MeterCalibrationTest, BackAtZeroAndRestoredTheValuesAreTheSameToTheLastBit) {
  clsKillAWatt meter;
  meter.SetVoltageScaler(0.6123456789012345);
  meter.SetCurrentOffset(1000);
  meter.SetCurrentScaler(0.0712345678901234);
  MeterCalibration calibration(meter);
  const auto isAsBefore = [&] {
    return meter.VoltageScaler() == 0.6123456789012345 && meter.CurrentOffset() == 1000 &&
           meter.CurrentScaler() == 0.0712345678901234;
  };
  for (const int position : {3, 0}) {
    for (const auto step : {VoltageScaler, CurrentOffset, CurrentScaler}) {
      for (int back = 100; back >= position; --back) calibration.Adjust(step, back);
    }
    EXPECT_EQ(isAsBefore(), position == 0);
  }
  for (const auto step : {VoltageScaler, CurrentOffset, CurrentScaler}) {
    calibration.Adjust(step, 50);
    EXPECT_TRUE(calibration.IsLimited(step));
  }
  EXPECT_EQ(meter.CurrentOffset(), 1023);
  calibration.Restore();
  EXPECT_TRUE(isAsBefore());
  EXPECT_FALSE(calibration.IsLimited(CurrentOffset));
}

}  // namespace
}  // namespace wattlark
