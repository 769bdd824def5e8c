#pragma once

#include <memory>
#include <string>

#include "BenchClock.h"
#include "SilentPorts.h"
#include "app/Monitor.h"
#include "twins/MemoryRegistry.h"

namespace wattlark::bench {

/// A monitor with `meterCount` meters of the addresses 1, 2, ..., over ports that cost nothing. It
/// writes no CSV file and saves nothing while it runs; StartRunning is left to the caller.
struct BenchMonitor {
  BenchMonitor(int meterCount, MonitorListener& listener)
      : monitor({clock, serial, registry, random, desktop, prompts},
                RegionalSettings::UnitedStates(), Options(), listener) {
    monitor.Load();
    monitor.Profile().Settings().LogToCSV = false;
    for (int address = 1; address <= meterCount; ++address) {
      auto meter = std::make_unique<clsKillAWatt>();
      meter->SetName("Meter " + std::to_string(address));
      meter->SetXBeeAddress(static_cast<std::int16_t>(address));
      meter->Alarm().SetAlarmUpperLimit(1e6);
      meter->Alarm().SetAlarmActive(true);
      monitor.Profile().Meters().Add(std::move(meter));
    }
  }
  static Monitor::Options Options() {
    Monitor::Options options;
    options.checkpointSeconds = 1 << 30;
    return options;
  }
  /// A second passes, in which every meter takes a reading.
  void PassSecond(double watts) {
    clock.Advance(1000);
    for (const auto& meter : monitor.Profile().Meters()) {
      meter->AddReading(120, 4, watts, clock.now, clock.ticks);
    }
  }

  BenchClock clock;
  SilentSerialPort serial;
  MemoryRegistry registry;
  FixedRandom random;
  SilentDesktop desktop;
  SilentPrompts prompts;
  Monitor monitor;
};

}  // namespace wattlark::bench
