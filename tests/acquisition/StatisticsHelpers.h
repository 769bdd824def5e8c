#pragma once

#include <gmock/gmock.h>

#include <cstddef>
#include <span>
#include <vector>

#include "acquisition/MeterStatistics.h"
#include "twins/HandClock.h"

namespace wattlark {

inline constexpr double None = NoValue;

inline std::vector<double> NewestEntries(std::span<const double> series, std::size_t count) {
  return {series.end() - static_cast<std::ptrdiff_t>(count), series.end()};
}

inline std::vector<double> NewestDemand(const MeterStatistics& meter, int interval,
                                        std::size_t count = 1) {
  return NewestEntries(meter.DemandRecent(interval), count);
}

inline std::vector<double> NewestUsages(const MeterStatistics& meter, int interval,
                                        std::size_t count = 1) {
  return NewestEntries(meter.UsageRecent(interval), count);
}

inline double NewestUsage(const MeterStatistics& meter, int interval) {
  return meter.UsageRecent(interval).back();
}

inline void ExpectNoSeries(const MeterStatistics& meter) {
  for (int i = 0; i < IntervalCount; ++i) {
    EXPECT_THAT(meter.DemandRecent(i), testing::Each(None));
    EXPECT_THAT(meter.UsageRecent(i), testing::Each(None));
  }
}

inline void ExpectNoPeriods(const MeterStatistics& meter) {
  for (int i = 0; i < PeriodCount; ++i) {
    EXPECT_EQ(meter.Usage(i), 0);
    EXPECT_EQ(meter.Peak(i), 0);
    EXPECT_TRUE(meter.PeakTime(i).IsNever());
  }
}

/// A meter whose last reading was at `time` and tick 1000, with 100 in every entry of every series
/// and 10, 20 .. 70 as usage and peak of the periods.
inline MeterStatistics FullMeter(const char* time) {
  MeterStatistics meter;
  meter.AddReading(5, At(time), 1000);
  const std::vector<double> hundreds(60, 100.0);
  for (int i = 0; i < IntervalCount; ++i) {
    meter.SetDemandRecent(i, hundreds);
    meter.SetUsageRecent(i, hundreds);
  }
  for (int i = 0; i < PeriodCount; ++i) {
    meter.SetUsage(i, 10 * (i + 1));
    meter.SetPeak(i, 10 * (i + 1));
    meter.SetPeakTime(i, At("2000-01-01T00:00:00"));
  }
  return meter;
}

}  // namespace wattlark
