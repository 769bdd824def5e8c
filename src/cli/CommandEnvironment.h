#pragma once

#include <iosfwd>
#include <string_view>

#include "support/RegionalSettings.h"

namespace wattlark {

/// What a command reads, writes and formats with. The streams must outlive it.
struct CommandEnvironment {
  std::istream& input;
  std::ostream& output;    ///< data: what the command was asked for
  std::ostream& messages;  ///< everything else that the user is to know
  RegionalSettings regional;
};

/// Writes a message of one or more lines, harmless to a terminal whatever it quotes, with a line
/// end.
void TellUser(std::ostream& messages, std::string_view text);

}  // namespace wattlark
