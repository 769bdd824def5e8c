#include "app/forms/PacketPage.h"

#include <QVBoxLayout>

#include "app/PacketChartView.h"
#include "app/forms/FitLabel.h"
#include "app/forms/PacketChart.h"
#include "app/forms/PageFrame.h"

namespace wattlark {

PacketPage::PacketPage(Monitor& monitor, MeterSelection& selection, QWidget* parent)
    : QWidget(parent),
      monitor_(monitor),
      selection_(selection),
      elaPacketHeader_(
          new FitLabel("elaPacketHeader", FitLabel::Size::Heading, Qt::AlignLeft, this)),
      chtPacket_(new PacketChart(monitor.Regional(), this)) {
  setObjectName("PacketPage");
  QVBoxLayout* column = PageColumn(*this);
  column->addWidget(elaPacketHeader_);
  column->addWidget(chtPacket_, 1);
  elaPacketHeader_->setText("No Data");
  Refresh();
}

void PacketPage::Refresh() {
  const clsKillAWatt* meter = selection_.SelectedKillAWatt(false);
  if (meter == nullptr) return;
  PacketChartView view = MakePacketChartView(*meter, monitor_.Regional());
  const QString header = QString::fromStdString(view.header);
  elaPacketHeader_->setText(header);
  chtPacket_->setAccessibleDescription(header);
  // Another meter's waveforms would be taken for this one's. A new meter can stand where a removed
  // one stood, but has no reading yet.
  const bool isOther = meter != shown_ || meter->Timestamp().IsNever();
  shown_ = meter;
  if (isOther || !view.volts.empty()) {
    chtPacket_->SetSamples(std::move(view.volts), std::move(view.amps));
  }
}

}  // namespace wattlark
