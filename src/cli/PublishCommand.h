#pragma once

#include <string>

#include "cli/CommandEnvironment.h"

namespace wattlark {

/// Has the program that runs with the profile publish the current loads to one destination now,
/// named as in `PublishTargetNames`, and waits for that. Prints how it went; answers the exit
/// status.
int RunPublish(const std::string& profileFolder, const std::string& destination,
               CommandEnvironment& environment);

}  // namespace wattlark
