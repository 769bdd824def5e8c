#pragma once

#include <stdexcept>

#include "cli/CommandTest.h"
#include "platform/sqlite/OpenStore.h"
#include "torture/core/CoreRun.h"
#include "twins/Frames.h"
#include "twins/RecordingListener.h"

namespace wattlark {

/// A minute of commands and runs; `after` hears of each action once it is over.
class ScriptedMinute {
 public:
  ScriptedMinute(std::string profile, std::function<void()> after)
      : profile_(std::move(profile)), after_(std::move(after)) {}

  /// What users were told by commands and at starts, and in runs.
  std::vector<std::string> answers;
  std::vector<std::string> errors;

  void Play() {
    for (const auto& [name, address] :
         {std::pair("Kitchen", "5"), {"Office", "6"}, {"Attic", "7"}}) {
      Command({"meter", "add", "--name", name, "--address", address});
    }
    RunMonitor(60);
    Command({"meter", "remove", "Office"});
    Command({"setting", "set", "BaudRate", "19200"});
    RunMonitor(kCheckpointSeconds);
  }

 private:
  int TryCommand(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--profile", profile_});
    const CommandResult result = RunCommand(arguments);
    if (!result.messages.empty()) answers.push_back(result.messages);
    after_();
    return result.status;
  }
  /// Again when it is refused, as a user would.
  void Command(const std::vector<std::string>& arguments) {
    for (int attempt = 0; attempt < kPatience && TryCommand(arguments) != 0; ++attempt) {
    }
  }

  void RunMonitor(int seconds) {
    StoreOpening opening = OpenStore(profile_, 0);
    for (int attempt = 0; attempt < kPatience && !opening.savesChanges; ++attempt) {
      answers.push_back(opening.message);
      opening = OpenStore(profile_, 0);
    }
    if (!opening.message.empty()) throw std::runtime_error(opening.message);
    RecordingListener listener;
    CoreRun run(*opening.registry, clock_, kCheckpointSeconds, listener);
    Monitor& monitor = run.Program();
    after_();
    for (int second = 0; second < seconds; ++second) {
      clock_.Advance(1000);
      for (const std::uint16_t address : std::initializer_list<std::uint16_t>{5, 6, 7}) {
        run.Receive(Frame120W(address));
      }
      monitor.UpdateCycle();
      after_();
    }
    // What fails for a while is over at the end: a run that ends before has lost what it says.
    bool isSaved = monitor.Unload();
    for (int attempt = 0; attempt < kPatience && !isSaved; ++attempt) {
      isSaved = monitor.SaveEverything();
    }
    if (!isSaved) listener.errors.emplace_back("not saved");
    for (const auto& error : listener.errors) errors.push_back(error);
    for (const auto& message : run.prompts.asked) errors.push_back(message.text);
    opening.registry.reset();
    after_();
  }

  static constexpr int kCheckpointSeconds = 10;
  static constexpr int kPatience = 100;

  std::string profile_;
  std::function<void()> after_;
  HandClock clock_;
};

}  // namespace wattlark
