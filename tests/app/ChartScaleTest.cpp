#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "acquisition/MeterStatistics.h"
#include "app/ChartScale.h"
#include "support/RegionalForms.h"

namespace wattlark {
namespace {

void ExpectScale(const ValueScale& scale, const ValueScale& expected) {
  EXPECT_DOUBLE_EQ(scale.lower, expected.lower);
  EXPECT_DOUBLE_EQ(scale.upper, expected.upper);
  EXPECT_DOUBLE_EQ(scale.step, expected.step);
}

TEST(ChartScale, CoversTheValuesWithRoundNumbers) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kLargest = std::numeric_limits<double>::max();
  using Row = std::tuple<double, double, int, ValueScale>;
  for (const auto& [minimum, maximum, steps, scale] :
       {Row{400, 980, 4, {0, 1000, 250}}, Row{0, 1000, 4, {0, 1000, 250}},
        Row{0, 1001, 4, {0, 1500, 500}}, Row{0, 0.3, 3, {0, 0.3, 0.1}},
        Row{-120, 90, 4, {-200, 100, 100}}, Row{-80, -20, 4, {-80, 0, 20}},
        Row{0, 7e-7, 4, {0, 8e-7, 2e-7}},
        // Nothing to cover.
        Row{0, 0, 4, {0, 1, 0.25}}, Row{kInfinity, NAN, 4, {0, 1, 0.25}},
        Row{-kLargest, kLargest, 4, {0, 1, 0.25}}}) {
    SCOPED_TRACE(maximum);
    ExpectScale(MakeValueScale(minimum, maximum, steps), scale);
  }
  ExpectScale(MakeCentredScale(170, 2), {-200, 200, 100});
}

TEST(ChartScale, LabelsSayOnlyWhatTheStepNeeds) {
  using Row = std::tuple<ValueScale, double, const char*>;
  for (const auto& [scale, value, text] :
       {Row{{0, 1000, 250}, 1000, "1,000"}, Row{{0, 10, 2.5}, 5, "5.0"},
        Row{{0, 0.1, 0.025}, 0.05, "0.050"}, Row{{-0.3, 0.3, 0.1}, -0.3 + 3 * 0.1, "0"},
        Row{{0, 2e6, 5e5}, 1.5e6, "1.5M"}, Row{{0, 2e6, 5e5}, 0, "0"},
        Row{{0, 4e9, 1e9}, 3e9, "3G"}, Row{{0, 4e12, 1e12}, -3e12, "-3T"},
        Row{{0, 4e16, 1e16}, 3e16, "3e+16"}}) {
    EXPECT_EQ(ValueLabel(RegionalSettings::UnitedStates(), scale, value), text);
  }
  EXPECT_EQ(ValueLabel(Germany(), {0, 10, 2.5}, 7.5), "7,5");
  EXPECT_EQ(ValueLabel(Germany(), {0, 1000, 250}, 1000), "1.000");
}

TEST(ChartScale, TimeTicksAreFewAndRound) {
  using Row = std::tuple<int, std::int64_t, std::int64_t, int, std::vector<std::int64_t>>;
  for (const auto& [interval, first, last, most, ticks] :
       {Row{Minute, 6002, 6061, 4, {6015, 6030, 6045, 6060}},
        Row{Minute, 6002, 6061, 3, {6020, 6040, 6060}}, Row{Minute, 6002, 6061, 1, {6060}},
        // Before 1980 slots are negative.
        Row{Hour, -61, -2, 4, {-60, -45, -30, -15}}, Row{Day, 482, 505, 4, {486, 492, 498, 504}},
        Row{Week, 100, 106, 7, {100, 101, 102, 103, 104, 105, 106}},
        Row{Week, 100, 106, 4, {100, 102, 104, 106}},
        Row{Month, 100, 130, 5, {102, 109, 116, 123, 130}},
        Row{Year, 551, 562, 4, {552, 555, 558, 561}},
        // An interval that does not exist is the first one.
        Row{7, 6002, 6061, 4, {6015, 6030, 6045, 6060}}}) {
    EXPECT_EQ(TimeTicks(interval, first, last, most), ticks) << interval << ' ' << most;
  }
}

}  // namespace
}  // namespace wattlark
