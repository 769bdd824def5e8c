#pragma once

#include <span>

namespace wattlark {

/// A state of the United States, or the District of Columbia, with what its electricity is taken to
/// cost and to emit.
struct StateRates {
  const char* code;  ///< postal, two letters
  double mils;       ///< currency units per kWh
  double co2;        ///< pounds per kWh
};

/// All 51 in the order of their codes; `AppSettings::ServiceState` is an index into it.
std::span<const StateRates> ServiceStates();

}  // namespace wattlark
