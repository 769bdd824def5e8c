#include "app/TotalsGridView.h"

#include "app/Units.h"
#include "support/modFormat.h"

namespace wattlark {

namespace {

constexpr std::array<const char*, UnitCount> kHeaders{"Peak Power Demand", "Total Usage",
                                                      "Total Cost", "Total Production"};
constexpr std::array<const char*, PeriodCount> kLabels{
    "Yesterday", "Today", "This Week", "This Month", "This Year", "To Date", "Since Reset"};

/// " @ 8:10:00 PM on 11/16/2026", as long as the period needs it.
std::string PeakTimeText(int period, DateTime time, const RegionalSettings& regional,
                         DateTime now) {
  if (time.IsNever()) return "";
  const std::string text = " @ " + FormatLongTime(regional, time);
  if (period <= Today) return text;
  if (period > ThisWeek) return text + " on " + FormatShortDate(regional, time);
  const bool isToday = time.StartOfDay() == now.StartOfDay();
  return text + (isToday ? " on " : " last ") +
         FormatDateTime(regional, time, isToday ? "ddd" : "dddd");
}

std::string ValueText(int period, const MeterStatistics& statistics, int unit,
                      const AppSettings& settings, const RegionalSettings& regional, DateTime now) {
  const double usage = statistics.Usage(period);
  switch (unit) {
    case EnergyUnit:
      return FormatEnergy(regional, usage);
    case CostUnit:
      return FormatCurrencyAuto(regional, AtRate(usage, settings.Mils), AutomaticDecimals,
                                MissingCost);
    case CO2Unit: {
      const std::string mass = FormatNumberAuto(regional, AtRate(usage, settings.CO2perKWh));
      return mass.empty() ? "---" : mass + " lbs";
    }
    default:
      return FormatPower(regional, statistics.Peak(period)) +
             PeakTimeText(period, statistics.PeakTime(period), regional, now);
  }
}

}  // namespace

TotalsGridView MakeTotalsGridView(const clsKillAWatt& meter, const AppSettings& settings,
                                  const RegionalSettings& regional, DateTime now) {
  const int unit = ChosenIndex(settings.TotalUnit, UnitCount);
  TotalsGridView view;
  view.header = kHeaders[static_cast<std::size_t>(unit)];
  for (int period = 0; period < PeriodCount; ++period) {
    const auto row = static_cast<std::size_t>(period);
    view.rows[row] = {kLabels[row],
                      ValueText(period, meter.Statistics(), unit, settings, regional, now)};
  }
  return view;
}

}  // namespace wattlark
