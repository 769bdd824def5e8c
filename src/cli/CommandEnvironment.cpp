#include "cli/CommandEnvironment.h"

#include <ostream>

#include "support/DisplayText.h"
#include "support/modText.h"

namespace wattlark {

void TellUser(std::ostream& messages, std::string_view text) {
  for (std::string_view line : Split(text, '\n')) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    messages << PrintableText(line) << "\n";
  }
}

}  // namespace wattlark
