#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "config/AppSettings.h"
#include "config/ServiceEndpoints.h"
#include "publish/WebRequestRunner.h"
#include "support/RegionalSettings.h"
#include "twins/HandClock.h"
#include "twins/Meters.h"
#include "twins/ScriptedHttp.h"
#include "twins/ScriptedPrompts.h"

namespace wattlark {

/// Meters, settings and a scripted server for the loggers that use the web.
struct WebLoggerTest : testing::Test {
  clsKillAWatt& Add(const std::string& name, std::int16_t address) {
    return AddMeter(meters, name, address);
  }
  clsKillAWatt& AddWithReading(const std::string& name, std::int16_t address, double watts) {
    clsKillAWatt& meter = Add(name, address);
    meter.AddReading(120, 1, watts, At("2026-11-16T20:09:00"), 1000);
    return meter;
  }

  const DateTime timestamp = At("2026-11-16T20:10:00");
  RegionalSettings region = RegionalSettings::UnitedStates();
  AppSettings settings;
  ServiceEndpoints endpoints;
  MeterCollection meters;
  ScriptedPrompts prompts;
  ScriptedHttp http;
  ScriptedPump pump{{&http}};
  std::vector<std::string> shown;
  WebRequestRunner runner{http, pump, "",
                          [this](const std::string& text) { shown.push_back(text); }};
};

}  // namespace wattlark
