#pragma once

#include <functional>
#include <string>

#include "config/OptionsEdit.h"
#include "config/PortDevices.h"
#include "platform/Prompts.h"
#include "platform/Registry.h"

namespace wattlark {

/// What the OK of the options dialog changes and asks. All must outlive its use.
struct OptionsTarget {
  AppSettings& settings;
  Registry& registry;
  const StoreText& text;
  const RegionalSettings& regional;
  Prompts& prompts;
  PortDevices* devices;     ///< null where a port number needs no device
  std::string programFile;  ///< full path of the running program
  std::function<void()> restartPort;
};

/// Switches demo mode, on only after a warning; false when it stays as it is. The port is to be
/// restarted otherwise.
bool SwitchDemoMode(bool on, AppSettings& settings, Prompts& prompts);

/// OK: takes the entries into the settings, asks before demo mode starts, saves, makes or removes
/// the value that starts the program at log-on, and restarts the port when that is needed. What
/// does not convert keeps its old value. False when the store did not save; the settings in memory
/// have changed all the same.
bool ApplyOptionsEdit(const OptionsEdit& edit, const OptionsTarget& target);

}  // namespace wattlark
