#pragma once

#include <cstddef>
#include <string>

#include "platform/Registry.h"

namespace wattlark {

struct Salvage {
  std::size_t keys = 0;
  std::size_t values = 0;
  std::string problem;  ///< why what was read could not be stored, in words; empty when it was
};

/// Copies every key and value that can still be read from the damaged store `file` into `into`, in
/// one transaction. The file is only read, its journal is ignored.
Salvage SalvageStore(const std::string& file, Registry& into);

}  // namespace wattlark
