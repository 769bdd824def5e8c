#pragma once

#include <memory>
#include <string>
#include <utility>

#include "acquisition/MeterCollection.h"

namespace wattlark {

inline std::unique_ptr<clsKillAWatt> NewMeter(const std::string& name, std::int16_t address) {
  auto meter = std::make_unique<clsKillAWatt>();
  meter->SetName(name);
  meter->SetXBeeAddress(address);
  return meter;
}

/// A new meter in a collection in which its address is free.
inline clsKillAWatt& AddMeter(MeterCollection& meters, const std::string& name,
                              std::int16_t address) {
  meters.Add(NewMeter(name, address));
  return *meters.FindAddress(address);
}

}  // namespace wattlark
