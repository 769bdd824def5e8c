#include "acquisition/HeardMeters.h"

#include <algorithm>

namespace wattlark {

void HeardMeters::Note(std::int16_t address, DateTime time) {
  const auto known = std::ranges::find(heard_, address, &HeardMeter::address);
  HeardMeter meter{address, 1, time};
  if (known != heard_.end()) {
    meter.frames += known->frames;
    heard_.erase(known);
  } else if (heard_.size() == Most) {
    heard_.erase(std::ranges::min_element(heard_, {}, &HeardMeter::frames));
  }
  heard_.push_back(meter);
}

std::vector<HeardMeter> HeardMeters::All() const {
  std::vector<HeardMeter> sorted = heard_;
  std::ranges::sort(sorted, {}, &HeardMeter::address);
  return sorted;
}

}  // namespace wattlark
