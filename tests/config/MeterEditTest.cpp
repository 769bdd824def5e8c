#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "config/MeterCalibration.h"
#include "config/MeterEdit.h"
#include "support/NoValue.h"
#include "support/RegionalForms.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

using enum CalibrationStep;

const RegionalSettings kUnitedStates = RegionalSettings::UnitedStates();

struct MeterEditTest : testing::Test {
  MeterEditTest() {
    AddMeter(meters, "Kitchen", 5);
    AddMeter(meters, "Office", 6);
  }

  MeterEdit Filled() { return MakeMeterEdit(Kitchen(), kUnitedStates); }
  bool Apply(const MeterEdit& edit) {
    return ApplyMeterEdit(edit, meters, Kitchen(), kUnitedStates);
  }
  clsKillAWatt& Kitchen() { return meters[0]; }
  MeterAlarm& Alarm() { return Kitchen().Alarm(); }

  MeterCollection meters;
};

TEST_F(MeterEditTest, NamesTheFirstFieldThatDoesNotFit) {
  constexpr const char* kAddressText = "XBee Address: Enter a whole number from 0 to 32767.";
  constexpr const char* kUpperText = "Upper Limit: Enter a number of watts.";
  using E = MeterEdit;
  struct Row {
    std::string E::*entry;
    std::string typed;
    std::string text = {};  ///< empty when it fits; begins with the field's name
  };
  for (const auto& [entry, typed, text] :
       {Row{&E::name, "KITCHEN"}, Row{&E::name, " ", "Name: The name must not be empty."},
        Row{&E::name, "a\\b", "Name: The name must not contain \"\\\"."},
        Row{&E::name, "office", "Name: Another meter has the name \"office\"."},
        Row{&E::name, std::string(255, 'n')},
        Row{&E::name, std::string(256, 'n'), "Name: The name must not be longer than 255 bytes."},
        Row{&E::xbeeAddress, "32767"}, Row{&E::xbeeAddress, " 0"},
        Row{&E::xbeeAddress, "32768", kAddressText}, Row{&E::xbeeAddress, "-1", kAddressText},
        Row{&E::xbeeAddress, "5.5", kAddressText}, Row{&E::xbeeAddress, "", kAddressText},
        Row{&E::xbeeAddress, "6", "A Kill-A-Watt with that XBee address is already defined"},
        Row{&E::upperLimit, "1,500.5"}, Row{&E::upperLimit, "", kUpperText},
        Row{&E::upperLimit, "500 W", kUpperText},
        Row{&E::upperLimit, "1" + std::string(308, '0'), kUpperText},
        Row{&E::lowerLimit, "-", "Lower Limit: Enter a number of watts."}}) {
    MeterEdit edit = Filled();
    edit.*entry = typed;
    const auto problem = CheckMeterEdit(edit, meters, Kitchen(), kUnitedStates);
    EXPECT_EQ(problem ? problem->text : "", text) << typed;
    if (!problem) continue;
    EXPECT_EQ(problem->field, entry == &E::name          ? MeterField::Name
                              : entry == &E::xbeeAddress ? MeterField::XBeeAddress
                              : entry == &E::upperLimit  ? MeterField::UpperLimit
                                                         : MeterField::LowerLimit);
  }
  MeterEdit edit = Filled();
  edit.lowerLimit = edit.xbeeAddress = "x";
  EXPECT_EQ(CheckMeterEdit(edit, meters, Kitchen(), kUnitedStates)->field, MeterField::XBeeAddress);
}

TEST_F(MeterEditTest, ANewMeterNeedsAFreeAddressAndIsLeftOutOfTheCollection) {
  clsKillAWatt fresh;
  MeterEdit edit = MakeMeterEdit(fresh, kUnitedStates);
  EXPECT_FALSE(CheckMeterEdit(edit, meters, fresh, kUnitedStates));
  edit.xbeeAddress = "5";
  EXPECT_TRUE(CheckMeterEdit(edit, meters, fresh, kUnitedStates));
  edit.xbeeAddress = "77";
  ApplyMeterEdit(edit, meters, fresh, kUnitedStates);
  EXPECT_EQ(fresh.XBeeAddress(), 77);
  EXPECT_EQ(meters.FindAddress(77), nullptr);
}

TEST_F(MeterEditTest, WritesAndShowsEveryField) {
  Kitchen().SetVoltageScaler(0.66);  // 1.1 times the default of 120 V
  Apply(Filled());
  EXPECT_EQ(Kitchen().VoltageScaler(), 0.66) << "the same voltage changes nothing";
  const MeterEdit edit{"Solar", "77", 1, 0, 1, true, "2,500", "-10.5", 3, 2};
  ASSERT_FALSE(CheckMeterEdit(edit, meters, Kitchen(), kUnitedStates));
  EXPECT_FALSE(Apply(edit));
  EXPECT_EQ(Kitchen().Name(), "Solar");
  EXPECT_EQ(meters.FindAddress(77), &Kitchen()) << "frames come from there at once";
  EXPECT_EQ(meters.FindAddress(5), nullptr);
  EXPECT_EQ(Kitchen().NominalVoltage(), 240);
  EXPECT_DOUBLE_EQ(Kitchen().VoltageScaler(), 1.32);
  EXPECT_EQ(Kitchen().NominalFrequency(), 50);
  EXPECT_EQ(Kitchen().KillAWattType(), GeneratorMeter);
  EXPECT_TRUE(Alarm().AlarmActive());
  EXPECT_EQ(Alarm().AlarmUpperLimit(), 2500);
  EXPECT_EQ(Alarm().AlarmLowerLimit(), -10.5);
  EXPECT_EQ(Alarm().AlarmDuration(), 15);
  EXPECT_EQ(Alarm().AlarmInterval(), 600);
  Kitchen().SetNominalVoltage(239.6);  // shown by the entry beside it
  const auto [name, address, voltage, frequency, type, active, upper, lower, duration, interval] =
      Filled();
  EXPECT_EQ(name + ' ' + address + ' ' + upper + ' ' + lower, "Solar 77 2,500.0 -10.500");
  EXPECT_EQ((std::vector{voltage, frequency, type, duration, interval}),
            (std::vector{1, 0, 1, 3, 2}));
  EXPECT_TRUE(active);
  EXPECT_EQ(MakeMeterEdit(Kitchen(), Germany()).upperLimit, "2.500,0");
  Alarm().SetAlarmDuration(0);
  Alarm().SetAlarmInterval(30);
  EXPECT_EQ(Filled().alarmDuration, 0) << "the first entry that carries 0";
  EXPECT_EQ(Filled().alarmInterval, 1) << "\"5 minutes\" carries 30";
}

TEST_F(MeterEditTest, ShowsNothingForWhatItsListsLackAndWritesZeroForIt) {
  Kitchen().SetNominalVoltage(100);
  Kitchen().SetKillAWattType(GeneratorMeter);
  Alarm().SetAlarmUpperLimit(NoValue);
  Alarm().SetAlarmDuration(5);
  Alarm().SetAlarmInterval(300);
  MeterEdit edit = Filled();
  EXPECT_THAT((std::vector{edit.voltage, edit.alarmDuration, edit.alarmInterval}),
              testing::Each(-1));
  EXPECT_EQ(edit.upperLimit, "");
  edit.upperLimit = "1";
  edit.frequency = edit.killAWattType = -1;
  EXPECT_FALSE(Apply(edit));
  EXPECT_EQ(Kitchen().NominalVoltage(), 100);
  EXPECT_EQ(Kitchen().NominalFrequency(), 60);
  EXPECT_EQ(Kitchen().KillAWattType(), LoadMeter);
  EXPECT_EQ(Alarm().AlarmDuration(), 0);
  EXPECT_EQ(Alarm().AlarmInterval(), 0);
}

int IndexOf(std::span<const ListEntry> entries, const std::string& text) {
  const auto found = std::ranges::find(entries, text, &ListEntry::text);
  EXPECT_NE(found, entries.end()) << text;
  return static_cast<int>(found - entries.begin());
}

TEST_F(MeterEditTest, RaisesTheIntervalToTheDuration) {
  using Row = std::tuple<const char*, const char*, std::int32_t, std::int32_t, bool>;
  for (const auto& [duration, interval, durationSeconds, intervalSeconds, raised] :
       {Row{"1 hour", "1 minute", 3600, 3600, true}, Row{"30 seconds", "5 minutes", 30, 30, false},
        Row{"5 minutes", "5 minutes", 300, 300, true}, Row{"1 second", "1 minute", 0, 60, false},
        Row{"5 seconds", "10 minutes", 0, 600, false},
        Row{"1 hour", "1 hour", 3600, 3600, false}}) {
    MeterEdit edit = Filled();
    edit.alarmDuration = IndexOf(AlarmDurationEntries(), duration);
    edit.alarmInterval = IndexOf(AlarmIntervalEntries(), interval);
    EXPECT_EQ(Apply(edit), raised) << duration;
    EXPECT_EQ(Alarm().AlarmDuration(), durationSeconds) << duration;
    EXPECT_EQ(Alarm().AlarmInterval(), intervalSeconds) << duration;
  }
}

double ValueOf(const clsKillAWatt& meter, CalibrationStep step) {
  if (step == VoltageScaler) return meter.VoltageScaler();
  return step == CurrentOffset ? meter.CurrentOffset() : meter.CurrentScaler();
}

// From 0.6 volts/bit, 498 counts and 0.0625 amps/bit; the scales are limited to 0.75 and 1.25 times
// 0.6 and 1 / 15.5, the offset to 0 and 1023.
TEST(MeterCalibrationTest, AdjustsFromTheStartingValuesWithinTheLimits) {
  clsKillAWatt meter;
  meter.SetCurrentScaler(0.0625);
  MeterCalibration calibration(meter);
  using Row = std::tuple<CalibrationStep, int, double, const char*, bool>;
  for (const auto& [step, position, value, text, isLimited] :
       {Row{VoltageScaler, 0, 0.6, "0.6 volts/bit", false},
        Row{VoltageScaler, 10, 0.54, "0.54 volts/bit", false},
        Row{VoltageScaler, 100, 0.45, "0.45 volts/bit", true},
        Row{VoltageScaler, -100, 0.75, "0.75 volts/bit", true},
        Row{CurrentOffset, 1, 499, "499 counts", false},
        Row{CurrentScaler, 20, 0.05, "0.05 amps/bit", false},
        Row{CurrentScaler, 100, 0.75 / 15.5, "0.0483870967741935 amps/bit", true},
        Row{CurrentScaler, -100, 1.25 / 15.5, "0.0806451612903226 amps/bit", true}}) {
    calibration.Adjust(step, position);
    EXPECT_NEAR(ValueOf(meter, step), value, 1e-15) << text;
    EXPECT_EQ(calibration.ValueText(step, RegionalSettings::UnitedStates()), text);
    EXPECT_EQ(calibration.IsLimited(step), isLimited) << text;
  }
  calibration.Adjust(CurrentScaler, 0);
  EXPECT_EQ(calibration.ValueText(CurrentScaler, Germany()), "0,0625 amps/bit");
}

TEST(MeterCalibrationTest, BackAtZeroTheValuesAreTheSameToTheLastBit) {
  clsKillAWatt meter;
  meter.SetVoltageScaler(0.6123456789012345);
  meter.SetCurrentOffset(1000);
  meter.SetCurrentScaler(0.0712345678901234);
  MeterCalibration calibration(meter);
  for (const auto step : {VoltageScaler, CurrentOffset, CurrentScaler}) {
    const double before = ValueOf(meter, step);
    for (int back = 100; back > 0; --back) calibration.Adjust(step, back);
    EXPECT_NE(ValueOf(meter, step), before);
    calibration.Adjust(step, 0);
    EXPECT_EQ(ValueOf(meter, step), before);
  }
}

}  // namespace
}  // namespace wattlark
