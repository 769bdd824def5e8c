#pragma once

#include <string>

#include "cli/CommandEnvironment.h"

namespace wattlark {

struct ReplayOptions {
  std::string profileFolder;
  std::string captureFile;  ///< "-" is the environment's input
  std::string csvFile;      ///< rows are appended to it; empty for none
  bool asJson = false;
  bool save = false;
};

/// Runs a capture through the program as it would have received it, and prints the result. The
/// profile's store is left untouched unless `save` is set; then everything is saved as at a clean
/// exit. A capture with a bad line is not replayed at all. Answers the exit status.
int RunReplay(const ReplayOptions& options, CommandEnvironment& environment);

}  // namespace wattlark
