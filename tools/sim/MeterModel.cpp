#include "sim/MeterModel.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace wattlark {
namespace {

constexpr double kTurn = 2.0 * std::numbers::pi;
constexpr double kSampleSeconds = 0.001;
constexpr double kCircuitAmps = 15.0;
constexpr double kVoltageMiddle = 512.0;
constexpr double kCurrentOffset = 498.0;
constexpr double kCountsPerAmp = 15.5;
constexpr double kCountsPerNominalVoltage = 200.0;
constexpr double kMaximumCount = 1023.0;

std::uint16_t ToCount(double value) {
  return static_cast<std::uint16_t>(std::clamp(std::round(value), 0.0, kMaximumCount));
}

}  // namespace

double MeterSettings::MaximumWatts() const {
  return nominalVoltage * kCircuitAmps * powerFactor;
}

MeterModel::MeterModel(const MeterSettings& settings, std::uint64_t seed)
    : settings_(settings), random_(seed) {
  // A mains that kept its nominal frequency exactly would show the same phase in every burst, as a
  // period of whole seconds is a whole number of cycles.
  mainsFrequency_ = settings_.frequency + 0.010 + 0.010 * random_.Uniform();
  slowPhase_ = kTurn * random_.Uniform();
  fastPhase_ = kTurn * random_.Uniform();
  slowPeriod_ = 400.0 + 500.0 * random_.Uniform();
  fastPeriod_ = 40.0 + 50.0 * random_.Uniform();
  signalStrength_ = 38.0 + 30.0 * random_.Uniform();
}

double MeterModel::WattsAt(double seconds) const {
  if (!settings_.varies) return settings_.watts;
  const double slow = std::sin(kTurn * seconds / slowPeriod_ + slowPhase_);
  const double fast = std::sin(kTurn * seconds / fastPeriod_ + fastPhase_);
  const double factor =
      settings_.isGenerator ? 1.0 + 0.12 * slow + 0.06 * fast : 1.0 + 0.04 * slow + 0.02 * fast;
  return std::min(settings_.watts * factor, settings_.MaximumWatts());
}

double MeterModel::VoltsAt(double seconds) const {
  if (!settings_.varies) return settings_.nominalVoltage;
  return settings_.nominalVoltage * (1.0 + 0.006 * std::sin(kTurn * seconds / 300.0));
}

Burst MeterModel::TakeBurst(double seconds) {
  Burst burst;
  burst.address = settings_.address;
  burst.rssi = static_cast<std::uint8_t>(
      std::clamp(std::round(signalStrength_ + random_.Gaussian()), 25.0, 95.0));
  FillVoltage(seconds, burst);
  FillCurrent(seconds, burst);
  return burst;
}

MeterModel::Wave MeterModel::UnitWave(double seconds, double lag) const {
  Wave wave{};
  for (int s = 0; s < Burst::kSampleCount; ++s)
    wave[static_cast<std::size_t>(s)] =
        std::sin(kTurn * mainsFrequency_ * (seconds + kSampleSeconds * s) - lag);
  return wave;
}

void MeterModel::FillVoltage(double seconds, Burst& burst) {
  const Wave unit = UnitWave(seconds, 0.0);
  const auto [lowest, highest] = std::minmax_element(unit.begin(), unit.end());
  const double peakToPeak = VoltsAt(seconds) * 2.0 * std::numbers::sqrt2 *
                            kCountsPerNominalVoltage / settings_.nominalVoltage;
  const double scale = peakToPeak / (*highest - *lowest);
  for (std::size_t s = 0; s < unit.size(); ++s)
    burst.samples[s].voltage =
        ToCount(kVoltageMiddle + scale * (unit[s] + settings_.noise * random_.Gaussian()));
}

void MeterModel::FillCurrent(double seconds, Burst& burst) {
  int highest = 0;
  int lowest = 1024;
  for (const Sample& sample : burst.samples) {
    highest = std::max<int>(highest, sample.voltage);
    lowest = std::min<int>(lowest, sample.voltage);
  }
  const int voltageOffset = (highest + lowest) / 2;
  const double voltsPerCount = settings_.nominalVoltage / kCountsPerNominalVoltage;

  const Wave unit = UnitWave(seconds, std::acos(settings_.powerFactor));
  Wave volts{};
  double sum = 0.0;
  for (std::size_t s = 0; s < unit.size(); ++s) {
    volts[s] = (burst.samples[s].voltage - voltageOffset) * voltsPerCount;
    if (s > 0 && s + 1 < unit.size()) sum += volts[s] * unit[s];
  }
  const double wattsPerAmp = sum / Burst::kSampleCount;

  // Far from 0 for every power factor allowed, unless noise has swallowed the voltage wave.
  const double leastWattsPerAmp = 0.1 * settings_.nominalVoltage;
  const double counts = kCountsPerAmp * WattsAt(seconds) / std::max(wattsPerAmp, leastWattsPerAmp);

  double carried = 0.0;
  for (std::size_t s = 0; s < unit.size(); ++s) {
    const double exact = kCurrentOffset + counts * (unit[s] + settings_.noise * random_.Gaussian());
    if (s == 0 || s + 1 == unit.size()) {
      burst.samples[s].current = ToCount(exact);
      continue;
    }
    const std::uint16_t below = ToCount(std::floor(exact));
    const std::uint16_t above = ToCount(std::ceil(exact));
    const double errorBelow = carried + volts[s] * (below - exact);
    const double errorAbove = carried + volts[s] * (above - exact);
    const bool takeBelow = std::abs(errorBelow) <= std::abs(errorAbove);
    burst.samples[s].current = takeBelow ? below : above;
    carried = takeBelow ? errorBelow : errorAbove;
  }
}

}  // namespace wattlark
