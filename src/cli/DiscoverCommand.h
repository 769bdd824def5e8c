#pragma once

#include <string>

#include "cli/CommandEnvironment.h"

namespace wattlark {

struct DiscoverOptions {
  std::string device;  ///< empty for that of the profile, or the only one that can be it
  int seconds = 10;    ///< 1 to 3600
  bool json = false;
};

/// Listens on a serial device and prints the addresses that send, with what to type next. The
/// status is `ExitOK` when a meter was heard; otherwise the messages say what to look at. Changes
/// nothing; a device that a program has open is left to it.
int DiscoverMeters(const std::string& profileFolder, const DiscoverOptions& options,
                   CommandEnvironment& environment);

}  // namespace wattlark
