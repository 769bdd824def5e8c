#include "config/MeterEdit.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "support/Utf8.h"
#include "support/modFormat.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr std::size_t kLongestName = 255;  // a longer name is no key on every system
constexpr std::int64_t kLargestAddress = 32767;
constexpr char32_t kBackspace = 8;

constexpr std::array kVoltages = {ListEntry{"120 Vrms", 120}, ListEntry{"240 Vrms", 240}};
constexpr std::array kFrequencies = {ListEntry{"50 Hz", 50}, ListEntry{"60 Hz", 60}};
constexpr std::array kKillAWattTypes = {ListEntry{"Load (lamp, appliance, etc.)", LoadMeter},
                                        ListEntry{"Generator (solar, wind, etc.)", GeneratorMeter}};
// The numbers carried by the shortest durations and by the repeat of "5 minutes" are not those that
// their texts say; what is stored relies on them.
constexpr std::array kAlarmDurations = {
    ListEntry{"1 second", 0},      ListEntry{"5 seconds", 0},    ListEntry{"10 seconds", 10},
    ListEntry{"15 seconds", 15},   ListEntry{"30 seconds", 30},  ListEntry{"1 minute", 60},
    ListEntry{"5 minutes", 300},   ListEntry{"10 minutes", 600}, ListEntry{"15 minutes", 900},
    ListEntry{"30 minutes", 1800}, ListEntry{"1 hour", 3600}};
constexpr std::array kAlarmIntervals = {ListEntry{"1 minute", 60},     ListEntry{"5 minutes", 30},
                                        ListEntry{"10 minutes", 600},  ListEntry{"15 minutes", 900},
                                        ListEntry{"30 minutes", 1800}, ListEntry{"1 hour", 3600}};

std::optional<std::int16_t> ReadAddress(const std::string& text) {
  const auto address = TextToInteger(text, 0, kLargestAddress);
  if (!address) return std::nullopt;
  return static_cast<std::int16_t>(*address);
}

std::optional<double> ReadLimit(const RegionalSettings& regional, const std::string& text) {
  const auto watts = ParseNumber(regional, text);
  return watts && std::fabs(*watts) != NoValue ? watts : std::nullopt;
}

std::string LimitProblem(const char* field) {
  return std::string(field) + ": Enter a number of watts.";
}

}  // namespace

std::span<const ListEntry> VoltageEntries() {
  return kVoltages;
}
std::span<const ListEntry> FrequencyEntries() {
  return kFrequencies;
}
std::span<const ListEntry> KillAWattTypeEntries() {
  return kKillAWattTypes;
}
std::span<const ListEntry> AlarmDurationEntries() {
  return kAlarmDurations;
}
std::span<const ListEntry> AlarmIntervalEntries() {
  return kAlarmIntervals;
}

bool IsMeterKeyName(const std::string& name) {
  return !name.empty() && name.size() <= kLongestName && name.find('\\') == std::string::npos &&
         name.find('\0') == std::string::npos;
}

std::string MeterNameProblem(const MeterCollection& meters, const clsKillAWatt* meter,
                             const std::string& name) {
  if (Trim(name).empty()) return "The name must not be empty.";
  if (name.find('\\') != std::string::npos) return "The name must not contain \"\\\".";
  if (!IsMeterKeyName(name)) return "The name must not be longer than 255 bytes.";
  const clsKillAWatt* other = meters.FindName(name);
  if (other != nullptr && other != meter) return "Another meter has the name \"" + name + "\".";
  return "";
}

MeterEdit MakeMeterEdit(const clsKillAWatt& meter, const RegionalSettings& regional) {
  const MeterAlarm& alarm = meter.Alarm();
  MeterEdit edit;
  edit.name = meter.Name();
  edit.xbeeAddress = std::to_string(meter.XBeeAddress());
  edit.voltage = FindEntry(VoltageEntries(), meter.NominalVoltage());
  edit.frequency = FindEntry(FrequencyEntries(), meter.NominalFrequency());
  edit.killAWattType = FindEntry(KillAWattTypeEntries(), meter.KillAWattType());
  edit.alarmActive = alarm.AlarmActive();
  edit.upperLimit = FormatNumberAuto(regional, alarm.AlarmUpperLimit());
  edit.lowerLimit = FormatNumberAuto(regional, alarm.AlarmLowerLimit());
  edit.alarmDuration = FindEntry(AlarmDurationEntries(), alarm.AlarmDuration());
  edit.alarmInterval = FindEntry(AlarmIntervalEntries(), alarm.AlarmInterval());
  return edit;
}

std::optional<MeterEditProblem> CheckMeterEdit(const MeterEdit& edit, const MeterCollection& meters,
                                               const clsKillAWatt& meter,
                                               const RegionalSettings& regional) {
  const std::string nameProblem = MeterNameProblem(meters, &meter, edit.name);
  if (!nameProblem.empty()) return {{MeterField::Name, "Name: " + nameProblem}};
  const auto address = ReadAddress(edit.xbeeAddress);
  if (!address) {
    return {{MeterField::XBeeAddress, "XBee Address: Enter a whole number from 0 to 32767."}};
  }
  const clsKillAWatt* other = meters.FindAddress(*address);
  if (other != nullptr && other != &meter) {
    return {
        {MeterField::XBeeAddress, "A Kill-A-Watt with that XBee address is already defined", true}};
  }
  if (!ReadLimit(regional, edit.upperLimit)) {
    return {{MeterField::UpperLimit, LimitProblem("Upper Limit")}};
  }
  if (!ReadLimit(regional, edit.lowerLimit)) {
    return {{MeterField::LowerLimit, LimitProblem("Lower Limit")}};
  }
  return std::nullopt;
}

bool ApplyMeterEdit(const MeterEdit& edit, MeterCollection& meters, clsKillAWatt& meter,
                    const RegionalSettings& regional) {
  const std::int16_t address = ReadAddress(edit.xbeeAddress).value_or(meter.XBeeAddress());
  if (meters.FindAddress(meter.XBeeAddress()) == &meter) {
    meters.ChangeAddress(meter, address);
  } else {
    meter.SetXBeeAddress(address);
  }
  meter.SetName(edit.name);
  const double voltage = NumberAt(VoltageEntries(), edit.voltage);
  if (voltage != 0 && voltage != meter.NominalVoltage()) meter.ChangeNominalVoltage(voltage);
  const double frequency = NumberAt(FrequencyEntries(), edit.frequency);
  if (frequency != 0) meter.SetNominalFrequency(frequency);
  meter.SetKillAWattType(NumberAt(KillAWattTypeEntries(), edit.killAWattType));

  MeterAlarm& alarm = meter.Alarm();
  alarm.SetAlarmActive(edit.alarmActive);
  alarm.SetAlarmUpperLimit(ReadLimit(regional, edit.upperLimit).value_or(alarm.AlarmUpperLimit()));
  alarm.SetAlarmLowerLimit(ReadLimit(regional, edit.lowerLimit).value_or(alarm.AlarmLowerLimit()));
  alarm.SetAlarmDuration(NumberAt(AlarmDurationEntries(), edit.alarmDuration));
  alarm.SetAlarmInterval(NumberAt(AlarmIntervalEntries(), edit.alarmInterval));
  if (alarm.AlarmInterval() >= alarm.AlarmDuration()) return false;
  alarm.SetAlarmInterval(alarm.AlarmDuration());
  return true;
}

bool IsLimitCharacter(char32_t character, const RegionalSettings& regional) {
  std::string typed;
  AppendUtf8(typed, character);
  constexpr std::u32string_view kCharacters = U"+-.0123456789";
  return character == kBackspace || kCharacters.find(character) != std::u32string_view::npos ||
         typed == regional.decimalSeparator;
}

}  // namespace wattlark
