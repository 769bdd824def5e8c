#pragma once

#include <memory>

#include "integration/RunningProgram.h"
#include "platform/TemporaryFolder.h"

namespace wattlark {

/// A desktop of a test's own on a screen that nobody sees: an X server, a window manager, a
/// notification area and a session bus. Programs that are started while it lives find it in their
/// environment.
class TestDesktop {
 public:
  TestDesktop() {
    const std::string runtime = folder_.File("run");
    std::filesystem::create_directory(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    ::setenv("HOME", folder_.Path().c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    ::setenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1", 1);
    // Without strict string checks: the X keyboard library hands on texts that end by their length
    // alone. Read by the address sanitizer.
    ::setenv("ASAN_OPTIONS", "detect_stack_use_after_return=1", 1);
    const std::string screen = StartService({"/usr/bin/Xvfb", "-displayfd", "1", "-screen", "0",
                                             "1280x1024x24", "-nolisten", "tcp", "-noreset"});
    ::setenv("DISPLAY", (":" + screen).c_str(), 1);
    const std::string bus =
        StartService({"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=1"});
    ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.c_str(), 1);
    Start({"/usr/bin/openbox"});
    Start({"/usr/bin/trayer", "--edge", "bottom"});
  }

  /// Brings a window to the front.
  void Activate(const std::string& window) {
    RunningProgram activate({"/usr/bin/xdotool", "search", "--onlyvisible", "--name",
                             "^" + window + "$", "windowactivate", "--sync"});
    if (activate.Wait() != 0) throw std::runtime_error("no window \"" + window + "\"");
  }
  /// Presses a key on the keyboard, named as xdotool names it ("alt+f").
  void Press(const std::string& key) { RunningProgram({"/usr/bin/xdotool", "key", key}).Wait(); }
  void Type(const std::string& text) { RunningProgram({"/usr/bin/xdotool", "type", text}).Wait(); }
  /// Whether a window of this title is on the screen.
  bool Shows(const std::string& window) {
    RunningProgram search(
        {"/usr/bin/xdotool", "search", "--onlyvisible", "--name", "^" + window + "$"});
    return search.Wait() == 0;
  }

 private:
  RunningProgram& Start(std::vector<std::string> command) {
    programs_.push_back(std::make_unique<RunningProgram>(std::move(command)));
    return *programs_.back();
  }
  // Starts a program that tells where it is to be reached, and returns that.
  std::string StartService(std::vector<std::string> command) {
    RunningProgram& program = Start(std::move(command));
    if (!WaitUntil([&] { return program.Output().find('\n') != std::string::npos; })) {
      throw std::runtime_error("no desktop: " + program.Messages());
    }
    return program.Output().substr(0, program.Output().find('\n'));
  }

  TemporaryFolder folder_;
  std::vector<std::unique_ptr<RunningProgram>> programs_;
};

}  // namespace wattlark
