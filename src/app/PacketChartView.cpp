#include "app/PacketChartView.h"

namespace wattlark {

PacketChartView MakePacketChartView(const clsKillAWatt& meter, const RegionalSettings& regional) {
  PacketChartView view;
  meter.GetSamples(view.volts, view.amps);
  const DateTime time = meter.Timestamp();
  view.header = time.IsNever() ? "No Data" : "Sampled @ " + FormatLongTime(regional, time);
  return view;
}

}  // namespace wattlark
