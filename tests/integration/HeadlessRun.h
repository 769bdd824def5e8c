#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <numbers>
#include <optional>

#include "integration/RunningProgram.h"
#include "platform/TemporaryFolder.h"
#include "twins/Frames.h"
#include "twins/TestTerminal.h"

namespace wattlark {

// One burst of a meter that draws about half of what the socket gives.
inline Bytes Burst(std::uint16_t address) {
  std::vector<std::uint16_t> volts;
  std::vector<std::uint16_t> amps;
  for (int sample = 0; sample < 19; ++sample) {
    const double angle = 2 * std::numbers::pi * 60 * sample / 1000;
    volts.push_back(static_cast<std::uint16_t>(512 + 280 * std::sin(angle)));
    amps.push_back(static_cast<std::uint16_t>(498 + 150 * std::sin(angle)));
  }
  return MeterFrame(address, volts, amps);
}

inline std::size_t CountOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

// A profile with a meter "Kitchen" of address 5, and a receiver that the test speaks for.
struct HeadlessRun : testing::Test {
  TemporaryFolder folder;
  std::string profile = folder.File("profile");
  std::string device = folder.File("receiver");
  std::string capture = folder.File("capture");
  std::optional<TestTerminal> receiver;

  HeadlessRun() { PlugIn(); }

  void PlugIn() {
    receiver.emplace();
    std::filesystem::remove(device);
    std::filesystem::create_symlink(receiver->Path(), device);
  }
  // The name goes with the device: the system gives its number to the next terminal.
  void Unplug() {
    std::filesystem::remove(device);
    receiver.reset();
  }

  std::vector<std::string> Command(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), WATTLARK_HEADLESS_PROGRAM);
    arguments.insert(arguments.end(), {"--profile", profile});
    return arguments;
  }
  std::vector<std::string> RunCommand() const {
    return Command({"--device", device, "--record", capture});
  }
  void AddKitchen(const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments = {"meter", "add", "--name", "Kitchen", "--address", "5"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    RunningProgram add(Command(arguments));
    ASSERT_EQ(add.Wait(), 0) << add.Messages();
  }
  double KitchenEnergy() const {
    RunningProgram list(Command({"meter", "list", "--json"}));
    EXPECT_EQ(list.Wait(), 0) << list.Messages();
    return nlohmann::json::parse(list.Output()).at(0).at("Usage").at("ToDate").get<double>();
  }
  // As a capture has it.
  static std::string BurstText(std::uint16_t address) {
    std::string hex;
    for (const std::uint8_t byte : Burst(address)) {
      hex += "0123456789ABCDEF"[byte >> 4];
      hex += "0123456789ABCDEF"[byte & 15];
    }
    return hex;
  }
  // Sends a burst and waits until the program has read all of it.
  void SendBurst() {
    const std::string frame = BurstText(5);
    const std::size_t before = CountOf(FileBytes(capture), frame);
    receiver->Write(Burst(5));
    ASSERT_TRUE(WaitUntil([&] { return CountOf(FileBytes(capture), frame) > before; }));
  }
  // A program that has taken two bursts, so that there is energy.
  void TakeTwoBursts(RunningProgram& program) {
    SendBurst();
    ASSERT_TRUE(WaitUntil([&] { return !program.Output().empty(); }));
    SendLaterBurst();
  }
  // Readings of the same millisecond hold no energy.
  void SendLaterBurst() {
    const auto from = std::chrono::steady_clock::now();
    WaitUntil(
        [&] { return std::chrono::steady_clock::now() - from > std::chrono::milliseconds(10); });
    SendBurst();
  }
};

}  // namespace wattlark
