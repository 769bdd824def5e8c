#include "app/forms/AlarmSign.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

#include "app/forms/FitLabel.h"
#include "platform/qtwidgets/Icons.h"
#include "platform/qtwidgets/Theme.h"

namespace wattlark {

namespace {

constexpr QSize kPicture(16, 16);

}  // namespace

AlarmSign::AlarmSign(QWidget* parent) : QWidget(parent), picture_(new QLabel(this)) {
  setObjectName("picAlarm");
  setAccessibleName("Alarm");
  QSizePolicy policy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  policy.setRetainSizeWhenHidden(true);
  setSizePolicy(policy);
  auto* word = new FitLabel("lblAlarm", FitLabel::Size::Normal, Qt::AlignLeft, this);
  QFont bold = word->font();
  bold.setWeight(QFont::Bold);
  word->setFont(bold);
  word->setText("Alarm");
  word->SetTone(FitLabel::Tone::Warning);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(4, 0, 4, 0);
  row->setSpacing(4);
  row->addWidget(picture_);
  row->addWidget(word);
  SetPicture();
}

void AlarmSign::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) SetPicture();
}

void AlarmSign::SetPicture() {
  picture_->setPixmap(
      TintedPixmap("alarm", Theme::FromPalette(palette()).warning, kPicture, devicePixelRatioF()));
}

}  // namespace wattlark
