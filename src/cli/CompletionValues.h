#pragma once

#include <string>
#include <vector>

#include "cli/CommandEnvironment.h"
#include "cli/Completion.h"

namespace wattlark {

/// The names of settings, meters and destinations for the commands that take one. Those of the
/// user's own profile where the words name none; nothing when it cannot be read.
std::vector<std::string> CompletionValues(const CompletionQuestion& question,
                                          const RegionalSettings& regional);

}  // namespace wattlark
