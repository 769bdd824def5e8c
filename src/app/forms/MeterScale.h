#pragma once

#include <QWidget>
#include <functional>
#include <optional>

namespace wattlark {

/// The meter of page 1: `picMeter`, a straight scale from 0 to the peak, and above it the pointer
/// `picIndicator`.
class MeterScale : public QWidget {
  Q_OBJECT

 public:
  explicit MeterScale(QWidget* parent);

  /// 0..1 of the scale; nothing hides the pointer.
  void SetNeedle(std::optional<double> fraction);
  void SetTip(const QString& tip);

 signals:
  /// The user has double-clicked the scale or, from the keyboard, pressed Delete on it.
  void ResetWanted();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void PlaceIndicator();

  class Scale;
  class Pointer;
  Scale* picMeter_;
  Pointer* picIndicator_;
  std::optional<double> needle_;
};

}  // namespace wattlark
