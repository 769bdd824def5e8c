#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// Ends a fuzz program as a finding unless what has to hold for any input does.
inline void Require(bool condition) {
  if (!condition) std::abort();
}

/// The input as text.
inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}
