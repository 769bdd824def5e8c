#include "config/forms/CalibrationPanel.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QProxyStyle>
#include <QVBoxLayout>
#include <utility>

#include "app/forms/FitLabel.h"
#include "app/forms/PageFrame.h"

namespace wattlark {

namespace {

constexpr int kWidthInCharacters = 46;
constexpr int kMargin = 16;
constexpr int kBarLength = 160;
constexpr int kBarWidth = 24;
constexpr int kPageStep = 10;
constexpr int kGap = 12;

struct ControlNames {
  const char* readout;
  const char* bar;
  const char* value;
  const char* spokenBar;
  const char* noReading;
};

const ControlNames& NamesOf(CalibrationStep step) {
  static constexpr ControlNames kNames[CalibrationSteps] = {
      {"lblVolts", "scrVoltageScaler", "lblVoltageScaler", "Voltage scale", "--- Volts"},
      {"lblAmps", "scrCurrentOffset", "lblCurrentOffset", "Current offset", "--- Amps"},
      {"lblWatts", "scrCurrentScaler", "lblCurrentScaler", "Current scale", "--- Watts"}};
  return kNames[static_cast<std::size_t>(step)];
}

/// Has arrows to click, large ones, whatever the desktop's style leaves of scroll bars.
class ArrowStyle : public QProxyStyle {
 public:
  ArrowStyle() : QProxyStyle("fusion") {}

  int pixelMetric(PixelMetric metric, const QStyleOption* option,
                  const QWidget* widget) const override {
    return metric == PM_ScrollBarExtent ? kBarWidth
                                        : QProxyStyle::pixelMetric(metric, option, widget);
  }
};

/// A scroll bar that adjusts a value, with the mouse and with the keyboard.
class AdjustBar : public QScrollBar {
 public:
  AdjustBar() : QScrollBar(Qt::Vertical) {
    setStyle(&style_);
    setFocusPolicy(Qt::StrongFocus);
    setRange(-MeterCalibration::LargestPosition, MeterCalibration::LargestPosition);
    setSingleStep(1);
    setPageStep(kPageStep);
    setFixedWidth(kBarWidth);
    setMinimumHeight(kBarLength);
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QScrollBar::paintEvent(event);
    QPainter painter(this);
    PaintFocus(painter, *this, rect(), Theme::FromPalette(palette()));
  }

 private:
  ArrowStyle style_;
};

}  // namespace

CalibrationPanel::CalibrationPanel(CalibrationStep step, std::function<void(int position)> onMoved,
                                   QWidget* parent)
    : QWidget(parent),
      instructions_(CalibrationInstructions(step)),
      lblInstructions_(new QLabel(instructions_)),
      readout_(new FitLabel(NamesOf(step).readout, FitLabel::Size::Largest, Qt::AlignLeft, this)),
      value_(new FitLabel(NamesOf(step).value, FitLabel::Size::Normal, Qt::AlignLeft, this)),
      limit_(new FitLabel("lblLimit", FitLabel::Size::Small, Qt::AlignLeft, this)),
      bar_(new AdjustBar) {
  const ControlNames& names = NamesOf(step);
  lblInstructions_->setObjectName("lblInstructions");
  lblInstructions_->setTextFormat(Qt::PlainText);
  lblInstructions_->setWordWrap(true);
  lblInstructions_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  readout_->setText(names.noReading);
  value_->SetTone(FitLabel::Tone::Muted);
  limit_->SetTone(FitLabel::Tone::Warning);
  bar_->setObjectName(names.bar);
  bar_->setAccessibleName(names.spokenBar);
  connect(bar_, &QScrollBar::valueChanged, this, std::move(onMoved));

  auto* values = new QVBoxLayout;
  values->setSpacing(4);
  values->addStretch(1);
  values->addWidget(readout_, 2);
  values->addWidget(value_);
  values->addWidget(limit_);
  values->addStretch(1);
  auto* row = new QHBoxLayout;
  row->setSpacing(kGap);
  row->addLayout(values, 1);
  row->addWidget(bar_);
  QVBoxLayout* column = PageColumn(*this);
  column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  column->setSpacing(kGap);
  column->addWidget(lblInstructions_);
  column->addLayout(row, 1);
  FitToFont();
}

void CalibrationPanel::ShowReadout(const QString& text) {
  if (readout_->text() == text) return;
  readout_->setText(text);
  Describe();
}

void CalibrationPanel::ShowValue(const QString& text, bool isLimited) {
  value_->setText(text);
  limit_->setText(isLimited ? "This is as far as it goes." : "");
  Describe();
}

// What a screen reader says of the bar beside its name.
void CalibrationPanel::Describe() {
  QStringList parts{readout_->text(), value_->text()};
  if (!limit_->text().isEmpty()) parts += limit_->text();
  parts += instructions_;
  bar_->setAccessibleDescription(parts.join("; "));
}

// The panel lies in a strip that does not ask how high its text gets in the width it has.
void CalibrationPanel::FitToFont() {
  const int width = QFontMetrics(font()).averageCharWidth() * kWidthInCharacters;
  lblInstructions_->setMinimumSize(0, 0);
  lblInstructions_->setMinimumSize(width, lblInstructions_->heightForWidth(width));
}

void CalibrationPanel::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) FitToFont();
}

}  // namespace wattlark
