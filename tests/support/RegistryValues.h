#pragma once

#include <string>

#include "platform/Registry.h"

namespace wattlark {

/// A string value of exactly these bytes.
inline RegistryValue TextValue(const std::string& text) {
  return {RegistryType::String, {text.begin(), text.end()}};
}

}  // namespace wattlark
