#include "app/forms/SelectorGroup.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <algorithm>

#include "app/forms/PageFrame.h"
#include "platform/qtwidgets/Icons.h"

namespace wattlark {

namespace {

constexpr int kHeight = 28;
constexpr int kIcon = 16;
constexpr int kIconGap = 4;
constexpr int kPadding = 5;
constexpr int kLeastPadding = 4;
constexpr int kSpacing = 4;
constexpr double kRadius = 6;
constexpr double kFont = 0.9;

}  // namespace

/// One button of the row.
class SelectorGroup::Button : public QPushButton {
 public:
  Button(const SelectorChoice& choice, QWidget* parent)
      : QPushButton(choice.text, parent), picture_(choice.picture) {
    setCheckable(true);
    // Arrow keys select; of the row the tab key reaches the selected button only.
    setAutoExclusive(true);
    setFocusPolicy(Qt::ClickFocus);
    connect(this, &QAbstractButton::toggled, this, [this](bool isSelected) {
      setFocusPolicy(isSelected ? Qt::StrongFocus : Qt::ClickFocus);
    });
    setAccessibleName(choice.name);
    setToolTip(choice.name);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    Prepare();
    KeepReadable();
  }

  void ShowPicture(bool shows) {
    if (shows == showsPicture_) return;
    showsPicture_ = shows;
    update();
  }

  QSize sizeHint() const override {
    const int picture = picture_.isEmpty() ? 0 : kIcon + kIconGap;
    return {text_.width() + picture + 2 * kPadding, minimumSizeHint().height()};
  }

  QSize minimumSizeHint() const override {
    return {text_.width() + 2 * kLeastPadding,
            std::max(kHeight, text_.height() + 2 * kLeastPadding)};
  }

 protected:
  void changeEvent(QEvent* event) override {
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) Prepare();
    if (event->type() == QEvent::FontChange) KeepReadable();
  }

  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    PaintGround(painter);
    PaintContent(painter);
    PaintFocus(painter, *this, rect().adjusted(3, 3, -3, -3), theme_);
  }

 private:
  void Prepare() {
    theme_ = Theme::FromPalette(palette());
    icon_ = TintedIcon(picture_, {theme_.mutedText, theme_.accent, theme_.hairline});
  }

  void KeepReadable() {
    // In the wider, bold form whether selected or not, so that a choice moves nothing.
    const QFontMetrics metrics(TextFont(true));
    text_ = {metrics.horizontalAdvance(text()), metrics.height()};
    // The policy that makes all buttons of a row equally wide knows no least width of its own.
    setMinimumWidth(minimumSizeHint().width());
  }

  QFont TextFont(bool selected) const {
    QFont small = font();
    small.setPixelSize(std::max(8, qRound(QFontInfo(small).pixelSize() * kFont)));
    small.setWeight(selected ? QFont::Bold : QFont::Normal);
    return small;
  }

  void PaintGround(QPainter& painter) const {
    const double pen = isChecked() ? 2 : 1;
    const QRectF frame = QRectF(rect()).adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2);
    const bool raised = isDown() || underMouse();
    painter.setPen(QPen(isChecked() ? theme_.accent
                        : raised    ? theme_.mutedText
                                    : theme_.hairline,
                        pen));
    painter.setBrush(isChecked() || isDown() ? theme_.selectedFill : theme_.base);
    painter.drawRoundedRect(frame, kRadius, kRadius);
  }

  void PaintContent(QPainter& painter) const {
    painter.setFont(TextFont(isChecked()));
    painter.setPen(isChecked() ? theme_.accent : theme_.text);
    QRect space = rect();
    if (!picture_.isEmpty() && showsPicture_) {
      const int used = kIcon + kIconGap + painter.fontMetrics().horizontalAdvance(text());
      const QRect content(space.left() + (space.width() - used) / 2, space.top(), used,
                          space.height());
      const QRect picture(content.left(), content.top() + (content.height() - kIcon) / 2, kIcon,
                          kIcon);
      icon_.paint(&painter, QStyle::visualRect(layoutDirection(), content, picture),
                  Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled,
                  isChecked() ? QIcon::On : QIcon::Off);
      space = QStyle::visualRect(layoutDirection(), content,
                                 content.adjusted(kIcon + kIconGap, 0, 0, 0));
    }
    painter.drawText(space, Qt::AlignCenter | Qt::TextDontClip, text());
  }

  QString picture_;
  Theme theme_{};
  QIcon icon_;
  QSize text_;  ///< the room that it takes, in pixels
  bool showsPicture_ = true;
};

SelectorGroup::SelectorGroup(const QString& objectName, const QString& accessibleName,
                             const std::vector<SelectorChoice>& choices, QWidget* parent)
    : QWidget(parent) {
  setObjectName(objectName);
  setAccessibleName(accessibleName);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kSpacing);
  for (const SelectorChoice& choice : choices) {
    const int index = static_cast<int>(buttons_.size());
    auto* button = new Button(choice, this);
    button->setObjectName(objectName + QString::number(index));
    connect(button, &QAbstractButton::clicked, this, [this, index] { emit Chosen(index); });
    row->addWidget(button, 1);
    buttons_.push_back(button);
  }
  Show(0);
}

SelectorGroup* SelectorGroup::Units(const QString& objectName, QWidget* parent) {
  return new SelectorGroup(objectName, "Unit",
                           {{"Power", "Power", "power"},
                            {"Energy", "Energy", "energy"},
                            {"Cost", "Cost", "cost"},
                            {"CO2", "CO2", "co2"}},
                           parent);
}

SelectorGroup* SelectorGroup::Intervals(const QString& objectName, QWidget* parent) {
  return new SelectorGroup(objectName, "Interval",
                           {{"Min", "Minute", ""},
                            {"Hour", "Hour", ""},
                            {"Day", "Day", ""},
                            {"Week", "Week", ""},
                            {"Month", "Month", ""},
                            {"Year", "Year", ""}},
                           parent);
}

// The pictures of the whole row give way before any text does.
void SelectorGroup::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const int gaps = kSpacing * (static_cast<int>(buttons_.size()) - 1);
  const int share = (width() - gaps) / static_cast<int>(buttons_.size());
  const bool hasRoom = std::all_of(buttons_.begin(), buttons_.end(), [share](const Button* button) {
    return button->sizeHint().width() <= share;
  });
  for (Button* button : buttons_) button->ShowPicture(hasRoom);
}

int SelectorGroup::Selected() const {
  const auto found = std::find_if(buttons_.begin(), buttons_.end(),
                                  [](const Button* button) { return button->isChecked(); });
  return found == buttons_.end() ? 0 : static_cast<int>(found - buttons_.begin());
}

void SelectorGroup::Select(int index) {
  if (index < 0 || index >= static_cast<int>(buttons_.size())) return;
  buttons_[static_cast<std::size_t>(index)]->click();
}

void SelectorGroup::Show(int index) {
  const bool isInside = index >= 0 && index < static_cast<int>(buttons_.size());
  buttons_[static_cast<std::size_t>(isInside ? index : 0)]->setChecked(true);
}

}  // namespace wattlark
