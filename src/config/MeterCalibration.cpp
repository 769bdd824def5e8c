#include "config/MeterCalibration.h"

#include <algorithm>

#include "publish/WebText.h"
#include "support/modFormat.h"

namespace wattlark {

namespace {

constexpr std::size_t Index(CalibrationStep step) {
  return static_cast<std::size_t>(step);
}

double LoweredByPercent(double start, int percent) {
  return start * (1 - percent / 100.0);
}

}  // namespace

const char* CalibrationInstructions(CalibrationStep step) {
  switch (step) {
    case CalibrationStep::VoltageScaler:
      return "Using the up/down arrows below, adjust the voltage measurement displayed here to "
             "best match the voltage reading displayed on the Kill-A-Watt meter's LCD panel...";
    case CalibrationStep::CurrentOffset:
      return "Unplug any devices from the Kill-A-Watt meter. Adjust the average current "
             "measurement displayed here to as close to \"zero\" as possible (it may jump slightly "
             "with each update from the meter, be patient).";
    case CalibrationStep::CurrentScaler:
      break;
  }
  return "Plug the device to be monitored back into the Kill-A-Watt meter and adjust the power "
         "measurement displayed here to match, as closely as possible, the power displayed on the "
         "Kill-A-Watt's LCD panel.";
}

CalibrationReadout MakeCalibrationReadout(const clsKillAWatt& meter,
                                          const RegionalSettings& regional, DateTime now) {
  CalibrationReadout readout;
  readout.isReceiving = meter.IsReceiving(now);
  const auto text = [&](double value, const char* unit) {
    const std::string number =
        readout.isReceiving ? FormatNumberAuto(regional, value, 1, "---") : "---";
    return number + unit;
  };
  readout.texts = {text(meter.ShownVolts(), " Volts"), text(meter.ShownAmps(), " Amps"),
                   text(meter.ShownWatts(), " Watts")};
  return readout;
}

MeterCalibration::MeterCalibration(clsKillAWatt& meter)
    : meter_(meter),
      startVoltageScaler_(meter.VoltageScaler()),
      startCurrentOffset_(meter.CurrentOffset()),
      startCurrentScaler_(meter.CurrentScaler()) {}

void MeterCalibration::Adjust(CalibrationStep step, int position) {
  const int by = std::clamp(position, -LargestPosition, LargestPosition);
  bool isLimited = false;
  switch (step) {
    case CalibrationStep::VoltageScaler: {
      const double wanted = LoweredByPercent(startVoltageScaler_, by);
      meter_.SetVoltageScaler(wanted);
      isLimited = meter_.VoltageScaler() != wanted;
      break;
    }
    case CalibrationStep::CurrentOffset: {
      const int wanted = startCurrentOffset_ + by;
      meter_.SetCurrentOffset(static_cast<std::int16_t>(wanted));
      isLimited = meter_.CurrentOffset() != wanted;
      break;
    }
    case CalibrationStep::CurrentScaler: {
      const double wanted = LoweredByPercent(startCurrentScaler_, by);
      meter_.SetCurrentScaler(wanted);
      isLimited = meter_.CurrentScaler() != wanted;
      break;
    }
  }
  isLimited_[Index(step)] = isLimited;
}

bool MeterCalibration::IsLimited(CalibrationStep step) const {
  return isLimited_[Index(step)];
}

std::string MeterCalibration::ValueText(CalibrationStep step,
                                        const RegionalSettings& regional) const {
  switch (step) {
    case CalibrationStep::VoltageScaler:
      return PlainNumberText(regional, meter_.VoltageScaler()) + " volts/bit";
    case CalibrationStep::CurrentOffset:
      return std::to_string(meter_.CurrentOffset()) + " counts";
    case CalibrationStep::CurrentScaler:
      break;
  }
  return PlainNumberText(regional, meter_.CurrentScaler()) + " amps/bit";
}

void MeterCalibration::Restore() {
  meter_.SetVoltageScaler(startVoltageScaler_);
  meter_.SetCurrentOffset(startCurrentOffset_);
  meter_.SetCurrentScaler(startCurrentScaler_);
  isLimited_ = {};
}

}  // namespace wattlark
