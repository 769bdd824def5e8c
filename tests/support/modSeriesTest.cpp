#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "support/NoValue.h"
#include "support/modSeries.h"

namespace wattlark {
namespace {

using Series = std::vector<double>;

struct ShiftCase {
  std::int64_t n;
  Series expected;
};

class ShiftSeriesTest : public testing::TestWithParam<ShiftCase> {};

TEST_P(ShiftSeriesTest, MovesLeftAndFills) {
  Series series = {1, 2, 3, 4, 5};
  ShiftSeries(series, GetParam().n, 9);
  EXPECT_EQ(series, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Counts, ShiftSeriesTest,
    testing::Values(ShiftCase{0, {1, 2, 3, 4, 5}}, ShiftCase{-3, {1, 2, 3, 4, 5}},
                    ShiftCase{1, {2, 3, 4, 5, 9}}, ShiftCase{4, {5, 9, 9, 9, 9}},
                    ShiftCase{5, {9, 9, 9, 9, 9}}, ShiftCase{6, {9, 9, 9, 9, 9}},
                    ShiftCase{std::numeric_limits<std::int64_t>::max(), {9, 9, 9, 9, 9}},
                    ShiftCase{std::numeric_limits<std::int64_t>::min(), {1, 2, 3, 4, 5}}));

TEST(ShiftSeries, LeavesAnEmptySeriesAlone) {
  Series empty;
  ShiftSeries(empty, 1, 9);
  EXPECT_TRUE(empty.empty());
}

TEST(AverageSeries, OfNothingIsNoValue) {
  EXPECT_EQ(AverageSeries({}), NoValue);
  EXPECT_EQ(AverageSeries(Series(60, NoValue)), NoValue);
}

TEST(AverageSeries, CountsEveryEntryOfEveryLength) {
  for (std::size_t length = 1; length <= 60; ++length) {
    Series series(length);
    for (std::size_t i = 0; i < length; ++i) series[i] = static_cast<double>(i + 1);
    EXPECT_EQ(AverageSeries(series), static_cast<double>(length + 1) / 2) << length;
  }
}

TEST(AverageSeries, SkipsAGapAtEveryPlace) {
  for (std::size_t length : {3U, 4U, 7U, 12U, 31U}) {
    for (std::size_t gap = 1; gap < length; ++gap) {
      for (std::size_t start = 0; start + gap <= length; ++start) {
        Series series(length, 12.5);
        for (std::size_t i = start; i < start + gap; ++i) series[i] = NoValue;
        ASSERT_EQ(AverageSeries(series), 12.5) << length << ' ' << gap << ' ' << start;
      }
    }
  }
}

TEST(AverageSeries, WeighsOnlyTheEntriesThere) {
  EXPECT_EQ(AverageSeries(Series{NoValue, 10, NoValue, 20, -60}), -10);
  EXPECT_EQ(AverageSeries(Series{1, NoValue, 2, 3}), 2);
}

TEST(AverageSeries, KeepsValuesBeyondNoValue) {
  const double largest = std::numeric_limits<double>::max();
  EXPECT_EQ(AverageSeries(Series{largest}), largest);
  EXPECT_EQ(AverageSeries(Series{largest, NoValue, largest, largest, largest}), largest);
  EXPECT_EQ(AverageSeries(Series{-largest, -largest, -largest, -largest}), -largest);
  EXPECT_EQ(AverageSeries(Series{largest, -largest, largest, -largest, largest, -largest}), 0);
}

TEST(JoinSeries, WritesEntriesOldestFirst) {
  EXPECT_EQ(JoinSeries({}), "");
  EXPECT_EQ(JoinSeries(Series{1.5}), "1.5");
  EXPECT_EQ(JoinSeries(Series{NoValue, -0.25, 0, 1200}), "1E+308,-0.25,0,1200");
}

struct SplitCase {
  const char* text;
  Series expected;
};

class SplitSeriesTest : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitSeriesTest, CopiesFromTheFirstEntry) {
  Series series(4, NoValue);
  SplitSeries(GetParam().text, series);
  EXPECT_EQ(series, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Texts, SplitSeriesTest,
                         testing::Values(SplitCase{"1,2.5,1E+308,-4", {1, 2.5, NoValue, -4}},
                                         SplitCase{"", {NoValue, NoValue, NoValue, NoValue}},
                                         SplitCase{"1", {1, NoValue, NoValue, NoValue}},
                                         SplitCase{"1,2", {1, 2, NoValue, NoValue}},
                                         SplitCase{"1,2,3,4,5,6", {1, 2, 3, 4}},
                                         SplitCase{"x,2,,4", {0, 2, 0, 4}},
                                         SplitCase{"1,", {1, 0, NoValue, NoValue}},
                                         SplitCase{" ", {0, NoValue, NoValue, NoValue}},
                                         SplitCase{"inf,nan,1E+309,-inf", {0, 0, 0, 0}},
                                         SplitCase{" 1 , 2\r\n", {1, 2, NoValue, NoValue}}));

TEST(SplitSeries, ReadsBackWhatJoinSeriesWrites) {
  const Series written = {NoValue, 0.1, 1.0 / 3, -123456.789, 1E-300, 5E-324, 1E22, 0};
  Series read(written.size(), 7);
  SplitSeries(JoinSeries(written), read);
  EXPECT_EQ(read, written);
}

TEST(SplitSeries, IgnoresTextForAnEmptySeries) {
  Series empty;
  SplitSeries("1,2", empty);
  EXPECT_TRUE(empty.empty());
}

TEST(Clamp, TakesBoundsForWhatLiesOutside) {
  EXPECT_EQ(Clamp(-1, 0, 1023), 0);
  EXPECT_EQ(Clamp(0, 0, 1023), 0);
  EXPECT_EQ(Clamp(498, 0, 1023), 498);
  EXPECT_EQ(Clamp(5000, 0, 1023), 1023);
  EXPECT_EQ(Clamp(0.5, 0.25, 0.75), 0.5);
  EXPECT_EQ(Clamp(std::numeric_limits<double>::quiet_NaN(), 0.25, 0.75), 0.75);
}

}  // namespace
}  // namespace wattlark
