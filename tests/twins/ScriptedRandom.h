#pragma once

#include <deque>
#include <initializer_list>
#include <stdexcept>

#include "platform/RandomSource.h"

namespace wattlark {

/// Gives the numbers of a script in order, and with `repeats` the last one for ever.
class ScriptedRandom final : public RandomSource {
 public:
  explicit ScriptedRandom(std::initializer_list<double> script) : numbers(script) {}

  std::deque<double> numbers;
  bool repeats = false;
  int reseeds = 0;

  void Reseed(std::uint32_t /*seed*/) override { ++reseeds; }
  double Next() override {
    if (numbers.empty()) throw std::logic_error("more random numbers drawn than expected");
    const double number = numbers.front();
    if (!repeats || numbers.size() > 1) numbers.pop_front();
    return number;
  }
};

}  // namespace wattlark
