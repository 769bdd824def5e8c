#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "acquisition/MeterStatistics.h"
#include "app/ChartScale.h"

namespace wattlark {
namespace {

struct ScaleCase {
  double minimum, maximum;
  int steps;
  double lower, upper, step;
};

class ValueScaleTest : public testing::TestWithParam<ScaleCase> {};

TEST_P(ValueScaleTest, CoversTheValuesWithRoundNumbers) {
  const ScaleCase& c = GetParam();
  const ValueScale scale = MakeValueScale(c.minimum, c.maximum, c.steps);
  EXPECT_DOUBLE_EQ(scale.lower, c.lower);
  EXPECT_DOUBLE_EQ(scale.upper, c.upper);
  EXPECT_DOUBLE_EQ(scale.step, c.step);
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();

INSTANTIATE_TEST_SUITE_P(
    Values, ValueScaleTest,
    testing::Values(ScaleCase{0, 980, 4, 0, 1000, 250}, ScaleCase{400, 980, 4, 0, 1000, 250},
                    ScaleCase{0, 1000, 4, 0, 1000, 250}, ScaleCase{0, 1001, 4, 0, 1500, 500},
                    ScaleCase{0, 0.3, 3, 0, 0.3, 0.1}, ScaleCase{-120, 90, 4, -200, 100, 100},
                    ScaleCase{-80, -20, 4, -80, 0, 20}, ScaleCase{0, 7e-7, 4, 0, 8e-7, 2e-7},
                    // Nothing to cover.
                    ScaleCase{0, 0, 4, 0, 1, 0.25}, ScaleCase{kInfinity, NAN, 4, 0, 1, 0.25},
                    ScaleCase{-kLargest, kLargest, 4, 0, 1, 0.25}));

TEST(CentredScaleTest, KeepsZeroInTheMiddle) {
  const ValueScale scale = MakeCentredScale(170, 2);
  EXPECT_DOUBLE_EQ(scale.lower, -200);
  EXPECT_DOUBLE_EQ(scale.upper, 200);
  EXPECT_DOUBLE_EQ(scale.step, 100);
}

struct LabelCase {
  ValueScale scale;
  double value;
  const char* text;
};

class ValueLabelTest : public testing::TestWithParam<LabelCase> {};

TEST_P(ValueLabelTest, SaysOnlyWhatTheStepNeeds) {
  const LabelCase& c = GetParam();
  EXPECT_EQ(ValueLabel(RegionalSettings::UnitedStates(), c.scale, c.value), c.text);
}

INSTANTIATE_TEST_SUITE_P(
    Values, ValueLabelTest,
    testing::Values(LabelCase{{0, 1000, 250}, 750, "750"}, LabelCase{{0, 1000, 250}, 1000, "1,000"},
                    LabelCase{{0, 10, 2.5}, 5, "5.0"}, LabelCase{{0, 0.1, 0.025}, 0.05, "0.050"},
                    LabelCase{{-0.3, 0.3, 0.1}, -0.3 + 3 * 0.1, "0"},
                    LabelCase{{0, 2e6, 5e5}, 1.5e6, "1.5M"}, LabelCase{{0, 2e6, 5e5}, 0, "0"},
                    LabelCase{{0, 4e9, 1e9}, 3e9, "3G"}, LabelCase{{0, 4e12, 1e12}, -3e12, "-3T"},
                    LabelCase{{0, 4e16, 1e16}, 3e16, "3e+16"}));

TEST(ValueLabelTest, IsWrittenInTheRegionsForm) {
  RegionalSettings german = RegionalSettings::UnitedStates();
  german.decimalSeparator = ",";
  german.groupSeparator = ".";
  EXPECT_EQ(ValueLabel(german, {0, 10, 2.5}, 7.5), "7,5");
  EXPECT_EQ(ValueLabel(german, {0, 1000, 250}, 1000), "1.000");
}

struct TickCase {
  int interval;
  std::int64_t first, last;
  int most;
  std::vector<std::int64_t> ticks;
};

class TimeTicksTest : public testing::TestWithParam<TickCase> {};

TEST_P(TimeTicksTest, AreFewAndRound) {
  const TickCase& c = GetParam();
  EXPECT_EQ(TimeTicks(c.interval, c.first, c.last, c.most), c.ticks);
}

INSTANTIATE_TEST_SUITE_P(
    Intervals, TimeTicksTest,
    testing::Values(TickCase{Minute, 6002, 6061, 4, {6015, 6030, 6045, 6060}},
                    TickCase{Minute, 6002, 6061, 3, {6020, 6040, 6060}},
                    TickCase{Minute, 6002, 6061, 1, {6060}},
                    // Before 1980 slots are negative.
                    TickCase{Hour, -61, -2, 4, {-60, -45, -30, -15}},
                    TickCase{Day, 482, 505, 4, {486, 492, 498, 504}},
                    TickCase{Week, 100, 106, 7, {100, 101, 102, 103, 104, 105, 106}},
                    TickCase{Week, 100, 106, 4, {100, 102, 104, 106}},
                    TickCase{Month, 100, 130, 5, {102, 109, 116, 123, 130}},
                    TickCase{Year, 551, 562, 4, {552, 555, 558, 561}},
                    // An interval that does not exist is the first one.
                    TickCase{7, 6002, 6061, 4, {6015, 6030, 6045, 6060}}));

}  // namespace
}  // namespace wattlark
