#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "acquisition/MeterAlarm.h"

namespace wattlark {
namespace {

struct Watched : MeterAlarm {
  explicit Watched(std::int32_t duration = 60, std::int32_t interval = 600) {
    SetAlarmUpperLimit(500);
    SetAlarmLowerLimit(100);
    SetAlarmDuration(duration);
    SetAlarmInterval(interval);
    SetAlarmActive(true);
  }
  /// What the program does at a tick: true when a notice is raised.
  bool Tick() {
    if (!AlarmTriggered() || !AlarmRepeatDue()) return false;
    ResetAlarmInterval();
    return true;
  }
};

TEST(MeterAlarm, StartsOff) {
  MeterAlarm alarm;
  EXPECT_FALSE(alarm.AlarmActive());
  EXPECT_EQ(alarm.AlarmUpperLimit(), 500);
  EXPECT_EQ(alarm.AlarmLowerLimit(), 0);
  EXPECT_EQ(alarm.AlarmDuration(), 60);
  EXPECT_EQ(alarm.AlarmInterval(), 600);
  alarm.AddReading(10000, 5000);
  EXPECT_EQ(alarm.OutOfRangeSeconds(), 0);
}

// Each case: one reading a second, the watts of each stretch, and at which second a notice comes.
TEST(MeterAlarm, RaisesNoticesAtTheRightSecond) {
  struct Stretch {
    double watts;
    int seconds;
  };
  struct Case {
    const char* what;
    std::int32_t duration, interval;
    std::vector<Stretch> stretches;
    std::vector<int> notices;
  };
  for (const Case& test :
       {Case{"above", 60, 600, {{600, 1300}}, {61, 662, 1263}},
        Case{"below", 60, 600, {{99.9, 700}}, {61, 662}},
        Case{"the limits are in range", 1, 60, {{500, 500}, {100, 500}, {300, 100}}, {}},
        Case{"duration 0", 0, 60, {{600, 65}}, {1, 62}},
        Case{"a break starts again", 60, 600, {{600, 30}, {400, 1}, {600, 61}}, {92}},
        Case{"from above to below is no break", 60, 600, {{600, 30}, {50, 31}}, {61}},
        Case{"not quite", 60, 600, {{600, 60}, {400, 1}}, {}},
        Case{"again within the interval", 60, 600, {{600, 61}, {400, 39}, {600, 600}}, {61, 662}},
        Case{"again after it", 60, 600, {{600, 61}, {400, 939}, {600, 100}}, {61, 1061}},
        Case{"an interval shorter than the duration", 60, 5, {{600, 70}}, {61, 67}}}) {
    Watched alarm(test.duration, test.interval);
    std::vector<int> notices;
    int second = 0;
    for (const auto& [watts, seconds] : test.stretches) {
      for (int i = 0; i < seconds; ++i) {
        alarm.AddReading(watts, 1);
        ++second;
        if (alarm.Tick()) notices.push_back(second);
      }
    }
    EXPECT_EQ(notices, test.notices) << test.what;
  }
}

TEST(MeterAlarm, CountsTheSecondsOfTheReading) {
  Watched alarm;
  alarm.AddReading(600, 0);
  EXPECT_EQ(alarm.OutOfRangeSeconds(), 0);
  alarm.AddReading(600, 60);
  EXPECT_FALSE(alarm.AlarmTriggered());
  alarm.AddReading(600, 0);
  EXPECT_FALSE(alarm.AlarmTriggered());
  alarm.AddReading(600, 1);
  EXPECT_TRUE(alarm.AlarmTriggered());
  EXPECT_EQ(alarm.IntervalSeconds(), 661);
  // The time that the program was off counts by the first reading's watts alone.
  Watched restarted;
  restarted.AddReading(300, 86400);
  EXPECT_EQ(restarted.OutOfRangeSeconds(), 0);
  restarted.AddReading(600, 86400);
  EXPECT_TRUE(restarted.Tick());
  // Counters stay at their end.
  for (int i = 0; i < 3; ++i) alarm.AddReading(600, std::int64_t{1} << 40);
  EXPECT_EQ(alarm.OutOfRangeSeconds(), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(alarm.IntervalSeconds(), std::numeric_limits<std::int32_t>::max());
}

TEST(MeterAlarm, AssignmentsChangeTheCountersAsTheyMust) {
  struct Case {
    const char* what;
    void (*assign)(MeterAlarm&);
    std::int32_t outOfRange;  // from 40
    std::int32_t interval;    // from 640
  };
  for (const Case& test :
       {Case{"on while on", [](MeterAlarm& a) { a.SetAlarmActive(true); }, 0, 640},
        Case{"off", [](MeterAlarm& a) { a.SetAlarmActive(false); }, 0, 0},
        Case{"on", [](MeterAlarm& a) { a.SetAlarmActive(false), a.SetAlarmActive(true); }, 0, 600},
        Case{"same duration", [](MeterAlarm& a) { a.SetAlarmDuration(60); }, 40, 640},
        Case{"other duration", [](MeterAlarm& a) { a.SetAlarmDuration(30); }, 0, 640},
        Case{"same interval", [](MeterAlarm& a) { a.SetAlarmInterval(600); }, 40, 640},
        Case{"other interval", [](MeterAlarm& a) { a.SetAlarmInterval(300); }, 40, 300},
        Case{"limits", [](MeterAlarm& a) { a.SetAlarmUpperLimit(1), a.SetAlarmLowerLimit(1); }, 40,
             640},
        Case{"notice", [](MeterAlarm& a) { a.ResetAlarmInterval(); }, 40, 0}}) {
    Watched alarm;
    alarm.AddReading(600, 40);
    test.assign(alarm);
    EXPECT_EQ(alarm.OutOfRangeSeconds(), test.outOfRange) << test.what;
    EXPECT_EQ(alarm.IntervalSeconds(), test.interval) << test.what;
  }
}

TEST(MeterAlarm, OffAnswersNoWhateverTheCountersHold) {
  Watched alarm;
  alarm.AddReading(600, 1000);
  ASSERT_TRUE(alarm.AlarmTriggered());
  alarm.SetAlarmActive(false);
  alarm.AddReading(600, 1000);
  EXPECT_EQ(alarm.IntervalSeconds(), 1000) << "the time since the last notice runs on";
  EXPECT_FALSE(alarm.AlarmTriggered());
  EXPECT_FALSE(alarm.AlarmRepeatDue());
}

}  // namespace
}  // namespace wattlark
