#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <vector>

#include "cli/CommandLine.h"
#include "platform/TemporaryFolder.h"

namespace wattlark {

struct CommandResult {
  int status = -1;
  std::string output;
  std::string messages;

  nlohmann::json Json() const { return nlohmann::json::parse(output); }
};

/// Runs a command as the program would: `arguments` without its name, `input` is standard input.
inline CommandResult RunCommand(
    std::vector<std::string> arguments, const std::string& input = "",
    const RegionalSettings& regional = RegionalSettings::UnitedStates()) {
  arguments.insert(arguments.begin(), "wattlark");
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  int argc = static_cast<int>(argv.size());
  argv.push_back(nullptr);
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream messages;
  CommandEnvironment environment{in, out, messages, regional};
  const int status = RunCommandLine(argc, argv.data(), nullptr, environment);
  return {status, out.str(), messages.str()};
}

/// Commands on a profile folder of their own that does not exist yet, in the United States form.
struct CommandTest : testing::Test {
  CommandResult Run(const std::vector<std::string>& arguments,
                    const std::string& input = "") const {
    return RunCommand(arguments, input, regional_);
  }
  /// The same with the profile of this test.
  CommandResult RunHere(std::vector<std::string> arguments, const std::string& input = "") const {
    arguments.insert(arguments.begin(), {"--profile", profile_});
    return Run(arguments, input);
  }
  void ExpectDone(const std::vector<std::string>& arguments) const {
    const CommandResult result = RunHere(arguments);
    EXPECT_EQ(result.status, ExitOK) << arguments.front();
    EXPECT_EQ(result.messages, "");
  }
  static void ExpectRefused(const CommandResult& result, const std::string& message,
                            int status = ExitRefused) {
    EXPECT_EQ(result.status, status) << message;
    EXPECT_EQ(result.output, "");
    EXPECT_NE(result.messages.find(message), std::string::npos) << result.messages;
  }
  void AddKitchen() const { ExpectDone({"meter", "add", "--name", "Kitchen", "--address", "5"}); }
  nlohmann::json Meters() const { return RunHere({"meter", "list", "--json"}).Json(); }
  std::string Setting(const std::string& name) const {
    return RunHere({"setting", "get", name}).output;
  }
  std::map<std::string, std::string> ProfileFiles() const { return FilesIn(profile_); }
  bool ProfileExists() const { return std::filesystem::exists(profile_); }

  TemporaryFolder folder_;
  std::string profile_ = folder_.File("profile");
  RegionalSettings regional_ = RegionalSettings::UnitedStates();
};

}  // namespace wattlark
