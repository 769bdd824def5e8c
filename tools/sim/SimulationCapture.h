#pragma once

#include <cstdint>
#include <iosfwd>

#include "sim/Simulation.h"
#include "support/DateTime.h"

namespace wattlark {

/// Writes what `simulation` delivers in the first `durationSeconds` as a capture that starts at
/// local time `start`: an "rx" line for each delivery and a "tick" line for each full second. The
/// tick count is 0 at the start and wraps after 32 bits. False when the stream failed.
bool WriteCapture(Simulation& simulation, DateTime start, std::int64_t durationSeconds,
                  std::ostream& output);

}  // namespace wattlark
