#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "sim/Random.h"

namespace wattlark {

/// One simulated meter and the mains and load it stands in.
struct MeterSettings {
  std::string name;
  std::uint16_t address = 0;  ///< XBee address, 0 to 0x7FFF
  double watts = 0.0;         ///< real power to be read, W, 0 to MaximumWatts()
  bool isGenerator = false;   ///< drifts as a solar panel under clouds does, not as an appliance
  double nominalVoltage = 120.0;  ///< V RMS, 120 or 240
  double frequency = 60.0;        ///< Hz, 50 or 60
  double powerFactor = 0.95;      ///< 0.5 to 1; the current lags behind the voltage
  double noise = 0.005;  ///< standard deviation as a share of the waves' amplitude, 0 to 0.2
  bool varies = true;    ///< load and mains voltage drift slowly

  /// W that a 15 A circuit carries at this voltage and power factor; the ADC does not clip there.
  double MaximumWatts() const;
};

/// ADC counts of one sample, 0 to 1023.
struct Sample {
  std::uint16_t voltage = 0;  ///< line A0
  std::uint16_t current = 0;  ///< line A4
};

/// What a meter sends at once: 19 samples taken at 1 kHz.
struct Burst {
  static constexpr int kSampleCount = 19;

  std::uint16_t address = 0;
  std::uint8_t rssi = 0;  ///< received signal strength as sent, -dBm
  std::array<Sample, kSampleCount> samples{};
};

/// A meter whose bursts look like those of a real one and read as the wattage that was chosen.
///
/// 19 samples are 1.14 cycles of 60 Hz and 0.95 cycles of 50 Hz, and the receiver sums 17 of them
/// but divides by 19: what it reads depends on the phase at which the burst starts, which moves on
/// with the time. So each burst's waves are scaled such that the receiver's own formulas, with its
/// default calibration (498 counts = 0 A, 1 / 15.5 A a count, nominal voltage / 200 V a count),
/// give the chosen watts and volts. Noise comes on top. Counts are rounded so that the rounding
/// error of the power is carried from sample to sample: what remains of it is at most half a count
/// in one sample, 0.3 W at 120 V and 0.6 W at 240 V.
///
/// The same settings, seed and sequence of calls give the same bursts.
class MeterModel {
 public:
  MeterModel(const MeterSettings& settings, std::uint64_t seed);

  const MeterSettings& Settings() const { return settings_; }

  /// The real power, W, that a burst at `seconds` after the start carries.
  double WattsAt(double seconds) const;
  /// The mains voltage at that time, V RMS.
  double VoltsAt(double seconds) const;
  /// The burst whose first sample is taken at `seconds` after the start.
  Burst TakeBurst(double seconds);

 private:
  using Wave = std::array<double, Burst::kSampleCount>;

  Wave UnitWave(double seconds, double lag) const;
  void FillVoltage(double seconds, Burst& burst);
  void FillCurrent(double seconds, Burst& burst);

  MeterSettings settings_;
  Random random_;
  double mainsFrequency_;
  double slowPhase_;
  double fastPhase_;
  double slowPeriod_;
  double fastPeriod_;
  double signalStrength_;
};

}  // namespace wattlark
