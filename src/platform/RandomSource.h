#pragma once

#include <cstdint>

namespace wattlark {

/// Uniform random numbers for fabricated readings.
class RandomSource {
 public:
  virtual ~RandomSource() = default;
  /// Stirs `seed` into the generator; two calls with the same seed need not restart one sequence.
  virtual void Reseed(std::uint32_t seed) = 0;
  /// The next number in [0, 1).
  virtual double Next() = 0;
};

}  // namespace wattlark
