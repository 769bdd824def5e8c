#include <gtest/gtest.h>

#include <string>

#include "publish/PublishSchedule.h"
#include "twins/HandClock.h"

namespace wattlark {
namespace {

struct Publishing {
  Publishing() {
    settings.CSVInterval = 300;
    settings.TwitterInterval = 6;
    settings.LogToCSV = settings.LogToTwitter = true;
    Add("csv", &AppSettings::LogToCSV, &AppSettings::CSVInterval, DueUnit::Seconds);
    Add("twitter", &AppSettings::LogToTwitter, &AppSettings::TwitterInterval, DueUnit::Hours);
  }
  void Add(const char* name, bool AppSettings::*enabled, std::int32_t AppSettings::*interval,
           DueUnit unit) {
    schedule.Add({enabled, interval, unit,
                  [this, name](DateTime timestamp, bool useAverage, bool quiet) {
                    EXPECT_TRUE(useAverage);
                    EXPECT_TRUE(quiet);
                    runs += std::string(name) + ' ' + timestamp.ToIso() + '\n';
                    return false;  // a failure is not repeated
                  },
                  DateTime()});
  }
  /// What one tick runs.
  std::string Tick(const char* now) {
    runs.clear();
    schedule.RunPublishers(settings, At(now));
    return runs;
  }

  AppSettings settings;
  PublishSchedule schedule;
  std::string runs;
};

TEST(PublishSchedule, RunsWhatIsDueStampedWithItsSlot) {
  Publishing publishing;
  publishing.schedule.Start(publishing.settings, At("2026-11-16T17:57:30"));
  using Row = std::pair<const char*, const char*>;
  for (const auto& [now, runs] :
       {Row{"2026-11-16T17:59:59.999", ""},
        Row{"2026-11-16T18:00:00", "csv 2026-11-16T18:00:00\ntwitter 2026-11-16T18:00:00\n"},
        Row{"2026-11-16T18:00:01", ""}, Row{"2026-11-16T18:05:00.900", "csv 2026-11-16T18:05:00\n"},
        // The computer slept: one run for the oldest slot that was missed, none for the others.
        Row{"2026-11-17T00:07:00", "csv 2026-11-16T18:10:00\ntwitter 2026-11-17T00:00:00\n"},
        Row{"2026-11-17T00:07:01", ""}, Row{"2026-11-17T00:10:00", "csv 2026-11-17T00:10:00\n"},
        // Set back, the clock has to reach the next slot again.
        Row{"2026-11-16T23:15:00", ""}, Row{"2026-11-17T00:15:00", "csv 2026-11-17T00:15:00\n"},
        // It does not wait for a time that a clock far ahead had set.
        Row{"2027-03-01T04:07:30", "csv 2026-11-17T00:20:00\ntwitter 2026-11-17T06:00:00\n"},
        Row{"2026-11-16T17:57:31", ""},
        Row{"2026-11-16T18:00:00", "csv 2026-11-16T18:00:00\ntwitter 2026-11-16T18:00:00\n"}}) {
    EXPECT_EQ(publishing.Tick(now), runs) << now;
  }
}

TEST(PublishSchedule, LeavesADisabledDestinationsDueTimeAndWithoutAnIntervalIsDueNow) {
  Publishing publishing;
  publishing.settings.LogToCSV = false;
  publishing.schedule.Start(publishing.settings, At("2026-11-16T20:07:30"));
  EXPECT_EQ(publishing.Tick("2026-11-16T20:31:00"), "");
  publishing.settings.LogToCSV = true;
  publishing.settings.CSVInterval = 3600;
  EXPECT_EQ(publishing.Tick("2026-11-16T20:31:01"), "csv 2026-11-16T20:10:00\n");
  EXPECT_EQ(publishing.schedule.Destinations()[0].nextDue, At("2026-11-16T21:00:00"));
  const DateTime now = At("2026-11-16T20:31:01.250");
  for (const DueUnit unit : {DueUnit::Seconds, DueUnit::Hours}) {
    EXPECT_EQ(NextDueTime(unit, 0, now), now) << "no interval";
  }
}

}  // namespace
}  // namespace wattlark
