#pragma once

#include <random>

#include "platform/RandomSource.h"

namespace wattlark {

/// The standard library's generator. A seed is stirred into its state, so that two meters that seed
/// in the same millisecond do not get the same numbers.
class StandardRandom : public RandomSource {
 public:
  explicit StandardRandom(std::uint32_t firstSeed = std::random_device()()) : engine_(firstSeed) {}

  void Reseed(std::uint32_t seed) override {
    std::seed_seq stirred{seed, static_cast<std::uint32_t>(engine_()),
                          static_cast<std::uint32_t>(engine_())};
    engine_.seed(stirred);
  }
  double Next() override { return static_cast<double>(engine_()) / 4294967296.0; }

 private:
  std::mt19937 engine_;
};

}  // namespace wattlark
