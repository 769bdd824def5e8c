#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "cli/CommandEnvironment.h"
#include "cli/DiscoverCommand.h"
#include "cli/MeterCommands.h"
#include "cli/ReplayCommand.h"
#include "cli/RunOptions.h"

namespace wattlark {

/// The definition of the command line, and what one parse of it has found: the options of a run, or
/// a command.
class CommandDefinition {
 public:
  using Action = std::function<int(CommandEnvironment&)>;

  CommandDefinition();

  CLI::App& App() { return app_; }
  const CLI::App& App() const { return app_; }
  /// The profile's folder; empty when none was named. It is settled before a command is carried
  /// out.
  std::string& Profile() { return profile_; }
  const RunOptions& Run() const { return run_; }
  /// What the command that was given does, with the exit status as its result; null for a run.
  const Action* Command() const;
  /// Throws a `CLI::ParseError` when a command was given options of a run.
  void CheckRunOptions() const;

 private:
  void AddProfileOption(CLI::App& app);
  CLI::App* AddCommand(CLI::App& parent, const std::string& name, const std::string& description,
                       Action action = nullptr);
  void DefineRun();
  void DefineReplay();
  void DefineMeter();
  void DefineMeterAdd(CLI::App& meter);
  void DefineMeterDiscover(CLI::App& meter);
  void DefineSetting();
  void DefinePublish();
  void DefineStore();

  CLI::App app_{
      "Electricity monitor for wireless plug-in meters. Runs it when no command is given.",
      "wattlark"};
  std::vector<std::pair<CLI::App*, Action>> commands_;

  std::string profile_;
  RunOptions run_;
  ReplayOptions replay_;
  NewMeter meter_;
  DiscoverOptions discover_;
  std::string name_;
  std::string value_;
  std::string file_;
  bool json_ = false;
  bool replaces_ = false;
};

}  // namespace wattlark
