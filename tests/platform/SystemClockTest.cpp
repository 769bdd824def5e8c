#include <gtest/gtest.h>

#include <QDateTime>
#include <algorithm>
#include <vector>

#include "ZoneScope.h"
#include "platform/qt/StandardRandom.h"
#include "platform/qt/SystemClock.h"

namespace wattlark {
namespace {

TEST(SystemClock, TellsTheLocalTime) {
  const ZoneScope india("IST-5:30");
  const SystemClock clock;
  for (int call = 0; call < 2; ++call) {  // the second one takes the offset that was kept
    const std::int64_t expected = QDateTime::currentMSecsSinceEpoch() + 19'800'000;
    const std::int64_t now = clock.Now().Milliseconds();
    EXPECT_GE(now, expected);
    EXPECT_LT(now, expected + 5000);
  }
}

TEST(SystemClock, TicksAreMilliseconds) {
  const SystemClock clock;
  const std::uint32_t start = clock.Ticks();
  const DateTime startTime = clock.Now();
  while (clock.Now() < startTime.PlusMilliseconds(50)) {
  }
  EXPECT_GE(clock.Ticks() - start, 45u);
  EXPECT_LT(clock.Ticks() - start, 5000u);
}

TEST(StandardRandom, FillsTheUnitIntervalAndRepeatsNothingWithTheSameSeed) {
  StandardRandom random(1);
  random.Reseed(12345);
  const double first = random.Next();
  random.Reseed(12345);
  EXPECT_NE(random.Next(), first);
  std::vector<double> numbers(10000);
  std::ranges::generate(numbers, [&random] { return random.Next(); });
  const auto [least, largest] = std::ranges::minmax(numbers);
  EXPECT_GE(least, 0.0);
  EXPECT_LT(least, 0.01);
  EXPECT_GT(largest, 0.99);
  EXPECT_LT(largest, 1.0);
}

}  // namespace
}  // namespace wattlark
