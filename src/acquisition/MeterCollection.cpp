#include "acquisition/MeterCollection.h"

#include <algorithm>

#include "support/modText.h"

namespace wattlark {

std::string MeterCollection::Key(std::int16_t address) {
  return "XBEE" + std::to_string(address);
}

bool MeterCollection::Add(std::unique_ptr<clsKillAWatt>&& meter) {
  if (!byAddress_.try_emplace(meter->XBeeAddress(), meter.get()).second) return false;
  meters_.push_back(std::move(meter));
  return true;
}

bool MeterCollection::Remove(const clsKillAWatt& meter) {
  const auto found =
      std::ranges::find_if(meters_, [&](const auto& held) { return held.get() == &meter; });
  if (found == meters_.end()) return false;
  byAddress_.erase(meter.XBeeAddress());
  meters_.erase(found);
  return true;
}

bool MeterCollection::ChangeAddress(clsKillAWatt& meter, std::int16_t address) {
  if (meter.XBeeAddress() == address) return true;
  if (!byAddress_.try_emplace(address, &meter).second) return false;
  byAddress_.erase(meter.XBeeAddress());
  meter.SetXBeeAddress(address);
  return true;
}

clsKillAWatt* MeterCollection::FindAddress(std::int16_t address) const {
  const auto found = byAddress_.find(address);
  return found == byAddress_.end() ? nullptr : found->second;
}

clsKillAWatt* MeterCollection::FindName(const std::string& name) const {
  const std::string folded = FoldCase(name);
  for (const auto& meter : meters_) {
    if (FoldCase(meter->Name()) == folded) return meter.get();
  }
  return nullptr;
}

}  // namespace wattlark
