#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "acquisition/clsKillAWatt.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// The three values of a meter that are calibrated one after another.
enum class CalibrationStep : std::uint8_t { VoltageScaler, CurrentOffset, CurrentScaler };
inline constexpr int CalibrationSteps = 3;

/// What the user is to do in a step.
const char* CalibrationInstructions(CalibrationStep step);

/// A meter's last reading as the wizard shows it; "--- Volts" and so on while the meter sends
/// nothing.
struct CalibrationReadout {
  bool isReceiving = false;
  std::array<std::string, CalibrationSteps> texts;  ///< volts, amps, watts, in the steps' order
};

CalibrationReadout MakeCalibrationReadout(const clsKillAWatt& meter,
                                          const RegionalSettings& regional, DateTime now);

/// Changes the calibration of a meter, each time from the values it had at the start, so that a way
/// there and back changes nothing. The meter limits what it is given.
class MeterCalibration {
 public:
  static constexpr int LargestPosition = 100;

  /// Notes the meter's present values. `meter` must outlive this object.
  explicit MeterCalibration(clsKillAWatt& meter);

  const clsKillAWatt& Meter() const { return meter_; }
  /// Gives the meter the value of a scroll bar's position, -100 to 100: a scale lowered by as many
  /// percent of its starting value, the offset raised by as many counts.
  void Adjust(CalibrationStep step, int position);
  /// Whether the meter did not take the value of the last adjustment as it was, but its nearest
  /// limit.
  bool IsLimited(CalibrationStep step) const;
  /// The value that the meter holds: "0.6 volts/bit", "498 counts", "0.0645161290322581 amps/bit".
  std::string ValueText(CalibrationStep step, const RegionalSettings& regional) const;
  /// Gives the meter its starting values back.
  void Restore();

 private:
  clsKillAWatt& meter_;
  const double startVoltageScaler_;
  const std::int16_t startCurrentOffset_;
  const double startCurrentScaler_;
  std::array<bool, CalibrationSteps> isLimited_{};
};

}  // namespace wattlark
