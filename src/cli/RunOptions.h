#pragma once

#include <string>

namespace wattlark {

/// What the command line says about a run of the program.
struct RunOptions {
  std::string profileFolder;    ///< never empty
  std::string device;           ///< serial device of the present port number for this run, or empty
  std::string recordFile;       ///< capture file to append to, or empty
  bool demo = false;            ///< demo mode for this run; the stored setting stays
  bool headless = false;        ///< no window, although there may be a display
  int checkpointSeconds = 300;  ///< between two saves while running, at least 1
};

/// Exit statuses of both programs.
enum ExitStatus {
  ExitOK = 0,
  ExitRefused = 1,   ///< the command could not be carried out; standard error says why
  ExitBadInput = 2,  ///< bad arguments, a bad capture or registry text
};

/// Runs the program without a window until it is told to stop: a table that refreshes in place on a
/// terminal, else one line per meter a minute on standard output; messages on standard error.
int RunHeadless(int& argc, char** argv, const RunOptions& options);

}  // namespace wattlark
