#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "config/MeterEdit.h"
#include "support/NoValue.h"
#include "support/RegionalForms.h"

namespace wattlark {
namespace {

const RegionalSettings kUnitedStates = RegionalSettings::UnitedStates();

struct MeterEditTest : testing::Test {
  MeterEditTest() {
    Add("Kitchen", 5);
    Add("Office", 6);
  }

  void Add(const char* name, std::int16_t address) {
    auto meter = std::make_unique<clsKillAWatt>();
    meter->SetName(name);
    meter->SetXBeeAddress(address);
    ASSERT_TRUE(meters.Add(std::move(meter)));
  }
  MeterEdit Filled() { return MakeMeterEdit(Kitchen(), kUnitedStates); }
  bool Apply(const MeterEdit& edit) {
    return ApplyMeterEdit(edit, meters, Kitchen(), kUnitedStates);
  }
  clsKillAWatt& Kitchen() { return meters[0]; }
  MeterAlarm& Alarm() { return Kitchen().Alarm(); }

  MeterCollection meters;
};

TEST_F(MeterEditTest, ShowsTheMeter) {
  Kitchen().SetNominalVoltage(239.6);
  Kitchen().SetNominalFrequency(50);
  Kitchen().SetKillAWattType(GeneratorMeter);
  Alarm().SetAlarmActive(true);
  Alarm().SetAlarmUpperLimit(1500);
  Alarm().SetAlarmLowerLimit(98.7);
  Alarm().SetAlarmDuration(0);
  Alarm().SetAlarmInterval(30);
  const MeterEdit edit = Filled();
  EXPECT_EQ(edit.name, "Kitchen");
  EXPECT_EQ(edit.xbeeAddress, "5");
  EXPECT_EQ(edit.voltage, 1);
  EXPECT_EQ(edit.frequency, 0);
  EXPECT_EQ(edit.killAWattType, 1);
  EXPECT_TRUE(edit.alarmActive);
  EXPECT_EQ(edit.upperLimit, "1,500.0");
  EXPECT_EQ(edit.lowerLimit, "98.70");
  EXPECT_EQ(edit.alarmDuration, 0) << "the first entry that carries 0";
  EXPECT_EQ(edit.alarmInterval, 1) << "\"5 minutes\" carries 30";
  EXPECT_EQ(MakeMeterEdit(Kitchen(), Germany()).upperLimit, "1.500,0");
}

TEST_F(MeterEditTest, ShowsNothingForWhatItsListsLack) {
  Kitchen().SetNominalVoltage(100);
  Kitchen().SetNominalFrequency(0);
  Alarm().SetAlarmUpperLimit(NoValue);
  Alarm().SetAlarmDuration(5);
  Alarm().SetAlarmInterval(300);
  const MeterEdit edit = Filled();
  EXPECT_EQ(edit.voltage, -1);
  EXPECT_EQ(edit.frequency, -1);
  EXPECT_EQ(edit.upperLimit, "");
  EXPECT_EQ(edit.alarmDuration, -1);
  EXPECT_EQ(edit.alarmInterval, -1);
}

struct ProblemCase {
  const char* name;
  std::function<void(MeterEdit&)> change;
  std::optional<MeterField> field;
  const char* text;
};

class CheckTest : public MeterEditTest, public testing::WithParamInterface<ProblemCase> {};

TEST_P(CheckTest, NamesTheFirstFieldThatDoesNotFit) {
  MeterEdit edit = Filled();
  GetParam().change(edit);
  const auto problem = CheckMeterEdit(edit, meters, Kitchen(), kUnitedStates);
  ASSERT_EQ(problem.has_value(), GetParam().field.has_value()) << problem->text;
  if (!problem) return;
  EXPECT_EQ(problem->field, *GetParam().field);
  EXPECT_EQ(problem->text, GetParam().text);
}

constexpr const char* kAddressText = "XBee Address: Enter a whole number from 0 to 32767.";
constexpr const char* kUpperText = "Upper Limit: Enter a number of watts.";
constexpr const char* kLowerText = "Lower Limit: Enter a number of watts.";

std::function<void(MeterEdit&)> Set(std::string MeterEdit::*field, std::string text) {
  return [field, text](MeterEdit& edit) { edit.*field = text; };
}

INSTANTIATE_TEST_SUITE_P(
    Entries, CheckTest,
    testing::Values(ProblemCase{"Untouched", [](MeterEdit&) {}, {}, ""},
                    ProblemCase{"OwnNameInOtherCase", Set(&MeterEdit::name, "KITCHEN"), {}, ""},
                    ProblemCase{"NoName", Set(&MeterEdit::name, " "), MeterField::Name,
                                "Name: The name must not be empty."},
                    ProblemCase{"Backslash", Set(&MeterEdit::name, "a\\b"), MeterField::Name,
                                "Name: The name must not contain \"\\\"."},
                    ProblemCase{"TakenName", Set(&MeterEdit::name, "office"), MeterField::Name,
                                "Name: Another meter has the name \"office\"."},
                    ProblemCase{"LargestAddress", Set(&MeterEdit::xbeeAddress, "32767"), {}, ""},
                    ProblemCase{"SmallestAddress", Set(&MeterEdit::xbeeAddress, " 0"), {}, ""},
                    ProblemCase{"AddressTooLarge", Set(&MeterEdit::xbeeAddress, "32768"),
                                MeterField::XBeeAddress, kAddressText},
                    ProblemCase{"AddressNegative", Set(&MeterEdit::xbeeAddress, "-1"),
                                MeterField::XBeeAddress, kAddressText},
                    ProblemCase{"AddressWithDecimals", Set(&MeterEdit::xbeeAddress, "5.5"),
                                MeterField::XBeeAddress, kAddressText},
                    ProblemCase{"NoAddress", Set(&MeterEdit::xbeeAddress, ""),
                                MeterField::XBeeAddress, kAddressText},
                    ProblemCase{"TakenAddress", Set(&MeterEdit::xbeeAddress, "6"),
                                MeterField::XBeeAddress,
                                "A Kill-A-Watt with that XBee address is already defined"},
                    ProblemCase{"GroupedLimit", Set(&MeterEdit::upperLimit, "1,500.5"), {}, ""},
                    ProblemCase{"NoUpperLimit", Set(&MeterEdit::upperLimit, ""),
                                MeterField::UpperLimit, kUpperText},
                    ProblemCase{"LimitWithUnit", Set(&MeterEdit::upperLimit, "500 W"),
                                MeterField::UpperLimit, kUpperText},
                    ProblemCase{"LimitOfTheMarkersSize",
                                Set(&MeterEdit::upperLimit, "1" + std::string(308, '0')),
                                MeterField::UpperLimit, kUpperText},
                    ProblemCase{"LowerLimit", Set(&MeterEdit::lowerLimit, "-"),
                                MeterField::LowerLimit, kLowerText},
                    ProblemCase{"FirstOfTwo",
                                [](MeterEdit& edit) {
                                  edit.lowerLimit = "x";
                                  edit.xbeeAddress = "x";
                                },
                                MeterField::XBeeAddress, kAddressText}),
    [](const auto& problem) { return problem.param.name; });

TEST_F(MeterEditTest, RefusesTheAddressOfAnotherMeterForANewOne) {
  const clsKillAWatt fresh;
  MeterEdit edit = MakeMeterEdit(fresh, kUnitedStates);
  EXPECT_FALSE(CheckMeterEdit(edit, meters, fresh, kUnitedStates));
  edit.xbeeAddress = "5";
  EXPECT_TRUE(CheckMeterEdit(edit, meters, fresh, kUnitedStates));
}

TEST_F(MeterEditTest, WritesEveryField) {
  const MeterEdit edit{"Solar", "77", 1, 0, 1, true, "2,500", "-10.5", 3, 2};
  ASSERT_FALSE(CheckMeterEdit(edit, meters, Kitchen(), kUnitedStates));
  EXPECT_FALSE(Apply(edit));
  EXPECT_EQ(Kitchen().Name(), "Solar");
  EXPECT_EQ(Kitchen().XBeeAddress(), 77);
  EXPECT_EQ(Kitchen().NominalVoltage(), 240);
  EXPECT_EQ(Kitchen().NominalFrequency(), 50);
  EXPECT_EQ(Kitchen().KillAWattType(), GeneratorMeter);
  EXPECT_TRUE(Alarm().AlarmActive());
  EXPECT_EQ(Alarm().AlarmUpperLimit(), 2500);
  EXPECT_EQ(Alarm().AlarmLowerLimit(), -10.5);
  EXPECT_EQ(Alarm().AlarmDuration(), 15);
  EXPECT_EQ(Alarm().AlarmInterval(), 600);
}

TEST_F(MeterEditTest, TakesFramesFromTheNewAddressAtOnce) {
  MeterEdit edit = Filled();
  edit.xbeeAddress = "77";
  Apply(edit);
  EXPECT_EQ(meters.FindAddress(77), &Kitchen());
  EXPECT_EQ(meters.FindAddress(5), nullptr);
}

TEST_F(MeterEditTest, LeavesTheCollectionAloneForANewMeter) {
  clsKillAWatt fresh;
  MeterEdit edit = MakeMeterEdit(fresh, kUnitedStates);
  edit.xbeeAddress = "77";
  ApplyMeterEdit(edit, meters, fresh, kUnitedStates);
  EXPECT_EQ(fresh.XBeeAddress(), 77);
  EXPECT_EQ(meters.FindAddress(77), nullptr);
}

TEST_F(MeterEditTest, ScalesTheCalibrationWithTheVoltage) {
  Kitchen().SetVoltageScaler(0.66);  // 1.1 times the default of 120 V
  MeterEdit edit = Filled();
  Apply(edit);
  EXPECT_EQ(Kitchen().VoltageScaler(), 0.66) << "the same voltage changes nothing";
  edit.voltage = 1;
  Apply(edit);
  EXPECT_DOUBLE_EQ(Kitchen().VoltageScaler(), 1.32);
}

TEST_F(MeterEditTest, WritesZeroForAListWithoutASelection) {
  Kitchen().SetNominalVoltage(100);
  Kitchen().SetKillAWattType(GeneratorMeter);
  MeterEdit edit = Filled();
  edit.frequency = edit.killAWattType = edit.alarmDuration = edit.alarmInterval = -1;
  EXPECT_FALSE(Apply(edit));
  EXPECT_EQ(Kitchen().NominalVoltage(), 100);
  EXPECT_EQ(Kitchen().NominalFrequency(), 60);
  EXPECT_EQ(Kitchen().KillAWattType(), LoadMeter);
  EXPECT_EQ(Alarm().AlarmDuration(), 0);
  EXPECT_EQ(Alarm().AlarmInterval(), 0);
}

struct TimesCase {
  const char* duration;
  const char* interval;
  std::int32_t durationSeconds;
  std::int32_t intervalSeconds;
  bool raised;
};

int IndexOf(std::span<const ListEntry> entries, const std::string& text) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].text == text) return static_cast<int>(i);
  }
  return -1;
}

class TimesTest : public MeterEditTest, public testing::WithParamInterface<TimesCase> {};

TEST_P(TimesTest, RaisesTheIntervalToTheDuration) {
  MeterEdit edit = Filled();
  edit.alarmDuration = IndexOf(AlarmDurationEntries(), GetParam().duration);
  edit.alarmInterval = IndexOf(AlarmIntervalEntries(), GetParam().interval);
  ASSERT_NE(edit.alarmDuration, -1);
  ASSERT_NE(edit.alarmInterval, -1);
  EXPECT_EQ(Apply(edit), GetParam().raised);
  EXPECT_EQ(Alarm().AlarmDuration(), GetParam().durationSeconds);
  EXPECT_EQ(Alarm().AlarmInterval(), GetParam().intervalSeconds);
}

INSTANTIATE_TEST_SUITE_P(Lists, TimesTest,
                         testing::Values(TimesCase{"1 hour", "1 minute", 3600, 3600, true},
                                         TimesCase{"30 seconds", "5 minutes", 30, 30, false},
                                         TimesCase{"5 minutes", "5 minutes", 300, 300, true},
                                         TimesCase{"1 second", "1 minute", 0, 60, false},
                                         TimesCase{"5 seconds", "10 minutes", 0, 600, false},
                                         TimesCase{"10 minutes", "30 minutes", 600, 1800, false},
                                         TimesCase{"1 hour", "1 hour", 3600, 3600, false}));

struct KeyCase {
  const char* region;
  RegionalSettings regional;
  std::u32string typed;
  std::u32string passed;
};

class LimitKeyTest : public testing::TestWithParam<KeyCase> {};

TEST_P(LimitKeyTest, LetsOnlyNumbersThrough) {
  std::u32string passed;
  for (const char32_t character : GetParam().typed) {
    if (IsLimitCharacter(character, GetParam().regional)) passed += character;
  }
  EXPECT_EQ(passed, GetParam().passed);
}

RegionalSettings ArabicSeparator() {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  regional.decimalSeparator = "\u066B";
  return regional;
}

INSTANTIATE_TEST_SUITE_P(
    Regions, LimitKeyTest,
    testing::Values(KeyCase{"UnitedStates", kUnitedStates, U"12a.5", U"12.5"},
                    KeyCase{"Comma", kUnitedStates, U"1,5", U"15"},
                    KeyCase{"Others", kUnitedStates, U"+-0987\b\r\tDE e$\u0663", U"+-0987\b"},
                    KeyCase{"Germany", Germany(), U"-1,5.0 €", U"-1,5.0"},
                    KeyCase{"Arabic", ArabicSeparator(), U"1\u066B5,", U"1\u066B5"}),
    [](const auto& keys) { return keys.param.region; });

}  // namespace
}  // namespace wattlark
