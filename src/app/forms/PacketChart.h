#pragma once

#include <vector>

#include "app/forms/ChartView.h"

namespace wattlark {

/// The chart `chtPacket`: volts as a solid line on the left axis, amps dashed on the right one.
class PacketChart : public ChartView {
  Q_OBJECT

 public:
  /// `regional` must outlive this widget.
  PacketChart(const RegionalSettings& regional, QWidget* parent);

  /// As many of one as of the other; x runs from 1.
  void SetSamples(std::vector<double> volts, std::vector<double> amps);

 protected:
  void Prepare() override;
  void ApplyTheme(const Theme& theme) override;

 private:
  struct Series {
    std::vector<double> samples;
    QCPAxis* axis = nullptr;
    QCPGraph* graph = nullptr;
    QCPItemText* title = nullptr;
    QCPItemLine* sample = nullptr;  ///< of the line, beside the title
  };

  void Build(Series& series, QCPAxis* axis, const QString& name);
  void Style(const Series& series, const QColor& color, Qt::PenStyle style);
  /// Answers the width of the axis' labels.
  int Fill(Series& series);

  const RegionalSettings& regional_;
  Series volts_;
  Series amps_;
};

}  // namespace wattlark
