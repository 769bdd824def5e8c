#include "cli/MeterJson.h"

#include <array>
#include <span>

namespace wattlark {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array kIntervalNames{"Minute", "Hour", "Day", "Week", "Month", "Year"};
constexpr std::array kPeriodNames{"Yesterday", "Today",  "ThisWeek",  "ThisMonth",
                                  "ThisYear",  "ToDate", "SinceReset"};
static_assert(kIntervalNames.size() == IntervalCount && kPeriodNames.size() == PeriodCount);

Json NumberToJson(double value) {
  return HasValue(value) ? Json(value) : Json();
}

Json SeriesToJson(std::span<const double> series) {
  Json json = Json::array();
  for (const double entry : series) json.push_back(NumberToJson(entry));
  return json;
}

template <typename Value>
Json IntervalsToJson(Value value) {
  Json json;
  for (int i = 0; i < IntervalCount; ++i) {
    json[kIntervalNames[static_cast<std::size_t>(i)]] = SeriesToJson(value(i));
  }
  return json;
}

template <typename Value>
Json PeriodsToJson(Value value) {
  Json json;
  for (int i = 0; i < PeriodCount; ++i) {
    json[kPeriodNames[static_cast<std::size_t>(i)]] = value(i);
  }
  return json;
}

}  // namespace

Json MomentToJson(DateTime moment) {
  return moment.IsNever() ? Json() : Json(moment.ToIso());
}

Json MeterToJson(const clsKillAWatt& meter, DateTime now) {
  const MeterStatistics& statistics = meter.Statistics();
  const MeterAlarm& alarm = meter.Alarm();
  Json json;
  json["Name"] = meter.Name();
  json["XBeeAddress"] = meter.XBeeAddress();
  json["KillAWattType"] = meter.KillAWattType();
  json["Volts"] = NumberToJson(meter.ShownVolts());
  json["Amps"] = NumberToJson(meter.ShownAmps());
  json["Watts"] = NumberToJson(meter.ShownWatts());
  json["Timestamp"] = MomentToJson(meter.Timestamp());
  json["IsReceiving"] = !now.IsNever() && meter.IsReceiving(now);
  json["AlarmTriggered"] = alarm.AlarmTriggered();
  json["AlarmRepeatDue"] = alarm.AlarmRepeatDue();
  json["OutOfRangeSeconds"] = alarm.OutOfRangeSeconds();
  json["IntervalSeconds"] = alarm.IntervalSeconds();
  json["DemandRecent"] = IntervalsToJson([&](int i) { return statistics.DemandRecent(i); });
  json["UsageRecent"] = IntervalsToJson([&](int i) { return statistics.UsageRecent(i); });
  json["Usage"] = PeriodsToJson([&](int i) { return NumberToJson(statistics.Usage(i)); });
  json["Peak"] = PeriodsToJson([&](int i) { return NumberToJson(statistics.Peak(i)); });
  json["PeakTime"] = PeriodsToJson([&](int i) { return MomentToJson(statistics.PeakTime(i)); });
  return json;
}

void AppendMeterSettings(const clsKillAWatt& meter, Json& json) {
  const MeterAlarm& alarm = meter.Alarm();
  json["NominalVoltage"] = meter.NominalVoltage();
  json["NominalFrequency"] = meter.NominalFrequency();
  json["CurrentOffset"] = meter.CurrentOffset();
  json["CurrentScaler"] = meter.CurrentScaler();
  json["VoltageScaler"] = meter.VoltageScaler();
  json["AlarmActive"] = alarm.AlarmActive();
  json["AlarmUpperLimit"] = alarm.AlarmUpperLimit();
  json["AlarmLowerLimit"] = alarm.AlarmLowerLimit();
  json["AlarmDuration"] = alarm.AlarmDuration();
  json["AlarmInterval"] = alarm.AlarmInterval();
}

bool IsUtf8(const std::string& text) {
  try {
    (void)Json(text).dump();
    return true;
  } catch (const Json::type_error&) {
    return false;
  }
}

std::string JsonText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace wattlark
