#pragma once

#include <functional>

#include "cli/CommandEnvironment.h"
#include "cli/RunOptions.h"

namespace wattlark {

/// Runs the program with its window until it ends and answers the exit status.
using WindowRunner = std::function<int(int& argc, char** argv, const RunOptions& options)>;

/// The whole of both programs: reads the command line and carries out the command, or runs the
/// program where it names none. Answers the exit status (`ExitStatus`).
///
/// `runWindow` is called for a run that may show a window and has a display; without it, or with
/// "--headless", the run goes without.
int RunCommandLine(int& argc, char** argv, const WindowRunner& runWindow);
/// The same with the streams and the regional form of the caller for everything but a run.
int RunCommandLine(int& argc, char** argv, const WindowRunner& runWindow,
                   CommandEnvironment& environment);

}  // namespace wattlark
