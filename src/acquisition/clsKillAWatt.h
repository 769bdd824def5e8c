#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "acquisition/MeterAlarm.h"
#include "acquisition/MeterStatistics.h"
#include "support/DateTime.h"

namespace wattlark {

class clsXBee;
class modRegistry;
class RandomSource;
class StoreText;

enum KillAWattKind { LoadMeter = 0, GeneratorMeter = 1 };

/// How much of a meter is saved. While it sends, the series of the last minute is new with every
/// save: a save of progress leaves it empty, and writes it once no reading has come since the save
/// before. A run that ends abnormally loses the seconds of meters that were sending.
enum class SaveExtent { Everything, Progress };

/// A stored value of a meter that could not be read: the field kept its default.
struct UnreadableValue {
  std::string name;
  std::string text;
};

/// One meter: identity, calibration, last reading, statistics and alarm. One object for every
/// configured Kill-A-Watt, and one for the Total of them all.
///
/// Volts are V, amps A, power W, energy Wh; calibration is in ADC counts (0..1023) and volts or
/// amps a count. Not copyable: a meter has one owner.
class clsKillAWatt {
 public:
  clsKillAWatt();
  clsKillAWatt(const clsKillAWatt&) = delete;
  clsKillAWatt& operator=(const clsKillAWatt&) = delete;

  const std::string& Name() const { return name_; }
  void SetName(std::string name) { name_ = std::move(name); }
  std::int16_t XBeeAddress() const { return xbeeAddress_; }
  void SetXBeeAddress(std::int16_t address) { xbeeAddress_ = address; }
  std::int32_t KillAWattType() const { return killAWattType_; }
  void SetKillAWattType(std::int32_t type) { killAWattType_ = type; }
  double NominalVoltage() const { return nominalVoltage_; }
  void SetNominalVoltage(double voltsRMS) { nominalVoltage_ = voltsRMS; }
  /// What a user's change does: `VoltageScaler` is scaled by the same factor, so that a meter that
  /// becomes one of 240 V reads right at once.
  void ChangeNominalVoltage(double voltsRMS);
  double NominalFrequency() const { return nominalFrequency_; }
  void SetNominalFrequency(double hertz) { nominalFrequency_ = hertz; }

  /// The calibration values; every assignment is clamped, without a message: the offset to 0..1023,
  /// the scalers to 0.75 to 1.25 times their defaults.
  std::int16_t CurrentOffset() const { return currentOffset_; }
  void SetCurrentOffset(std::int16_t counts);
  double CurrentScaler() const { return currentScaler_; }
  void SetCurrentScaler(double ampsPerCount);
  double VoltageScaler() const { return voltageScaler_; }
  void SetVoltageScaler(double voltsPerCount);
  static std::int16_t DefaultCurrentOffset() { return 498; }
  static double DefaultCurrentScaler() { return 1 / 15.5; }
  double DefaultVoltageScaler() const { return nominalVoltage_ / 200; }
  void ResetCalibration();

  /// The last reading. All are 0 before the first one: `HasReading` tells.
  double Volts() const { return volts_; }
  double Amps() const { return amps_; }
  double Watts() const { return watts_; }
  /// There has been a reading since the meter was created or loaded.
  bool HasReading() const { return hasReading_; }
  /// The last reading for displays, logs and services: `NoValue` before the first one.
  double ShownVolts() const;
  double ShownAmps() const;
  double ShownWatts() const;
  /// The last reading lies less than 5 seconds (boundaries crossed) before `now`. A time that lies
  /// 5 seconds or more in the future, left behind by a clock that was set back, is no sign of life.
  bool IsReceiving(DateTime now) const;
  std::int16_t VoltageOffset() const { return voltageOffset_; }
  /// Copies the last frame's instantaneous volts and amps; false, with nothing copied, before a
  /// frame with samples.
  bool GetSamples(std::vector<double>& volts, std::vector<double>& amps) const;

  /// Takes a decoded I/O sample frame (line A0 is voltage, A4 current) as one reading.
  void ProcessPacket(const clsXBee& decoder);
  /// Fabricates one plausible reading around a level that drifts with the time of day.
  void GenerateDemoReading(DateTime time, std::uint32_t ticks, RandomSource& random);
  /// The one entry point of readings: statistics, then alarm counters.
  void AddReading(double volts, double amps, double watts, DateTime time, std::uint32_t ticks);

  MeterStatistics& Statistics() { return statistics_; }
  const MeterStatistics& Statistics() const { return statistics_; }
  MeterAlarm& Alarm() { return alarm_; }
  const MeterAlarm& Alarm() const { return alarm_; }

  DateTime Timestamp() const { return statistics_.Timestamp(); }
  double AverageDemand(std::int32_t seconds) const { return statistics_.AverageDemand(seconds); }
  /// The load against the peak since reset: of the last reading for `seconds` below 1, else of the
  /// average demand; `NoValue` when that is missing or the peak is 0.
  double PeakFraction(std::int32_t seconds) const;

  /// Reads every value of the store's `section` ("KillAWatts\Kitchen"); false, with nothing
  /// changed, when it does not exist. Values that do not convert keep the field's present value and
  /// are added to `unreadable`.
  bool LoadSettings(const modRegistry& store, const StoreText& text, const std::string& section,
                    std::vector<UnreadableValue>* unreadable = nullptr);
  /// Writes every value; false when one could not be written.
  bool SaveSettings(modRegistry& store, const StoreText& text, const std::string& section,
                    SaveExtent extent = SaveExtent::Everything) const;

 private:
  std::string name_ = "New Appliance";
  std::int16_t xbeeAddress_ = 0;
  std::int16_t currentOffset_ = DefaultCurrentOffset();
  std::int16_t voltageOffset_ = 0;
  std::int32_t killAWattType_ = LoadMeter;
  bool hasReading_ = false;
  double nominalVoltage_ = 120;
  double nominalFrequency_ = 60;
  double currentScaler_ = DefaultCurrentScaler();
  double voltageScaler_ = DefaultVoltageScaler();
  double volts_ = 0;
  double amps_ = 0;
  double watts_ = 0;
  double demoLevel_ = 0;  ///< W; 0 until first used
  std::vector<double> sampleVolts_;
  std::vector<double> sampleAmps_;
  std::vector<double> sampleWatts_;
  MeterAlarm alarm_;
  MeterStatistics statistics_;
};

}  // namespace wattlark
