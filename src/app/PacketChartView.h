#pragma once

#include <string>
#include <vector>

#include "acquisition/clsKillAWatt.h"
#include "support/RegionalSettings.h"

namespace wattlark {

/// The last packet's waveforms; x runs from 1.
struct PacketChartView {
  std::string header;  ///< "Sampled @ " and the time, or "No Data"
  std::vector<double> volts;
  std::vector<double> amps;  ///< as many
};

PacketChartView MakePacketChartView(const clsKillAWatt& meter, const RegionalSettings& regional);

}  // namespace wattlark
