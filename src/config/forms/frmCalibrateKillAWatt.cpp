#include "config/forms/frmCalibrateKillAWatt.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "app/forms/PageStrip.h"
#include "config/forms/CalibrationPanel.h"
#include "platform/qtwidgets/Controls.h"
#include "platform/qtwidgets/QtPrompts.h"

namespace wattlark {

namespace {

constexpr int kReadoutMilliseconds = 1000;
constexpr int kMargin = 16;
constexpr int kGap = 8;
constexpr int kSmallestButton = 88;

QString Caption(int step) {
  return QString("Calibrate Kill-A-Watt - Step %1 of %2").arg(step).arg(CalibrationSteps);
}

}  // namespace

frmCalibrateKillAWatt::frmCalibrateKillAWatt(const Context& context, QWidget* parent)
    : QDialog(parent), context_(context) {
  setObjectName("frmCalibrateKillAWatt");
  setWindowTitle(Caption(1));
  tmrUpdate_.setObjectName("tmrUpdate");
  tmrUpdate_.setInterval(kReadoutMilliseconds);
  connect(&tmrUpdate_, &QTimer::timeout, this, [this] { tmrUpdate_Timer(); });
  lblName_ = new QLabel("Kill-A-Watt Name");
  lblName_->setObjectName("lblName");
  lblName_->setTextFormat(Qt::PlainText);
  lblName_->setWordWrap(true);
  std::vector<PageStrip::Page> pages;
  for (std::size_t index = 0; index < panels_.size(); ++index) {
    const auto step = static_cast<CalibrationStep>(index);
    pages.push_back({[this, step, index](QWidget* strip) {
      panels_[index] = new CalibrationPanel(
          step, [this, step](int position) { Adjust(step, position); }, strip);
      return panels_[index];
    }});
  }
  elaScroller_ = new PageStrip(std::move(pages));
  elaScroller_->MakePages();

  auto* heading = new QHBoxLayout;
  heading->setContentsMargins(kMargin, kMargin, kMargin, kGap);
  heading->addWidget(lblName_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(heading);
  column->addWidget(elaScroller_, 1);
  column->addWidget(BuildButtons());
  FitToFont();
  EnableControls(false);
}

QWidget* frmCalibrateKillAWatt::BuildButtons() {
  cmdBack_ = Button("< Back", "cmdBack");
  cmdNext_ = Button("Next >", "cmdNext");
  cmdCancel_ = Button("Cancel", "cmdCancel");
  cmdBack_->setAccessibleName("Back");
  cmdNext_->setAccessibleName("Next");
  cmdNext_->setDefault(true);
  connect(cmdBack_, &QPushButton::clicked, this, [this] { SetStep(Step() - 1); });
  connect(cmdNext_, &QPushButton::clicked, this, [this] { cmdNext_Click(); });
  connect(cmdCancel_, &QPushButton::clicked, this, [this] { reject(); });
  auto* bar = new QWidget;
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  row->setSpacing(kGap);
  row->addStretch(1);
  row->addWidget(cmdBack_);
  row->addWidget(cmdNext_);
  row->addSpacing(kGap);
  row->addWidget(cmdCancel_);
  return bar;
}

QPushButton* frmCalibrateKillAWatt::Button(const QString& caption, const QString& name) {
  auto* button = new QPushButton(caption, this);
  button->setObjectName(name);
  button->setAccessibleName(caption);
  return button;
}

void frmCalibrateKillAWatt::FitToFont() {
  QFont heading = font();
  heading.setWeight(QFont::DemiBold);
  if (lblName_->font() != heading) lblName_->setFont(heading);
  for (QPushButton* button : {cmdBack_, cmdNext_, cmdCancel_}) {
    button->setMinimumSize(kSmallestButton, ControlHeight(*button));
  }
}

void frmCalibrateKillAWatt::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  const bool isFont = event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange;
  if (isFont && cmdCancel_ != nullptr) FitToFont();
}

void frmCalibrateKillAWatt::SetKillAWatt(clsKillAWatt& meter) {
  lblName_->setText(BoxText(meter.Name()));
  calibration_.emplace(meter);
  for (std::size_t index = 0; index < panels_.size(); ++index) {
    ShowValue(static_cast<CalibrationStep>(index));
  }
  interrupted_ = &BarOfStep();
  // A meter that sends shows so at once, not after the timer's first second.
  tmrUpdate_Timer();
  tmrUpdate_.start();
}

CalibrationPanel& frmCalibrateKillAWatt::Panel(CalibrationStep step) const {
  return *panels_[static_cast<std::size_t>(step)];
}

QWidget& frmCalibrateKillAWatt::BarOfStep() const {
  return panels_[static_cast<std::size_t>(Step() - 1)]->Bar();
}

void frmCalibrateKillAWatt::Adjust(CalibrationStep step, int position) {
  if (!calibration_) return;
  calibration_->Adjust(step, position);
  ShowValue(step);
}

void frmCalibrateKillAWatt::ShowValue(CalibrationStep step) {
  Panel(step).ShowValue(QString::fromStdString(calibration_->ValueText(step, context_.regional)),
                        calibration_->IsLimited(step));
}

void frmCalibrateKillAWatt::tmrUpdate_Timer() {
  const CalibrationReadout readout =
      MakeCalibrationReadout(calibration_->Meter(), context_.regional, context_.clock.Now());
  for (std::size_t index = 0; index < panels_.size(); ++index) {
    panels_[index]->ShowReadout(QString::fromStdString(readout.texts[index]));
  }
  EnableControls(readout.isReceiving);
}

// The focus of a control that is disabled would go to the next one, in the end to Cancel, where a
// key would throw everything away. It is kept until the meter sends again.
void frmCalibrateKillAWatt::EnableControls(bool isReceiving) {
  QWidget* const focus = focusWidget();
  if (!isReceiving && focus != cmdCancel_ && focus != this) {
    if (focus != nullptr) interrupted_ = focus;
    setFocus();
  }
  for (CalibrationPanel* panel : panels_) panel->Bar().setEnabled(isReceiving);
  cmdNext_->setEnabled(isReceiving);
  cmdBack_->setEnabled(isReceiving && Step() != 1);
  if (!isReceiving || interrupted_.isNull()) return;
  if (focus == nullptr || focus == this) interrupted_->setFocus();
  interrupted_.clear();
}

int frmCalibrateKillAWatt::Step() const {
  return elaScroller_->CurrentPage();
}

void frmCalibrateKillAWatt::SetStep(int step) {
  elaScroller_->ShowPage(step);
  setWindowTitle(Caption(Step()));
  // Before the button that has been pressed is disabled and hands on the focus.
  BarOfStep().setFocus();
  cmdBack_->setEnabled(Step() != 1);
  cmdNext_->setText(Step() == CalibrationSteps ? "Save" : "Next");
  cmdNext_->setAccessibleName(cmdNext_->text());
}

void frmCalibrateKillAWatt::cmdNext_Click() {
  if (Step() == CalibrationSteps) {
    accept();
  } else {
    SetStep(Step() + 1);
  }
}

void frmCalibrateKillAWatt::reject() {
  if (calibration_) calibration_->Restore();
  cancelled_ = true;
  QDialog::reject();
}

void frmCalibrateKillAWatt::closeEvent(QCloseEvent* event) {
  // Not the base class's way, which is to reject.
  event->accept();
  done(Rejected);
}

void CalibrateMeter(const frmCalibrateKillAWatt::Context& context, clsKillAWatt& meter,
                    QWidget* owner) {
  frmCalibrateKillAWatt form(context, owner);
  form.SetKillAWatt(meter);
  form.exec();
}

}  // namespace wattlark
