#include "config/forms/GeneralTab.h"

#include <algorithm>

#include "config/OptionsLists.h"
#include "config/ServiceStates.h"

namespace wattlark {

GeneralTab::GeneralTab(const RegionalSettings& regional,
                       const std::optional<PortDeviceList::Ports>& devices)
    : OptionsTab("tabGeneral"), regional_(regional) {
  if (devices) cboPortDevice_ = new PortDeviceList(*devices);
  Grid().setVerticalSpacing(DialogMargin);
  Grid().addWidget(BuildApplication(), 0, 0, 1, 3);
  Grid().addWidget(BuildCommunications(), 1, 0, 1, 3);
  Grid().addWidget(BuildElectricity(), 2, 0, 1, 3);
  EndRows();
}

QWidget* GeneralTab::BuildApplication() {
  QGridLayout* grid = nullptr;
  QWidget* frame = MakeFrame("Application Settings", "fraApplication", grid);
  grid->setVerticalSpacing(0);
  chkShowAtLaunch_ = Named(new QCheckBox, "chkShowAtLaunch");
  chkRunAtStartup_ = Named(new QCheckBox, "chkRunAtStartup");
  chkAutoUpdate_ = Named(new QCheckBox, "chkAutoUpdate");
  chkDemoMode_ = Named(new QCheckBox, "chkDemoMode");
  AddCheckBox(*grid, "&Show main window when Wattlark launches", chkShowAtLaunch_);
  AddCheckBox(*grid, "&Run Wattlark when Windows starts", chkRunAtStartup_);
  AddCheckBox(*grid, "&Alert me to Wattlark updates", chkAutoUpdate_);
  AddCheckBox(*grid, "Run in \"Demo &Mode\" using fabricated data", chkDemoMode_);
  return frame;
}

QWidget* GeneralTab::BuildCommunications() {
  QGridLayout* grid = nullptr;
  QWidget* frame = MakeFrame("Communications Settings", "fraCommunications", grid);
  grid->setColumnStretch(3, 1);
  cboPortNum_ = AddSerialList(*grid, 0, 0, "&Port:", MakeList("cboPortNum", PortNumEntries()));
  if (cboPortDevice_ != nullptr) {
    grid->addWidget(MakeLabel("D&evice:", cboPortDevice_), 0, 2);
    grid->addWidget(cboPortDevice_, 0, 3);
    grid->addWidget(cboPortDevice_->Note(), 2, 0, 1, 4);
    connect(cboPortNum_, &QComboBox::currentIndexChanged, this,
            [this](int index) { cboPortDevice_->ShowPort(NumberAt(PortNumEntries(), index)); });
  }
  cboBaudRate_ =
      AddSerialList(*grid, 3, 0, "&Baud rate", MakeList("cboBaudRate", BaudRateEntries()));
  cboParity_ = AddSerialList(*grid, 3, 2, "Par&ity", MakeList("cboParity", ParityEntries()));
  cboDataBits_ =
      AddSerialList(*grid, 5, 0, "&Data bits", MakeList("cboDataBits", DataBitsEntries()));
  cboStopBits_ =
      AddSerialList(*grid, 5, 2, "S&top bits", MakeList("cboStopBits", StopBitsEntries()));
  const auto lists = {cboPortNum_, cboBaudRate_, cboParity_, cboDataBits_, cboStopBits_};
  int widest = 0;
  for (const QComboBox* list : lists) widest = std::max(widest, list->sizeHint().width());
  for (QComboBox* list : lists) list->setMinimumWidth(widest);
  return frame;
}

// The note stands in the row below.
QComboBox* GeneralTab::AddSerialList(QGridLayout& grid, int row, int column, const QString& caption,
                                     QComboBox* list) {
  list->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  grid.addWidget(MakeLabel(caption, list), row, column);
  grid.addWidget(list, row, column + 1, Qt::AlignLeft);
  auto* note = new FieldNote(*list);
  grid.addWidget(note, row + 1, column, 1, 2);
  NoteWithoutChoice(list, note);
  return list;
}

QWidget* GeneralTab::BuildElectricity() {
  QGridLayout* grid = nullptr;
  QWidget* frame = MakeFrame("Electricity Information", "fraElectricity", grid);
  grid->setColumnStretch(2, 1);
  cboServiceState_ = Named(new QComboBox, "cboServiceState");
  GuardWheel(*cboServiceState_);
  for (const StateRates& state : ServiceStates()) cboServiceState_->addItem(state.code);
  cboServiceState_->setAccessibleDescription("to set defaults");
  connect(cboServiceState_, &QComboBox::activated, this,
          [this](int index) { cboServiceState_Click(index); });
  txtMils_ = Named(new QLineEdit, "txtMils");
  txtCO2_ = Named(new QLineEdit, "txtCO2");
  AddRow(*grid, "Ser&vice State:", cboServiceState_, new QLabel("(to set defaults)"));
  AddRow(*grid, "Average &cost of electricity:", txtMils_, new QLabel("per kWh"));
  FieldNote* milsNote = AddNote(*grid, txtMils_, 0, 3);
  connect(txtMils_, &QLineEdit::textChanged, milsNote, [this, milsNote](const QString& text) {
    milsNote->Show(NumberNote(ReadMils(regional_, text.toStdString()).has_value(), keptMils_));
  });
  AddRow(*grid, "Average C&O2 emissions rate:", txtCO2_, new QLabel("lbs per kWh"));
  FieldNote* co2Note = AddNote(*grid, txtCO2_, 0, 3);
  connect(txtCO2_, &QLineEdit::textChanged, co2Note, [this, co2Note](const QString& text) {
    co2Note->Show(NumberNote(ReadCO2(regional_, text.toStdString()).has_value(), keptCO2_));
  });
  return frame;
}

void GeneralTab::Load(const GeneralOptions& edit) {
  chkShowAtLaunch_->setChecked(edit.showAtLaunch);
  chkRunAtStartup_->setChecked(edit.runAtStartup);
  chkAutoUpdate_->setChecked(edit.autoUpdate);
  chkDemoMode_->setChecked(edit.demoMode);
  cboPortNum_->setCurrentIndex(edit.portNum);
  if (cboPortDevice_ != nullptr) {
    cboPortDevice_->ShowPort(NumberAt(PortNumEntries(), edit.portNum));
  }
  cboBaudRate_->setCurrentIndex(edit.baudRate);
  cboParity_->setCurrentIndex(edit.parity);
  cboDataBits_->setCurrentIndex(edit.dataBits);
  cboStopBits_->setCurrentIndex(edit.stopBits);
  cboServiceState_->setCurrentIndex(edit.serviceState);
  keptMils_ = edit.mils;
  keptCO2_ = edit.co2;
  ShowElectricity(edit.mils, edit.co2);
}

void GeneralTab::Store(GeneralOptions& edit) const {
  edit.showAtLaunch = chkShowAtLaunch_->isChecked();
  edit.runAtStartup = chkRunAtStartup_->isChecked();
  edit.autoUpdate = chkAutoUpdate_->isChecked();
  edit.demoMode = chkDemoMode_->isChecked();
  edit.portNum = cboPortNum_->currentIndex();
  if (cboPortDevice_ != nullptr) edit.portDevices = cboPortDevice_->Changed();
  edit.baudRate = cboBaudRate_->currentIndex();
  edit.parity = cboParity_->currentIndex();
  edit.dataBits = cboDataBits_->currentIndex();
  edit.stopBits = cboStopBits_->currentIndex();
  edit.serviceState = cboServiceState_->currentIndex();
  edit.mils = txtMils_->text().toStdString();
  edit.co2 = txtCO2_->text().toStdString();
}

void GeneralTab::ShowElectricity(const std::string& mils, const std::string& co2) {
  txtMils_->setText(QString::fromStdString(mils));
  txtCO2_->setText(QString::fromStdString(co2));
}

void GeneralTab::cboServiceState_Click(int index) {
  std::string mils;
  std::string co2;
  if (FillElectricity(index, regional_, mils, co2)) ShowElectricity(mils, co2);
}

}  // namespace wattlark
