#pragma once

#include "cli/RunOptions.h"

namespace wattlark {

/// Runs the program with its window until the user, a signal or the end of the session ends it.
/// With a profile that runs already, that program comes to the front and this one ends at once,
/// with success. Answers an `ExitStatus`.
int RunWindow(int& argc, char** argv, const RunOptions& options);

}  // namespace wattlark
