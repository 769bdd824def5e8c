#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "support/NoValue.h"
#include "support/modSeries.h"

namespace wattlark {
namespace {

using Series = std::vector<double>;

TEST(AverageSeries, WeighsTheEntriesThereAndKeepsValuesBeyondNoValue) {
  EXPECT_EQ(AverageSeries({}), NoValue);
  EXPECT_EQ(AverageSeries(Series(60, NoValue)), NoValue);
  EXPECT_EQ(AverageSeries(Series{NoValue, 10, NoValue, 20, -60}), -10);
  EXPECT_EQ(AverageSeries(Series{1, NoValue, 2, 3}), 2);
  const double largest = std::numeric_limits<double>::max();
  EXPECT_EQ(AverageSeries(Series{largest}), largest);
  EXPECT_EQ(AverageSeries(Series{largest, NoValue, largest, largest, largest}), largest);
  EXPECT_EQ(AverageSeries(Series{-largest, -largest, -largest, -largest}), -largest);
  EXPECT_EQ(AverageSeries(Series{largest, -largest, largest, -largest, largest, -largest}), 0);
}

TEST(SplitSeries, CopiesFromTheFirstEntry) {
  using Row = std::pair<const char*, Series>;
  for (const auto& [text, expected] :
       {Row{"1,2.5,1E+308,-4", {1, 2.5, NoValue, -4}},
        Row{"", {NoValue, NoValue, NoValue, NoValue}}, Row{"1", {1, NoValue, NoValue, NoValue}},
        Row{"1,2,3,4,5,6", {1, 2, 3, 4}}, Row{"x,2,,4", {0, 2, 0, 4}},
        Row{"1,", {1, 0, NoValue, NoValue}}, Row{"inf,nan,1E+309,-inf", {0, 0, 0, 0}},
        Row{" 1 , 2\r\n", {1, 2, NoValue, NoValue}}}) {
    Series series(4, NoValue);
    SplitSeries(text, series);
    EXPECT_EQ(series, expected) << text;
  }
  Series empty;
  SplitSeries("1,2", empty);
  EXPECT_EQ(JoinSeries({}), "");
  EXPECT_EQ(JoinSeries(Series{NoValue, -0.25, 0, 1200}), "1E+308,-0.25,0,1200");
}

}  // namespace
}  // namespace wattlark
