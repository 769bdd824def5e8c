#include "acquisition/clsKillAWatt.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "acquisition/clsXBee.h"
#include "platform/RandomSource.h"
#include "support/modSeries.h"

namespace wattlark {

namespace {

constexpr int kVoltageChannel = 1;  // line A0
constexpr int kCurrentChannel = 5;  // line A4
// Peak-to-peak over RMS of a sine: twice the square root of 2.
constexpr double kPeakToPeakPerRMS = 2.82842712474619;
constexpr std::int64_t kReceivingSeconds = 5;

}  // namespace

clsKillAWatt::clsKillAWatt() = default;

void clsKillAWatt::ChangeNominalVoltage(double voltsRMS) {
  const double relative = nominalVoltage_ > 0 ? voltageScaler_ / DefaultVoltageScaler() : 1;
  nominalVoltage_ = voltsRMS;
  SetVoltageScaler(relative * DefaultVoltageScaler());
}

void clsKillAWatt::SetCurrentOffset(std::int16_t counts) {
  currentOffset_ = Clamp<std::int16_t>(counts, 0, 1023);
}

void clsKillAWatt::SetCurrentScaler(double ampsPerCount) {
  currentScaler_ =
      Clamp(ampsPerCount, 0.75 * DefaultCurrentScaler(), 1.25 * DefaultCurrentScaler());
}

void clsKillAWatt::SetVoltageScaler(double voltsPerCount) {
  voltageScaler_ =
      Clamp(voltsPerCount, 0.75 * DefaultVoltageScaler(), 1.25 * DefaultVoltageScaler());
}

void clsKillAWatt::ResetCalibration() {
  SetCurrentOffset(DefaultCurrentOffset());
  SetCurrentScaler(DefaultCurrentScaler());
  SetVoltageScaler(DefaultVoltageScaler());
}

double clsKillAWatt::ShownVolts() const {
  return hasReading_ ? volts_ : NoValue;
}
double clsKillAWatt::ShownAmps() const {
  return hasReading_ ? amps_ : NoValue;
}
double clsKillAWatt::ShownWatts() const {
  return hasReading_ ? watts_ : NoValue;
}

bool clsKillAWatt::IsReceiving(DateTime now) const {
  return !Timestamp().IsNever() && std::abs(Timestamp().SecondsTo(now)) < kReceivingSeconds;
}

bool clsKillAWatt::GetSamples(std::vector<double>& volts, std::vector<double>& amps) const {
  if (sampleVolts_.empty()) return false;
  volts = sampleVolts_;
  amps = sampleAmps_;
  return true;
}

void clsKillAWatt::ProcessPacket(const clsXBee& decoder) {
  const auto n = static_cast<std::size_t>(decoder.SampleCount());
  std::array<std::int16_t, 255> voltageReadings;
  std::array<std::int16_t, 255> currentReadings;
  const auto voltage = std::span(voltageReadings).first(n);
  const auto current = std::span(currentReadings).first(n);
  decoder.CopyChannel(kVoltageChannel, voltage);
  decoder.CopyChannel(kCurrentChannel, current);
  sampleVolts_.resize(n);
  sampleAmps_.resize(n);
  sampleWatts_.resize(n);

  std::int16_t largest = 0;
  std::int16_t smallest = 1024;
  for (const std::int16_t count : voltage) {
    largest = std::max(largest, count);
    smallest = std::min(smallest, count);
  }
  voltageOffset_ = static_cast<std::int16_t>((largest + smallest) / 2);

  for (std::size_t s = 0; s < n; ++s) {
    sampleVolts_[s] = (voltage[s] - voltageOffset_) * voltageScaler_;
    sampleAmps_[s] = (current[s] - currentOffset_) * currentScaler_;
    sampleWatts_[s] = sampleAmps_[s] * sampleVolts_[s];
  }
  double ampsSum = 0;
  double wattsSum = 0;
  for (std::size_t s = 1; s + 1 < n; ++s) {
    ampsSum += sampleAmps_[s];
    wattsSum += sampleWatts_[s];
  }

  double volts = 0;
  double amps = 0;
  double watts = 0;
  if (n != 0) {
    const auto samples = static_cast<double>(n);
    volts = (largest - smallest) * voltageScaler_ / kPeakToPeakPerRMS;
    amps = ampsSum / samples;
    watts = std::max(wattsSum / samples, 0.0);
  }
  AddReading(volts, amps, watts, decoder.FrameTime(), decoder.FrameTicks());
}

void clsKillAWatt::GenerateDemoReading(DateTime time, std::uint32_t ticks, RandomSource& random) {
  random.Reseed(ticks);
  const double volts = nominalVoltage_ + (random.Next() - 0.5) * nominalVoltage_ * 0.02;
  const double amps = (random.Next() - 0.5) * 0.2;

  const auto unset = [this] { return demoLevel_ == 0 || !HasValue(demoLevel_); };
  if (unset()) demoLevel_ = AverageDemand(3600);
  if (unset()) demoLevel_ = static_cast<float>(random.Next()) * 440.0F + 60.0F;

  const std::int64_t timeOfDay =
      time.Milliseconds() - time.StartOfDay().Milliseconds();  // milliseconds
  constexpr std::int64_t kHour = 3600000;
  if (timeOfDay >= 6 * kHour && timeOfDay <= 9 * kHour + kHour / 2) {
    demoLevel_ += random.Next() * 0.0002 * demoLevel_;
  } else if (timeOfDay >= 16 * kHour + kHour / 2 && timeOfDay <= 20 * kHour) {
    demoLevel_ -= random.Next() * 0.0002 * demoLevel_;
  }
  const double watts = demoLevel_ + (random.Next() - 0.5) * demoLevel_ * 0.03;
  AddReading(volts, amps, watts, time, ticks);
}

void clsKillAWatt::AddReading(double volts, double amps, double watts, DateTime time,
                              std::uint32_t ticks) {
  volts_ = volts;
  amps_ = amps;
  watts_ = watts;
  hasReading_ = true;
  alarm_.AddReading(watts, statistics_.AddReading(watts, time, ticks));
}

double clsKillAWatt::PeakFraction(std::int32_t seconds) const {
  const double load = seconds < 1 ? watts_ : AverageDemand(seconds);
  const double peak = statistics_.Peak(SinceReset);
  return HasValue(load) && peak != 0 ? load / peak : NoValue;
}

}  // namespace wattlark
