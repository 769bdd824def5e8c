#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/MeterModel.h"
#include "sim/Simulation.h"
#include "support/DateTime.h"

namespace wattlark {

/// What the command line asks for, checked.
struct Options {
  std::string link;     ///< link to the pseudo-terminal; empty = none
  std::string capture;  ///< capture file, "-" = standard output; empty = pseudo-terminal
  std::optional<std::int64_t> durationSeconds;  ///< nothing = until stopped; set with a capture
  DateTime start;                               ///< local time at which a capture starts
  std::vector<MeterSettings> meters;            ///< at least one; addresses differ
  LineSettings line;
  double periodSeconds = 2.0;
  std::uint64_t seed = 1;
};

/// `options`, or else the exit status and what to print: help when it is 0, an error when it is 2.
struct ParsedOptions {
  std::optional<Options> options;
  int exitStatus = 0;
  std::string message;
};

/// `arguments` without the program's name.
ParsedOptions ParseOptions(const std::vector<std::string>& arguments);

}  // namespace wattlark
