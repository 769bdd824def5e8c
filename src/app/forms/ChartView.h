#pragma once

#include <qcustomplot.h>

#include <QFont>
#include <vector>

#include "app/ChartScale.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

/// Labels that the chart itself has worked out, instead of the plot's own choice.
class FixedTicker : public QCPAxisTicker {
 public:
  void Set(QVector<double> ticks, QVector<QString> labels);
  void generate(const QCPRange& range, const QLocale& locale, QChar formatChar, int precision,
                QVector<double>& ticks, QVector<double>* subTicks,
                QVector<QString>* tickLabels) override;

 private:
  QVector<double> ticks_;
  QVector<QString> labels_;
};

/// A plot in the window's own style: no frame, hairline grid, small labels, colours of the palette.
/// It is drawn anew when it is painted and only then, however often that was asked for before.
class ChartView : public QCustomPlot {
  Q_OBJECT

 public:
  ChartView(const QString& objectName, const QString& accessibleName, QWidget* parent);

  QSize minimumSizeHint() const override { return {200, 120}; }

 protected:
  /// The data have changed: draws them with the next paint event.
  void Redraw();
  /// Last preparations before the plot is drawn, with its final size.
  virtual void Prepare() {}
  /// Colours and fonts of the plot's parts after a change of the palette.
  virtual void ApplyTheme(const Theme& theme) = 0;
  /// To be called once by the constructor of the class that overrides `ApplyTheme`.
  void UpdateTheme();

  const Theme& Colors() const { return theme_; }
  QFont LabelFont() const;
  /// The axis takes the scale's bounds, and a label at each of its steps. Answers the labels' width
  /// in pixels, with the gap to the plot.
  static int SetValueAxis(QCPAxis& axis, const ValueScale& scale, const RegionalSettings& regional);
  /// The plot's place, which the plot would find only while it is drawn: too late for the number of
  /// labels to suit it.
  void SetPlotMargins(const QMargins& margins) { axisRect()->setMargins(margins); }
  int TimeLabelHeight() const;
  static void StyleAxis(QCPAxis& axis, const QColor& color, const QFont& font);
  /// How many value labels suit the present height.
  int ValueSteps() const;

  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  Theme theme_{};
  bool isStale_ = true;
};

}  // namespace wattlark
