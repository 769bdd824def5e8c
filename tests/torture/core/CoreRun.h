#pragma once

#include "app/Monitor.h"
#include "twins/HandClock.h"
#include "twins/Meters.h"
#include "twins/RecordingDesktop.h"
#include "twins/ScriptedPort.h"
#include "twins/ScriptedPrompts.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {

/// The program without a face over a given store, with a clock that the caller drives.
class CoreRun {
 public:
  CoreRun(Registry& registry, HandClock& clock, std::int32_t checkpointSeconds,
          MonitorListener& listener)
      : monitor_({clock, port_, registry, random_, desktop_, prompts},
                 RegionalSettings::UnitedStates(),
                 {.csvFilenameDefault = "log.csv",
                  .noticeSoundFile = {},
                  .checkpointSeconds = checkpointSeconds},
                 listener) {
    if (!monitor_.Load()) throw std::runtime_error("the profile could not be loaded");
    monitor_.StartRunning();
  }

  ScriptedPrompts prompts;

  Monitor& Program() { return monitor_; }
  /// Meters 1 to `count`, of addresses that are free.
  void AddMeters(std::int16_t count) {
    monitor_.Profile().Settings().LogToCSV = false;
    for (std::int16_t address = 1; address <= count; ++address) {
      AddMeter(monitor_.Profile().Meters(), "Meter " + std::to_string(address), address);
    }
  }
  void Receive(std::vector<std::uint8_t> bytes) {
    port_.waiting = std::move(bytes);
    monitor_.ReceiveXBeeData();
  }

 private:
  ScriptedPort port_;
  ScriptedRandom random_{};
  RecordingDesktop desktop_;
  Monitor monitor_;
};

}  // namespace wattlark
