#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <nlohmann/json.hpp>
#include <optional>

#include "integration/RunningProgram.h"
#include "platform/TemporaryFolder.h"
#include "platform/TestServers.h"
#include "twins/Frames.h"
#include "twins/TestTerminal.h"

namespace wattlark {

inline std::size_t CountOf(const std::string& text, const std::string& part) {
  return static_cast<std::size_t>(QByteArray::fromStdString(text).count(part.c_str()));
}

// A profile with a meter "Kitchen" of address 5, and a receiver that the test speaks for.
struct HeadlessRun : testing::Test {
  TemporaryFolder folder;
  std::string profile = folder.File("profile");
  std::string device = folder.File("receiver");
  std::string capture = folder.File("capture");
  std::optional<TestTerminal> receiver;
  std::optional<RunningProgram> sim;

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

  std::vector<std::string> Command(std::vector<std::string> arguments,
                                   const char* program = WATTLARK_HEADLESS_PROGRAM) const {
    arguments.insert(arguments.begin(), program);
    arguments.insert(arguments.end(), {"--profile", profile});
    return arguments;
  }
  std::vector<std::string> RunCommand(const char* program = WATTLARK_HEADLESS_PROGRAM) const {
    return Command({"--device", device, "--record", capture}, program);
  }
  struct Result {
    int status;
    std::string output;
    std::string messages;
  };
  Result Try(const std::vector<std::string>& arguments) const {
    RunningProgram command(Command(arguments));
    const int status = command.Wait();
    return {status, command.Output(), command.Messages()};
  }
  // What a command that succeeds prints.
  std::string Run(const std::vector<std::string>& arguments) const {
    const Result result = Try(arguments);
    EXPECT_EQ(result.status, 0) << result.messages;
    return result.output;
  }
  void AddKitchen(const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments = {"meter", "add", "--name", "Kitchen", "--address", "5"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Run(arguments);
  }
  nlohmann::json Kitchen() const {
    return nlohmann::json::parse(Run({"meter", "list", "--json"})).at(0);
  }
  double KitchenEnergy() const { return Kitchen().at("Usage").at("ToDate").get<double>(); }
  // In place of the receiver, a simulated one that hears these meters.
  void Simulate(const std::vector<std::string>& meters) {
    std::filesystem::remove(device);
    std::vector<std::string> command{WATTLARK_SIM_PROGRAM, "--link", device, "--period", "0.2"};
    for (const std::string& meter : meters) command.insert(command.end(), {"--meter", meter});
    sim.emplace(command);
    EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(device); })) << sim->Messages();
  }
  // A server of version information, to which the profile is pointed.
  std::unique_ptr<HttpServer> OfferVersion9() const {
    auto server = std::make_unique<AnyServer>([](const auto&, httplib::Response& response) {
      response.set_content("9.0\r\n27 August 2010\r\nhttp://maker.example/setup\r\n", "text/plain");
    });
    Run({"setting", "set", "ServiceEndpoints/VersionFileURL", server->URL("/version")});
    return server;
  }
  // As a capture has it.
  static std::string BurstText(std::uint16_t address) {
    const Bytes burst = Frame120W(address);
    return QByteArray(reinterpret_cast<const char*>(burst.data()),
                      static_cast<qsizetype>(burst.size()))
        .toHex()
        .toUpper()
        .toStdString();
  }
  // Sends a burst and waits until the program has read all of it.
  void SendBurst() {
    const std::string frame = BurstText(5);
    const std::size_t before = CountOf(FileBytes(capture), frame);
    receiver->Write(Frame120W(5));
    ASSERT_TRUE(WaitUntil([&] { return CountOf(FileBytes(capture), frame) > before; }));
  }
  // A program that has taken two bursts, so that there is energy: not in the same millisecond.
  void TakeTwoBursts(RunningProgram& program) {
    SendBurst();
    const auto later = std::chrono::steady_clock::now() + std::chrono::milliseconds(10);
    ASSERT_TRUE(WaitUntil(
        [&] { return !program.Output().empty() && std::chrono::steady_clock::now() > later; }));
    SendBurst();
  }
};

}  // namespace wattlark
