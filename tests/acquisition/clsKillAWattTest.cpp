#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "acquisition/MeterAlarm.h"
#include "acquisition/clsKillAWatt.h"
#include "acquisition/clsXBee.h"
#include "twins/Frames.h"
#include "twins/HandClock.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {
namespace {

struct Meter : clsKillAWatt {
  HandClock clock;
  clsXBee decoder{clock};

  void Receive(const std::vector<std::uint16_t>& voltage,
               const std::vector<std::uint16_t>& current) {
    decoder.ParseBytes(MeterFrame(5, voltage, current));
    ASSERT_TRUE(decoder.SampleDecoded());
    ProcessPacket(decoder);
  }
  void Demo(std::initializer_list<double> numbers, const char* time = "2026-11-16T12:00:00") {
    ScriptedRandom random(numbers);
    GenerateDemoReading(At(time), 1000, random);
    EXPECT_TRUE(random.numbers.empty()) << "fewer random numbers drawn than expected";
    EXPECT_EQ(random.reseeds, 1);
  }
};

TEST(clsKillAWatt, ClampsCalibration) {
  clsKillAWatt meter;
  for (const int assigned : {-32768, -5, 0, 1, 1022, 1024, 2000}) {
    meter.SetCurrentOffset(static_cast<std::int16_t>(assigned));
    EXPECT_EQ(meter.CurrentOffset(), std::clamp(assigned, 0, 1023)) << assigned;
  }
  const std::pair<double, double> currents[] = {{1, 1.25 / 15.5}, {0, 0.75 / 15.5}, {0.07, 0.07}};
  for (const auto& [assigned, kept] : currents) {
    meter.SetCurrentScaler(assigned);
    EXPECT_DOUBLE_EQ(meter.CurrentScaler(), kept) << assigned;
  }
  meter.SetNominalVoltage(240);
  EXPECT_DOUBLE_EQ(meter.DefaultVoltageScaler(), 1.2);
  EXPECT_EQ(meter.VoltageScaler(), 0.6) << "clamped when it is assigned, not before";
  const std::pair<double, double> voltages[] = {{0.6, 0.9}, {0.91, 0.91}, {1.49, 1.49}, {2, 1.5}};
  for (const auto& [assigned, kept] : voltages) {
    meter.SetVoltageScaler(assigned);
    EXPECT_DOUBLE_EQ(meter.VoltageScaler(), kept) << assigned;
  }
  meter.ResetCalibration();
  EXPECT_EQ(meter.CurrentOffset(), 498);
  EXPECT_DOUBLE_EQ(meter.CurrentScaler(), 1 / 15.5);
  EXPECT_DOUBLE_EQ(meter.VoltageScaler(), 1.2);
  // A change by the user scales it.
  meter.SetVoltageScaler(1.26);
  meter.ChangeNominalVoltage(120);
  EXPECT_DOUBLE_EQ(meter.VoltageScaler(), 0.63);
}

TEST(clsKillAWatt, ConvertsSamplesIntoAReading) {
  // 31 counts from the offset of 498 are 2 A, 200 counts from the middle 120 V.
  using Counts = std::vector<std::uint16_t>;
  const std::tuple<Counts, Counts, int, double, double, double> cases[] = {
      // The outer samples take part in the peaks alone, but count in the divisor.
      {{700, 300, 700, 300}, {0, 467, 529, 0}, 500, 240 / 2.82842712474619, 0, 120},
      {{795, 229, 512}, {1023, 529, 0}, 512, 566 * 0.6 / 2.82842712474619, 2.0 / 3, 0},
      // The middle is cut to a whole count: (701 + 300) \ 2.
      {{701, 300, 700}, {498, 467, 498}, 500, 401 * 0.6 / 2.82842712474619, -2.0 / 3, 80},
      {{700, 300}, {529, 467}, 500, 240 / 2.82842712474619, 0, 0},
      {{}, {}, 512, 0, 0, 0}};
  for (const auto& [voltage, current, offset, volts, amps, watts] : cases) {
    SCOPED_TRACE(testing::PrintToString(voltage));
    Meter meter;
    meter.Receive(voltage, current);
    EXPECT_EQ(meter.VoltageOffset(), offset);
    EXPECT_NEAR(meter.Volts(), volts, 1e-9);
    EXPECT_NEAR(meter.Amps(), amps, 1e-12);
    EXPECT_NEAR(meter.Watts(), watts, 1e-9);
    EXPECT_EQ(meter.ShownWatts(), meter.Watts());
    std::vector<double> sampleVolts;
    std::vector<double> sampleAmps;
    EXPECT_EQ(meter.GetSamples(sampleVolts, sampleAmps), !voltage.empty());
    EXPECT_EQ(meter.Timestamp(), At("2026-11-16T20:10:00"));
  }
}

TEST(clsKillAWatt, TakesChannelsThatAreNotSampledForWhatTheyRead) {
  // Without A0 and A4 every reading is -1: no swing, and the current far below its offset.
  Meter meter;
  meter.decoder.ParseBytes(SampleFrame(5, 3, {1, 2, 3}, {.mask = 0x0400}));
  meter.ProcessPacket(meter.decoder);
  EXPECT_NEAR(meter.Amps(), -499 / 15.5 / 3, 1e-9);
}

TEST(clsKillAWatt, StopsReceivingFiveSecondsAfterAReading) {
  Meter meter;
  EXPECT_FALSE(meter.HasReading());
  EXPECT_FALSE(meter.IsReceiving(At("2026-11-16T20:10:00")));
  meter.clock.now = At("2026-11-16T20:10:00.900");
  meter.Receive({700, 300, 700}, {498, 498, 498});
  const std::pair<const char*, bool> cases[] = {
      {"2026-11-16T20:10:00.900", true}, {"2026-11-16T20:10:04.999", true},
      {"2026-11-16T20:10:05", false},    {"2027-11-16T20:10:01", false},
      {"2026-11-16T20:09:58", true},     {"2026-11-16T19:10:00", false}};
  for (const auto& [now, isReceiving] : cases) {
    EXPECT_EQ(meter.IsReceiving(At(now)), isReceiving) << now;
  }
}

TEST(clsKillAWatt, ComparesTheLoadWithThePeakSinceReset) {
  clsKillAWatt meter;
  EXPECT_EQ(meter.PeakFraction(0), NoValue) << "no peak";
  meter.AddReading(120, 0, 200, At("2026-11-16T20:10:00"), 1000);
  meter.AddReading(120, 0, 400, At("2026-11-16T20:10:02"), 3000);
  meter.AddReading(120, 0, 100, At("2026-11-16T20:10:04"), 5000);
  EXPECT_EQ(meter.PeakFraction(0), 0.25);
  EXPECT_EQ(meter.PeakFraction(-1), 0.25);
  EXPECT_EQ(meter.PeakFraction(4), 250.0 / 400) << "two seconds of 400 W, two of 100 W";
  EXPECT_EQ(meter.PeakFraction(86401), 0);
  EXPECT_EQ(meter.PeakFraction(86400), 0.625) << "the one hour there is";
  meter.Statistics().ResetPeak();
  EXPECT_EQ(meter.PeakFraction(0), NoValue);
}

TEST(clsKillAWattDemo, StartsAtARandomLevelWithoutHistory) {
  Meter meter;
  meter.Demo({0, 0, 0.5, 0.5});
  EXPECT_DOUBLE_EQ(meter.Volts(), 118.8);
  EXPECT_DOUBLE_EQ(meter.Amps(), -0.1);
  EXPECT_EQ(meter.Watts(), 280) << "0.5 x 440 + 60";
  meter.Demo({1, 1, 1});
  EXPECT_DOUBLE_EQ(meter.Volts(), 121.2);
  EXPECT_DOUBLE_EQ(meter.Amps(), 0.1);
  EXPECT_DOUBLE_EQ(meter.Watts(), 284.2) << "noise of 1.5 % that leaves the level alone";
  meter.Demo({0.5, 0.5, 0.5});
  EXPECT_EQ(meter.Watts(), 280);
  // The level is computed in single precision.
  Meter single;
  single.Demo({0, 0, 0.1, 0.5});
  EXPECT_EQ(single.Watts(), static_cast<double>(0.1F * 440.0F + 60.0F));
}

TEST(clsKillAWattDemo, DriftsWithTheTimeOfDay) {
  const std::pair<const char*, int> cases[] = {
      {"T05:59:59.999", 0}, {"T06:00:00", 1},  {"T09:30:00", 1},  {"T09:30:00.001", 0},
      {"T16:29:59", 0},     {"T16:30:00", -1}, {"T20:00:00", -1}, {"T20:00:01", 0}};
  for (const auto& [time, direction] : cases) {
    SCOPED_TRACE(time);
    Meter meter;
    // The demo starts at the mean demand of the last hour.
    meter.Statistics().SetDemandRecent(Hour, std::vector<double>{800, 1200});
    const std::string moment = std::string("2026-11-16") + time;
    if (direction == 0) {
      meter.Demo({0.5, 0.5, 0.5}, moment.c_str());
      EXPECT_EQ(meter.Watts(), 1000);
    } else {
      meter.Demo({0.5, 0.5, 0.5, 0.5}, moment.c_str());
      EXPECT_DOUBLE_EQ(meter.Watts(), 1000 + direction * 0.1);
      meter.Demo({0.5, 0.5, 0, 0.5}, moment.c_str());
      EXPECT_DOUBLE_EQ(meter.Watts(), 1000 + direction * 0.1);
    }
  }
}

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

// Each case: one reading a second, the watts of each stretch, and at which second a notice comes.
TEST(MeterAlarm, RaisesNoticesAtTheRightSecond) {
  using Case = std::tuple<const char*, std::int32_t, std::int32_t,
                          std::vector<std::pair<double, int>>, std::vector<int>>;
  for (const auto& [what, duration, interval, stretches, expected] :
       {Case{"above", 60, 600, {{600, 1300}}, {61, 662, 1263}},
        Case{"below", 60, 600, {{99.9, 700}}, {61, 662}},
        Case{"the limits are in range", 1, 60, {{500, 500}, {100, 500}, {300, 100}}, {}},
        Case{"duration 0", 0, 60, {{600, 65}}, {1, 62}},
        Case{"a break starts again", 60, 600, {{600, 30}, {400, 1}, {600, 61}}, {92}},
        Case{"from above to below is no break", 60, 600, {{600, 30}, {50, 31}}, {61}},
        Case{"again within the interval", 60, 600, {{600, 61}, {400, 39}, {600, 600}}, {61, 662}},
        Case{"again after it", 60, 600, {{600, 61}, {400, 939}, {600, 100}}, {61, 1061}},
        Case{"an interval shorter than the duration", 60, 5, {{600, 70}}, {61, 67}}}) {
    Watched alarm(duration, interval);
    std::vector<int> notices;
    int second = 0;
    for (const auto& [watts, seconds] : stretches) {
      for (int i = 0; i < seconds; ++i) {
        alarm.AddReading(watts, 1);
        ++second;
        if (alarm.Tick()) notices.push_back(second);
      }
    }
    EXPECT_EQ(notices, expected) << what;
  }
}

TEST(MeterAlarm, AssignmentsChangeTheCountersAsTheyMust) {
  // The seconds out of range go from 40, and those since the last notice from 640.
  using Case = std::tuple<const char*, void (*)(MeterAlarm&), std::int32_t, std::int32_t>;
  for (const auto& [what, assign, outOfRange, interval] :
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
    assign(alarm);
    EXPECT_EQ(alarm.OutOfRangeSeconds(), outOfRange) << what;
    EXPECT_EQ(alarm.IntervalSeconds(), interval) << what;
  }
}

TEST(MeterAlarm, OffAnswersNoAndOnTheCountersStayAtTheirEnd) {
  Watched alarm;
  alarm.AddReading(600, 1000);
  ASSERT_TRUE(alarm.AlarmTriggered());
  alarm.SetAlarmActive(false);
  alarm.AddReading(600, 1000);
  EXPECT_EQ(alarm.OutOfRangeSeconds(), 0);
  EXPECT_EQ(alarm.IntervalSeconds(), 1000) << "the time since the last notice runs on";
  EXPECT_FALSE(alarm.AlarmTriggered());
  EXPECT_FALSE(alarm.AlarmRepeatDue());
  alarm.SetAlarmActive(true);
  for (int i = 0; i < 3; ++i) alarm.AddReading(600, std::int64_t{1} << 40);
  EXPECT_EQ(alarm.OutOfRangeSeconds(), 0x7FFFFFFF);
  EXPECT_EQ(alarm.IntervalSeconds(), 0x7FFFFFFF);
}

}  // namespace
}  // namespace wattlark
