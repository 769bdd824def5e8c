#include "app/forms/CurrentPage.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "app/CurrentPageView.h"
#include "app/forms/AlarmSign.h"
#include "app/forms/FitLabel.h"
#include "app/forms/MeterScale.h"
#include "app/forms/PageFrame.h"
#include "app/forms/SelectorGroup.h"

namespace wattlark {

CurrentPage::CurrentPage(Monitor& monitor, MeterSelection& selection, QWidget* parent)
    : QWidget(parent),
      monitor_(monitor),
      selection_(selection),
      elaCurrentUnit_(SelectorGroup::Units("elaCurrentUnit", this)),
      elaCurrentInterval_(nullptr),
      lblCurrentValue_(
          new FitLabel("lblCurrentValue", FitLabel::Size::Largest, Qt::AlignHCenter, this)),
      lblCurrentInterval_(
          new FitLabel("lblCurrentInterval", FitLabel::Size::Normal, Qt::AlignHCenter, this)),
      lblCurrentVolts_(
          new FitLabel("lblCurrentVolts", FitLabel::Size::Normal, Qt::AlignLeft, this)),
      lblCurrentAmps_(new FitLabel("lblCurrentAmps", FitLabel::Size::Normal, Qt::AlignRight, this)),
      lblMax_(new FitLabel("lblMax", FitLabel::Size::Small, Qt::AlignRight, this)),
      scale_(new MeterScale(this)),
      picAlarm_(new AlarmSign(this)) {
  // Made last, so that the tab key comes to it after the meter above it.
  elaCurrentInterval_ = SelectorGroup::Intervals("elaCurrentInterval", this);
  setObjectName("CurrentPage");
  BuildLayout();
  const AppSettings& settings = monitor_.Profile().Settings();
  elaCurrentUnit_->Show(settings.CurrentUnit);
  elaCurrentInterval_->Show(settings.CurrentInterval);
  connect(elaCurrentUnit_, &SelectorGroup::Chosen, this, [this](int unit) {
    monitor_.Profile().Settings().CurrentUnit = unit;
    Refresh();
  });
  connect(elaCurrentInterval_, &SelectorGroup::Chosen, this, [this](int interval) {
    monitor_.Profile().Settings().CurrentInterval = interval;
    Refresh();
  });
  connect(scale_, &MeterScale::ResetWanted, this, [this] { ResetPeak(); });
  Refresh();
}

void CurrentPage::BuildLayout() {
  auto* zero = new FitLabel("lblMin", FitLabel::Size::Small, Qt::AlignLeft, this);
  zero->setText("0");
  auto* peak = new FitLabel("lblPeak", FitLabel::Size::Small, Qt::AlignRight, this);
  peak->setText("Peak ");
  for (FitLabel* label : {zero, peak, lblMax_, lblCurrentInterval_}) {
    label->SetTone(FitLabel::Tone::Muted);
  }
  auto* ends = new QHBoxLayout;
  ends->setContentsMargins(4, 0, 4, 0);
  ends->setSpacing(0);
  ends->addWidget(zero);
  ends->addStretch(1);
  ends->addWidget(peak);
  ends->addWidget(lblMax_);

  auto* reading = new QHBoxLayout;
  reading->setSpacing(4);
  reading->addWidget(lblCurrentVolts_, 1);
  reading->addWidget(picAlarm_);
  reading->addWidget(lblCurrentAmps_, 1);

  QVBoxLayout* column = PageColumn(*this);
  column->addWidget(elaCurrentUnit_);
  column->addStretch(2);
  column->addWidget(lblCurrentValue_, 6);
  column->addWidget(lblCurrentInterval_);
  column->addStretch(3);
  auto* meter = new QVBoxLayout;
  meter->setSpacing(4);
  meter->addWidget(scale_);
  meter->addLayout(ends);
  column->addLayout(meter);
  column->addStretch(1);
  column->addWidget(new Hairline(this));
  column->addLayout(reading);
  column->addSpacing(4);
  column->addWidget(elaCurrentInterval_);
}

void CurrentPage::Refresh() {
  const clsKillAWatt* meter = selection_.SelectedKillAWatt(false);
  if (meter == nullptr) return;
  const CurrentPageView view = MakeCurrentPageView(*meter, monitor_.Profile().Settings(),
                                                   monitor_.Regional(), monitor_.Now());
  lblCurrentValue_->setText(QString::fromStdString(view.value));
  lblCurrentValue_->SetTone(view.isReceiving ? FitLabel::Tone::Text : FitLabel::Tone::Muted);
  lblCurrentInterval_->setText(QString::fromStdString(view.interval));
  lblCurrentVolts_->setText(QString::fromStdString(view.volts));
  lblCurrentAmps_->setText(QString::fromStdString(view.amps));
  lblMax_->setText(QString::fromStdString(view.maximum));
  scale_->SetNeedle(view.needle);
  scale_->SetTip(QString::fromStdString(view.meterTip));
  picAlarm_->setVisible(view.alarm);
}

void CurrentPage::ResetPeak() {
  clsKillAWatt* meter = selection_.SelectedKillAWatt(false);
  if (meter == nullptr) return;
  meter->Statistics().ResetPeak();
  ProfileData& profile = monitor_.Profile();
  if (profile.Meters().Count() == 1) profile.Total().Statistics().ResetPeak();
  Refresh();
}

int CurrentPage::CurrentUnit() const {
  return elaCurrentUnit_->Selected();
}

void CurrentPage::SetCurrentUnit(int unit) {
  elaCurrentUnit_->Select(unit);
}

int CurrentPage::CurrentInterval() const {
  return elaCurrentInterval_->Selected();
}

void CurrentPage::SetCurrentInterval(int interval) {
  elaCurrentInterval_->Select(interval);
}

}  // namespace wattlark
