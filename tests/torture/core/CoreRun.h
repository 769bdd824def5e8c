#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/Monitor.h"
#include "twins/HandClock.h"

namespace wattlark::torture {

/// A port that is open and hands out what it was given.
class FedPort : public SerialPort {
 public:
  std::vector<std::uint8_t> waiting;

  bool Open(int, const std::string&) override { return true; }
  void Close() override {}
  bool IsOpen() const override { return true; }
  std::vector<std::uint8_t> ReadAll() override { return std::exchange(waiting, {}); }
  std::string ErrorText() const override { return ""; }
};

/// The program without a face over a given store, with meters 1 to `meters`, a clock and a port
/// that the caller drives, and nobody at the screen.
class CoreRun : private Desktop, private Prompts, private RandomSource {
 public:
  CoreRun(Registry& registry, std::uint16_t meters, std::int32_t checkpointSeconds,
          MonitorListener& listener)
      : monitor_({clock, port, registry, *this, *this, *this}, RegionalSettings::UnitedStates(),
                 {.csvFilenameDefault = {},
                  .noticeSoundFile = {},
                  .checkpointSeconds = checkpointSeconds},
                 listener) {
    monitor_.Load();
    monitor_.Profile().Settings().LogToCSV = false;
    for (std::uint16_t address = 1; address <= meters; ++address) {
      auto meter = std::make_unique<clsKillAWatt>();
      meter->SetName("Meter " + std::to_string(address));
      meter->SetXBeeAddress(static_cast<std::int16_t>(address));
      monitor_.Profile().Meters().Add(std::move(meter));
    }
    monitor_.StartRunning();
  }

  Monitor& Program() { return monitor_; }
  const clsKillAWatt& Meter(std::uint16_t address) {
    return *monitor_.Profile().Meters().FindAddress(static_cast<std::int16_t>(address));
  }
  void Receive(std::vector<std::uint8_t> bytes) {
    port.waiting = std::move(bytes);
    monitor_.ReceiveXBeeData();
  }

  HandClock clock;
  FedPort port;

 private:
  void PlayWave(const std::string&) override {}
  bool OpenURL(const std::string&) override { return false; }
  PromptAnswer Ask(const PromptMessage& message) override { return message.defaultAnswer; }
  void Reseed(std::uint32_t) override {}
  double Next() override { return 0.5; }

  Monitor monitor_;
};

}  // namespace wattlark::torture
