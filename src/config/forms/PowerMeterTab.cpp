#include "config/forms/PowerMeterTab.h"

#include "config/OptionsLists.h"
#include "config/modRegistry.h"

namespace wattlark {

PowerMeterTab::PowerMeterTab(Prompts& prompts)
    : OptionsTab("tabPowerMeter"),
      chkLogToPowerMeter_(Named(new QCheckBox, "chkLogToPowerMeter")),
      cboPowerMeterInterval_(MakeList("cboPowerMeterInterval", PowerMeterIntervalEntries())),
      txtPowerMeterAuthToken_(new TextBox("txtPowerMeterAuthToken")),
      txtPowerMeterVariable_(Named(new QLineEdit, "txtPowerMeterVariable")),
      cmdTestPowerMeter_(Named(new QPushButton("&Test..."), "cmdTestPowerMeter")) {
  // What was typed here would be lost.
  txtPowerMeterVariable_->setEnabled(false);
  txtPowerMeterVariable_->setPlaceholderText("Part of the key");
  cmdTestPowerMeter_->setAccessibleName("Test");
  cmdTestPowerMeter_->setAutoDefault(false);
  connect(cmdTestPowerMeter_, &QPushButton::clicked, this, [&prompts] {
    prompts.Ask({"Test succeeded...", ApplicationTitle, PromptIcon::None, PromptButtons::OK,
                 PromptAnswer::OK});
  });
  AddSwitch(Grid(), "&Log data to Google PowerMeter every", chkLogToPowerMeter_,
            cboPowerMeterInterval_);
  AddRow(Grid(), "Google PowerMeter &Key:", txtPowerMeterAuthToken_);
  NoteWhenEmpty(txtPowerMeterAuthToken_, AddNote(Grid(), txtPowerMeterAuthToken_));
  AddRow(Grid(), "&Variable Name:", txtPowerMeterVariable_);
  Grid().addWidget(cmdTestPowerMeter_, Grid().rowCount(), 1, Qt::AlignLeft);
  EndRows();
}

void PowerMeterTab::Load(const PowerMeterOptions& edit) {
  chkLogToPowerMeter_->setChecked(edit.logToPowerMeter);
  cboPowerMeterInterval_->setCurrentIndex(edit.powerMeterInterval);
  txtPowerMeterAuthToken_->Show(edit.powerMeterAuthInfo);
}

void PowerMeterTab::Store(PowerMeterOptions& edit) const {
  edit.logToPowerMeter = chkLogToPowerMeter_->isChecked();
  edit.powerMeterInterval = cboPowerMeterInterval_->currentIndex();
  edit.powerMeterAuthInfo = txtPowerMeterAuthToken_->Entered();
}

}  // namespace wattlark
