#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>

namespace wattlark {

/// Random numbers that are the same for a seed with every compiler and standard library (the
/// distributions of <random> are not).
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  /// 0 inclusive to 1 exclusive.
  double Uniform() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
  /// Mean 0, standard deviation 1.
  double Gaussian() {
    const double radius = std::sqrt(-2.0 * std::log(1.0 - Uniform()));
    return radius * std::cos(2.0 * std::numbers::pi * Uniform());
  }
  /// True with the probability `rate`, 0 to 1.
  bool Chance(double rate) { return Uniform() < rate; }
  /// 0 to `limit` - 1; `limit` must not be 0.
  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(Uniform() * limit); }

 private:
  std::mt19937_64 engine_;
};

}  // namespace wattlark
