#include "app/RecentChartView.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>

#include "app/Units.h"
#include "support/modFormat.h"
#include "support/modSeries.h"

namespace wattlark {

namespace {

// 1 January 1980 00:00, where x is 0.
constexpr DateTime kBase = DateTime::FromMilliseconds(315'532'800'000);
constexpr std::int64_t kBaseYear = 1980;
constexpr std::int64_t kMonthsPerYear = 12;
constexpr std::int64_t kMillisecondsPerYear = 366LL * 86'400'000;

struct SlotForm {
  std::int64_t milliseconds;  ///< of one slot; 0 for months
  std::int64_t lead;          ///< slots that the last one lies behind the last reading's
  std::string_view axisPattern;
  std::string_view hoverWords;
  std::string_view hoverPattern;
};

constexpr std::array<SlotForm, IntervalCount> kSlots{{
    {1000, 1, "hh:mm:ssAP", " @ ", "h:mm:ss AP"},
    {60'000, 1, "hh:mmAP", " for minute ending ", "h:mm AP"},
    {3'600'000, 1, "hhAP", " for hour ending ", "h AP"},
    {86'400'000, 0, "ddd", " for ", "dddd"},
    {86'400'000, 0, "ddMMM", " for ", "ddd MMM d, yyyy"},
    {0, 0, "MMM", " for ", "MMMM yyyy"},  // the axis adds two digits of the year
}};

int CheckedInterval(int interval) {
  return ChosenIndex(interval, IntervalCount);
}

const SlotForm& Slots(int interval) {
  return kSlots[static_cast<std::size_t>(CheckedInterval(interval))];
}

std::int64_t SlotOf(int interval, DateTime time) {
  switch (interval) {
    case Minute:
      return kBase.SecondsTo(time);
    case Hour:
      return kBase.MinutesTo(time);
    case Day:
      return kBase.HoursTo(time);
    case Year:
      return kBase.MonthsTo(time);
    default:
      return kBase.DaysTo(time);
  }
}

double SumSeries(const std::vector<double>& series) {
  double sum = 0;
  bool hasAny = false;
  for (const double value : series) {
    if (!HasValue(value)) continue;
    sum += value;
    hasAny = true;
  }
  return hasAny ? sum : NoValue;
}

std::string Mass(const RegionalSettings& regional, double pounds) {
  return FormatNumberAuto(regional, pounds, AutomaticDecimals, "---") + " lbs";
}

void AddPower(RecentChartView& view, const MeterAlarm& alarm, const RegionalSettings& regional) {
  view.axisTitle = "W";
  view.header = FormatPower(regional, AverageSeries(view.y), 0) + " (average)";
  if (alarm.AlarmActive()) {
    view.zones = {alarm.AlarmLowerLimit(), alarm.AlarmUpperLimit()};
  }
}

void AddTotal(RecentChartView& view, int unit, const RegionalSettings& regional) {
  view.filledSteps = true;
  const double sum = SumSeries(view.y);
  if (unit == EnergyUnit) {
    view.axisTitle = "Wh";
    view.header = FormatEnergy(regional, sum, 0);
  } else if (unit == CostUnit) {
    view.header = FormatCurrencyAuto(regional, sum);
  } else {
    view.axisTitle = "lbs";
    view.header = Mass(regional, sum);
  }
  view.header += " (total)";
}

// The moment of slot value `x` of an interval (0..5).
DateTime SlotTime(int interval, std::int64_t x) {
  // Only the years 1 to 9999 have names; the first bound keeps the arithmetic within its type.
  constexpr std::int64_t kMostYears = 10'000;
  const std::int64_t milliseconds = Slots(interval).milliseconds;
  const std::int64_t perYear =
      milliseconds == 0 ? kMonthsPerYear : kMillisecondsPerYear / milliseconds;
  if (x < -kMostYears * perYear || x > kMostYears * perYear) return DateTime();
  CivilTime civil;
  if (milliseconds == 0) {
    const std::int64_t month = kBaseYear * kMonthsPerYear + x;
    civil.year = static_cast<int>(month / kMonthsPerYear);
    civil.month = static_cast<int>(month % kMonthsPerYear) + 1;
  } else {
    civil = kBase.PlusMilliseconds(x * milliseconds).Civil();
  }
  return DateTime::FromCivil(civil).value_or(DateTime());
}

}  // namespace

RecentChartView MakeRecentChartView(const clsKillAWatt& meter, const AppSettings& settings,
                                    const RegionalSettings& regional, DateTime now) {
  const int unit = ChosenIndex(settings.RecentUnit, UnitCount);
  const int interval = ChosenIndex(settings.RecentInterval, IntervalCount);
  const MeterStatistics& statistics = meter.Statistics();
  const auto series =
      unit == PowerUnit ? statistics.DemandRecent(interval) : statistics.UsageRecent(interval);
  RecentChartView view;
  view.y.assign(series.begin(), series.end());
  if (unit == CostUnit || unit == CO2Unit) {
    const double rate = unit == CostUnit ? settings.Mils : settings.CO2perKWh;
    std::ranges::transform(view.y, view.y.begin(),
                           [rate](double wattHours) { return AtRate(wattHours, rate); });
  }
  const DateTime time = meter.Timestamp().IsNever() ? now : meter.Timestamp();
  view.x.resize(view.y.size());
  std::iota(
      view.x.begin(), view.x.end(),
      SlotOf(interval, time) + Slots(interval).lead + 1 - static_cast<std::int64_t>(view.x.size()));
  if (unit == PowerUnit) {
    AddPower(view, meter.Alarm(), regional);
  } else {
    AddTotal(view, unit, regional);
  }
  return view;
}

std::string RecentAxisLabel(int interval, std::int64_t x, const RegionalSettings& regional) {
  const DateTime time = SlotTime(interval, x);
  if (time.IsNever()) return "";
  std::string label = FormatDateTime(regional, time, Slots(interval).axisPattern);
  if (CheckedInterval(interval) == Year) {
    label += FormatDateTime(regional, time, "yyyy").substr(2);
  }
  return label;
}

std::string RecentHoverText(int unit, int interval, std::int64_t x, double value,
                            const RegionalSettings& regional) {
  std::string text;
  switch (ChosenIndex(unit, UnitCount)) {
    case EnergyUnit:
      text = FormatEnergy(regional, value) + " (total)";
      break;
    case CostUnit:
      text = FormatCurrencyAuto(regional, value) + " (total)";
      break;
    case CO2Unit:
      text = Mass(regional, value) + " (total)";
      break;
    default:
      text = FormatPower(regional, value) + " (avg.)";
  }
  const SlotForm& slots = Slots(interval);
  text += slots.hoverWords;
  return text + FormatDateTime(regional, SlotTime(interval, x), slots.hoverPattern);
}

}  // namespace wattlark
