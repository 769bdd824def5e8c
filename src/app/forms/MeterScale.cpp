#include "app/forms/MeterScale.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "app/forms/PageFrame.h"

namespace wattlark {

namespace {

constexpr int kPointerWidth = 12;
constexpr int kPointerHeight = 10;
constexpr int kGap = 2;
constexpr int kFocusGap = 3;
constexpr int kTrack = 12;
constexpr int kScaleHeight = 24;
constexpr int kTicks = 10;
constexpr int kTicksPerLongOne = 5;

}  // namespace

class MeterScale::Scale : public QWidget {
 public:
  explicit Scale(QWidget* parent) : QWidget(parent) {
    setObjectName("picMeter");
    setAccessibleName("Meter");
    setFocusPolicy(Qt::TabFocus);
  }

  void SetFilled(double fraction) {
    if (fraction == filled_) return;
    filled_ = fraction;
    update();
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    const Theme theme = Theme::FromPalette(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF track(0, 0, width(), kTrack);
    painter.setBrush(theme.hairline);
    painter.drawRoundedRect(track, kTrack / 2.0, kTrack / 2.0);
    if (filled_ > 0) {
      // The end below the pointer is straight, and a short bar keeps the track's round start.
      painter.save();
      painter.setClipRect(QRectF(0, 0, filled_ * width(), kTrack));
      painter.setBrush(theme.accent);
      painter.drawRoundedRect(track, kTrack / 2.0, kTrack / 2.0);
      painter.restore();
    }
    PaintTicks(painter, theme);
  }

 private:
  void PaintTicks(QPainter& painter, const Theme& theme) const {
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(theme.mutedText, 1));
    for (int tick = 0; tick <= kTicks; ++tick) {
      const int x = static_cast<int>(std::lround((width() - 1) * tick / double{kTicks}));
      const int length = tick % kTicksPerLongOne == 0 ? 7 : 4;
      painter.drawLine(x, kTrack + 4, x, kTrack + 4 + length);
    }
  }

  double filled_ = 0;
};

class MeterScale::Pointer : public QWidget {
 public:
  explicit Pointer(QWidget* parent) : QWidget(parent) {
    setObjectName("picIndicator");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    resize(kPointerWidth, kPointerHeight);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::FromPalette(palette()).text);
    const double right = width();
    painter.drawPolygon(
        QPolygonF({{0, 0}, {right, 0}, {right / 2, static_cast<double>(height())}}));
  }
};

MeterScale::MeterScale(QWidget* parent)
    : QWidget(parent), picMeter_(new Scale(this)), picIndicator_(new Pointer(this)) {
  setFixedHeight(kPointerHeight + kGap + kScaleHeight + kFocusGap);
  picMeter_->installEventFilter(this);
  picIndicator_->hide();
}

void MeterScale::SetNeedle(std::optional<double> fraction) {
  needle_ = fraction;
  picMeter_->SetFilled(fraction.value_or(0));
  picIndicator_->setVisible(fraction.has_value());
  PlaceIndicator();
}

void MeterScale::SetTip(const QString& tip) {
  picMeter_->setToolTip(tip);
  picMeter_->setAccessibleDescription(tip);
}

void MeterScale::resizeEvent(QResizeEvent* /*event*/) {
  // Half a pointer stays free at either end.
  const int margin = kPointerWidth / 2;
  picMeter_->setGeometry(margin, kPointerHeight + kGap, std::max(1, width() - 2 * margin),
                         kScaleHeight);
  PlaceIndicator();
}

void MeterScale::PlaceIndicator() {
  if (!needle_) return;
  const double x = std::clamp(*needle_, 0.0, 1.0) * picMeter_->width();
  picIndicator_->move(picMeter_->x() + static_cast<int>(std::lround(x)) - kPointerWidth / 2, 0);
}

// The ring is wider than the scale, whose ends it would hide.
void MeterScale::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  PaintFocus(painter, *picMeter_,
             picMeter_->geometry().adjusted(-2 * kFocusGap, -kFocusGap, 2 * kFocusGap, kFocusGap),
             Theme::FromPalette(palette()));
}

bool MeterScale::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
  const bool isReset = (event->type() == QEvent::MouseButtonDblClick &&
                        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) ||
                       (event->type() == QEvent::KeyPress &&
                        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete);
  if (!isReset) return QWidget::eventFilter(watched, event);
  emit ResetWanted();
  return true;
}

}  // namespace wattlark
