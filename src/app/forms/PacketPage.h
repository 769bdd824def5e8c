#pragma once

#include <QWidget>

#include "app/MeterSelection.h"
#include "app/Monitor.h"

namespace wattlark {

class FitLabel;
class PacketChart;

/// Page 4 of the main window: the waveforms of the selected meter's last packet.
class PacketPage : public QWidget {
  Q_OBJECT

 public:
  /// Both must outlive this widget.
  PacketPage(Monitor& monitor, MeterSelection& selection, QWidget* parent = nullptr);

  /// Takes the last packet; the chart is painted once, when it is next on screen. Without a meter
  /// the page stays as it is, and a packet without samples leaves the waveforms of that meter.
  void Refresh();

 private:
  Monitor& monitor_;
  MeterSelection& selection_;
  const clsKillAWatt* shown_ = nullptr;
  FitLabel* elaPacketHeader_;
  PacketChart* chtPacket_;
};

}  // namespace wattlark
