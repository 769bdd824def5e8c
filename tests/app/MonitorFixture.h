#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "app/Monitor.h"
#include "app/WebPublishers.h"
#include "twins/Frames.h"
#include "twins/HandClock.h"
#include "twins/MemoryRegistry.h"
#include "twins/RecordingDesktop.h"
#include "twins/RecordingListener.h"
#include "twins/ScriptedHttp.h"
#include "twins/ScriptedPort.h"
#include "twins/ScriptedPrompts.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {

/// A monitor among twins, over a store that a test fills first.
struct MonitorTest : testing::Test {
  MonitorTest() {
    random.repeats = true;
    Put("Settings", "LogToCSV", "False");
  }

  void Put(const std::string& section, const std::string& name, const std::string& value) {
    ASSERT_TRUE(store.SaveAppSetting("", section, name, value));
  }
  std::string Get(const std::string& section, const std::string& name) const {
    return store.GetAppSetting("", section, name, "(none)");
  }
  void PutMeter(const std::string& name, int address) {
    Put("KillAWatts\\" + name, "XBeeAddress", std::to_string(address));
  }
  void PutMeterWithAlarm(const std::string& name, int address) {
    PutMeter(name, address);
    Put("KillAWatts\\" + name, "AlarmActive", "True");
  }
  /// One reading a second of two meters, each followed by a tick.
  void Use(int seconds, double wattsOfFirst, double wattsOfSecond) {
    for (int i = 0; i <= seconds; ++i) {
      if (i > 0) clock.Advance(1000);
      Meter(0).AddReading(120, 1, wattsOfFirst, clock.now, clock.ticks);
      Meter(1).AddReading(120, 1, wattsOfSecond, clock.now, clock.ticks);
      if (i > 0) monitor->UpdateCycle();
    }
  }
  Monitor& Start(std::optional<bool> demoMode = {}) {
    Monitor::Options options;
    options.noticeSoundFile = "notice.wav";
    options.demoMode = demoMode;
    monitor = std::make_unique<Monitor>(
        Monitor::Ports{clock, port, registry, random, desktop, prompts, web}, region, options,
        listener);
    port.onReceive = [this] { monitor->ReceiveXBeeData(); };
    monitor->Load();
    monitor->StartRunning();
    return *monitor;
  }
  void Tick(int count = 1) {
    for (int i = 0; i < count; ++i) {
      clock.Advance(1000);
      monitor->UpdateCycle();
    }
  }
  void Arrive(const Bytes& bytes) {
    port.waiting = Join({port.waiting, bytes});
    port.onReceive();
  }
  clsKillAWatt& Meter(std::size_t index) { return monitor->Profile().Meters()[index]; }

  HandClock clock;
  ScriptedPort port;
  MemoryRegistry registry;
  modRegistry store{registry};
  ScriptedRandom random{0.5};
  RecordingDesktop desktop;
  ScriptedPrompts prompts;
  RecordingListener listener;
  ScriptedHttp pachube;
  ScriptedHttp google;
  ScriptedHttp twitter;
  ScriptedHttp versionAlert;
  ScriptedPump pump{{&pachube, &google, &twitter, &versionAlert}};
  WebPorts webPorts{pachube,      google, twitter,
                    versionAlert, pump,   [](DateTime local) { return local.PlusHours(5); }};
  const WebPorts* web = nullptr;
  const RegionalSettings region = RegionalSettings::UnitedStates();
  std::unique_ptr<Monitor> monitor;
};

/// A monitor that uses the web.
struct WebMonitorTest : MonitorTest {
  WebMonitorTest() { web = &webPorts; }
};

}  // namespace wattlark
