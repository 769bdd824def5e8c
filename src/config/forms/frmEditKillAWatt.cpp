#include "config/forms/frmEditKillAWatt.h"

#include <QEvent>
#include <QVBoxLayout>
#include <algorithm>

#include "config/modRegistry.h"
#include "platform/qtwidgets/FilteredLineEdit.h"

namespace wattlark {

namespace {

constexpr const char* kAdjusted =
    "The alarm interval was adjusted upward so that it was at least equal to the duration above or "
    "below the limits.";

}  // namespace

frmEditKillAWatt::frmEditKillAWatt(const Context& context, QWidget* parent)
    : QDialog(parent), context_(context) {
  setObjectName("frmEditKillAWatt");
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(DialogMargin, DialogMargin, DialogMargin, DialogMargin);
  column->setSpacing(DialogMargin);
  column->addWidget(BuildProperties());
  column->addWidget(BuildAlarmZone());
  column->addStretch(1);
  column->addWidget(MakeOKCancel(*this, [this] { cmdOK_Click(); }));
  FitToFont();
}

QWidget* frmEditKillAWatt::BuildProperties() {
  QGridLayout* grid = nullptr;
  QWidget* frame = MakeFrame("Kill-A-Watt Properties", "fraProperties0", grid);
  grid->setColumnStretch(1, 1);
  txtName_ = new TextBox("txtName");
  txtXBeeAddress_ = Named(new QLineEdit, "txtXBeeAddress");
  cboVoltage_ = MakeList("cboVoltage", VoltageEntries());
  cboFrequency_ = MakeList("cboFrequency", FrequencyEntries());
  cboKillAWattType_ = MakeList("cboKillAWattType", KillAWattTypeEntries());
  AddRow(*grid, "&Name:", txtName_);
  AddRow(*grid, "&XBee Address:", txtXBeeAddress_);
  AddRow(*grid, "&Voltage (nominal):", cboVoltage_);
  AddRow(*grid, "&Frequency (nominal):", cboFrequency_);
  AddRow(*grid, "&Channel Type:", cboKillAWattType_);
  return frame;
}

QWidget* frmEditKillAWatt::BuildAlarmZone() {
  QGridLayout* grid = nullptr;
  QWidget* frame = MakeFrame("Alarm Zone", "fraProperties1", grid);
  grid->setColumnStretch(1, 1);
  const QString caption = "&Raise an Alarm when power is outside:";
  chkAlarmActive_ = Named(new QCheckBox(caption), "chkAlarmActive");
  chkAlarmActive_->setAccessibleName(SpokenName(caption));
  connect(chkAlarmActive_, &QCheckBox::toggled, this, [this] { chkAlarmActive_Click(); });
  grid->addWidget(chkAlarmActive_, 0, 0, 1, 3);
  for (std::size_t index = 0; index < txtAlarmLimit_.size(); ++index) {
    txtAlarmLimit_[index] =
        Named(new FilteredLineEdit([&regional = context_.regional](char32_t typed) {
                return IsLimitCharacter(typed, regional);
              }),
              "txtAlarmLimit" + QString::number(index));
    txtAlarmLimit_[index]->setAccessibleDescription("Watts");
  }
  cboAlarmDuration_ = MakeList("cboAlarmDuration", AlarmDurationEntries());
  cboAlarmInterval_ = MakeList("cboAlarmInterval", AlarmIntervalEntries());
  AddRow(*grid, "&Upper Limit:", txtAlarmLimit_[0], "W");
  AddRow(*grid, "&Lower Limit:", txtAlarmLimit_[1], "W");
  AddRow(*grid, "F&or:", cboAlarmDuration_);
  AddRow(*grid, "Repeat &Every:", cboAlarmInterval_);
  return frame;
}

void frmEditKillAWatt::AddRow(QGridLayout& grid, const QString& caption, QWidget* control,
                              const QString& unit) {
  QLabel* label = MakeLabel(caption, control);
  labels_.push_back(label);
  const int row = grid.rowCount();
  grid.addWidget(label, row, 0);
  grid.addWidget(control, row, 1, 1, unit.isEmpty() ? 2 : 1);
  if (!unit.isEmpty()) grid.addWidget(new QLabel(unit), row, 2);
}

void frmEditKillAWatt::FitToFont() {
  // The labels are one column across both frames.
  int widest = 0;
  for (const QLabel* label : labels_) widest = std::max(widest, label->sizeHint().width());
  for (QLabel* label : labels_) label->setMinimumWidth(widest);
  FitHeights(*this);
}

void frmEditKillAWatt::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) FitToFont();
}

void frmEditKillAWatt::SetKillAWatt(clsKillAWatt& meter) {
  meter_ = &meter;
  cancelled_ = true;
  const MeterEdit edit = MakeMeterEdit(meter, context_.regional);
  txtName_->Show(edit.name);
  txtName_->selectAll();
  txtName_->setFocus();
  txtXBeeAddress_->setText(QString::fromStdString(edit.xbeeAddress));
  cboVoltage_->setCurrentIndex(edit.voltage);
  cboFrequency_->setCurrentIndex(edit.frequency);
  cboKillAWattType_->setCurrentIndex(edit.killAWattType);
  for (QWidget* control : std::initializer_list<QWidget*>{txtXBeeAddress_, cboVoltage_,
                                                          cboFrequency_, cboKillAWattType_}) {
    control->setEnabled(!IsTotal());
  }
  chkAlarmActive_->setChecked(edit.alarmActive);
  txtAlarmLimit_[0]->setText(QString::fromStdString(edit.upperLimit));
  txtAlarmLimit_[1]->setText(QString::fromStdString(edit.lowerLimit));
  cboAlarmDuration_->setCurrentIndex(edit.alarmDuration);
  cboAlarmInterval_->setCurrentIndex(edit.alarmInterval);
  chkAlarmActive_Click();
}

void frmEditKillAWatt::chkAlarmActive_Click() {
  const bool active = chkAlarmActive_->isChecked();
  for (QLineEdit* limit : txtAlarmLimit_) limit->setEnabled(active);
  cboAlarmDuration_->setEnabled(active);
  cboAlarmInterval_->setEnabled(active);
  for (QLabel* label : labels_) label->setEnabled(label->buddy()->isEnabled());
}

MeterEdit frmEditKillAWatt::Entries() const {
  MeterEdit edit;
  edit.name = txtName_->Entered();
  edit.xbeeAddress = txtXBeeAddress_->text().toStdString();
  edit.voltage = cboVoltage_->currentIndex();
  edit.frequency = cboFrequency_->currentIndex();
  edit.killAWattType = cboKillAWattType_->currentIndex();
  edit.alarmActive = chkAlarmActive_->isChecked();
  edit.upperLimit = txtAlarmLimit_[0]->text().toStdString();
  edit.lowerLimit = txtAlarmLimit_[1]->text().toStdString();
  edit.alarmDuration = cboAlarmDuration_->currentIndex();
  edit.alarmInterval = cboAlarmInterval_->currentIndex();
  return edit;
}

void frmEditKillAWatt::cmdOK_Click() {
  const MeterEdit edit = Entries();
  // The Total is not among the meters: it may share a name or an address with one of them.
  const MeterCollection nobody;
  const MeterCollection& others = IsTotal() ? nobody : context_.meters;
  if (const auto problem = CheckMeterEdit(edit, others, *meter_, context_.regional)) {
    Refuse(*problem);
    return;
  }
  if (ApplyMeterEdit(edit, context_.meters, *meter_, context_.regional)) {
    context_.prompts.Ask({kAdjusted, ApplicationTitle, PromptIcon::Information, PromptButtons::OK,
                          PromptAnswer::OK});
  }
  cancelled_ = false;
  accept();
}

QLineEdit* frmEditKillAWatt::BoxOf(MeterField field) const {
  switch (field) {
    case MeterField::Name:
      return txtName_;
    case MeterField::XBeeAddress:
      return txtXBeeAddress_;
    case MeterField::UpperLimit:
      return txtAlarmLimit_[0];
    case MeterField::LowerLimit:
      break;
  }
  return txtAlarmLimit_[1];
}

void frmEditKillAWatt::Refuse(const MeterEditProblem& problem) {
  context_.prompts.Ask({problem.text, problem.isDuplicateID ? "Duplicate ID" : ApplicationTitle,
                        PromptIcon::Exclamation, PromptButtons::OK, PromptAnswer::OK});
  QLineEdit* box = BoxOf(problem.field);
  // A limit has to be a number with the alarm off as well: its box opens to be mended.
  box->setEnabled(true);
  box->setFocus();
  box->selectAll();
}

void frmEditKillAWatt::reject() {
  cancelled_ = true;
  QDialog::reject();
}

bool EditMeterProperties(const frmEditKillAWatt::Context& context, clsKillAWatt& meter,
                         const std::string& caption, QWidget* owner) {
  frmEditKillAWatt form(context, owner);
  form.SetKillAWatt(meter);
  form.setWindowTitle(QString::fromStdString(caption));
  form.exec();
  return !form.Cancelled();
}

}  // namespace wattlark
