#include "app/CurrentPageView.h"

#include <array>

#include "app/Units.h"
#include "support/modFormat.h"
#include "support/modSeries.h"

namespace wattlark {

namespace {

constexpr std::int32_t kAveragedSeconds = 60;
constexpr std::array<const char*, IntervalCount> kIntervalTexts{
    "per Minute", "per Hour", "per Day", "per Week", "per Month", "per Year"};

std::string ReceivedValue(const clsKillAWatt& meter, const AppSettings& settings,
                          const RegionalSettings& regional, int unit, int interval) {
  const double energy = Scaled(meter.AverageDemand(kAveragedSeconds),
                               IntervalHours[static_cast<std::size_t>(interval)]);
  switch (unit) {
    case EnergyUnit:
      return FormatEnergy(regional, energy);
    case CostUnit:
      return FormatCurrencyAuto(regional, AtRate(energy, settings.Mils), AutomaticDecimals,
                                MissingCost);
    case CO2Unit:
      return FormatNumberAuto(regional, AtRate(energy, settings.CO2perKWh), AutomaticDecimals,
                              "---") +
             " lbs";
    default:
      return FormatPower(regional, meter.ShownWatts());
  }
}

std::string IdleValue(const RegionalSettings& regional, int unit) {
  switch (unit) {
    case EnergyUnit:
      return "--- Wh";
    case CostUnit:
      return FormatCurrencyAuto(regional, 0);
    case CO2Unit:
      return "--- lbs";
    default:
      return "--- W";
  }
}

}  // namespace

CurrentPageView MakeCurrentPageView(const clsKillAWatt& meter, const AppSettings& settings,
                                    const RegionalSettings& regional, DateTime now) {
  const int unit = ChosenIndex(settings.CurrentUnit, UnitCount);
  const int interval = ChosenIndex(settings.CurrentInterval, IntervalCount);
  CurrentPageView view;
  view.maximum = FormatPower(regional, meter.Statistics().Peak(SinceReset));
  view.isReceiving = meter.IsReceiving(now);
  double volts = NoValue;
  double amps = NoValue;
  if (view.isReceiving) {
    volts = meter.ShownVolts();
    amps = meter.ShownAmps();
    view.value = ReceivedValue(meter, settings, regional, unit, interval);
    view.alarm = meter.Alarm().AlarmTriggered();
    // Before the first reading the power is 0 for want of a better one, and so would be the load.
    const double load = meter.HasReading() ? meter.PeakFraction(0) : NoValue;
    if (HasValue(load)) view.needle = Clamp(load, 0.0, 1.0);
    view.meterTip = "Peak: " + view.maximum + " Load Factor: " + FormatPercentAuto(regional, load);
  } else {
    view.value = IdleValue(regional, unit);
  }
  view.volts = FormatNumberAuto(regional, volts, 1, "---") + " Volts";
  view.amps = FormatNumberAuto(regional, amps, 1, "---") + " Amps";
  if (unit != PowerUnit) {
    view.interval = kIntervalTexts[static_cast<std::size_t>(interval)];
  } else if (meter.Timestamp().IsNever()) {
    view.interval = "Sampled @ ---";
  } else {
    view.interval = "Sampled @ " + FormatLongTime(regional, meter.Timestamp());
  }
  return view;
}

}  // namespace wattlark
