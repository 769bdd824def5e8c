#include "config/forms/TwitterTab.h"

#include "config/OptionsLists.h"

namespace wattlark {

namespace {

constexpr const char* kSubstitutions =
    "* %T=Current Time, %W=Current Power, %D=Total Usage Today, %Y=Total Usage Yesterday, %P=Peak "
    "Demand Today, %N=Kill-A-Watt Name";

}  // namespace

TwitterTab::TwitterTab()
    : OptionsTab("tabTwitter"),
      chkLogToTwitter_(Named(new QCheckBox, "chkLogToTwitter")),
      cboTwitterInterval_(MakeList("cboTwitterInterval", TwitterIntervalEntries())),
      txtTwitterMessage_(new TextBox("txtTwitterMessage")),
      chkAlarmsToTwitter_(Named(new QCheckBox, "chkAlarmsToTwitter")),
      txtTwitterAlarmMessage_(new TextBox("txtTwitterAlarmMessage")),
      txtTwitterUsername_(new TextBox("txtTwitterUsername")),
      txtTwitterPassword_(new PasswordBox("txtTwitterPassword")) {
  AddSwitch(Grid(), "&Post usage statistics to a Twitter account every", chkLogToTwitter_,
            cboTwitterInterval_);
  AddRow(Grid(), "&Status Message*:", txtTwitterMessage_);
  NoteWhenEmpty(txtTwitterMessage_, AddNote(Grid(), txtTwitterMessage_));
  AddCheckBox(Grid(), "Post a&larms to a Twitter account when they occur", chkAlarmsToTwitter_);
  AddRow(Grid(), "&Alarm Message*:", txtTwitterAlarmMessage_);
  NoteWhenEmpty(txtTwitterAlarmMessage_, AddNote(Grid(), txtTwitterAlarmMessage_));
  auto* lblSubstitutions = Named(new QLabel(kSubstitutions), "lblSubstitutions");
  lblSubstitutions->setWordWrap(true);
  Grid().addWidget(lblSubstitutions, Grid().rowCount(), 0, 1, 3);
  AddLogin("Twitter Login", "fraTwitterLogin", "&Username:", txtTwitterUsername_,
           txtTwitterPassword_);
  EndRows();
}

void TwitterTab::Load(const TwitterOptions& edit) {
  chkLogToTwitter_->setChecked(edit.logToTwitter);
  chkAlarmsToTwitter_->setChecked(edit.alarmsToTwitter);
  cboTwitterInterval_->setCurrentIndex(edit.twitterInterval);
  txtTwitterMessage_->Show(edit.twitterMessage);
  txtTwitterAlarmMessage_->Show(edit.twitterAlarmMessage);
  txtTwitterUsername_->Show(edit.twitterUsername);
  txtTwitterPassword_->Show(edit.twitterPassword);
}

void TwitterTab::Store(TwitterOptions& edit) const {
  edit.logToTwitter = chkLogToTwitter_->isChecked();
  edit.alarmsToTwitter = chkAlarmsToTwitter_->isChecked();
  edit.twitterInterval = cboTwitterInterval_->currentIndex();
  edit.twitterMessage = txtTwitterMessage_->Entered();
  edit.twitterAlarmMessage = txtTwitterAlarmMessage_->Entered();
  edit.twitterUsername = txtTwitterUsername_->Entered();
  edit.twitterPassword = txtTwitterPassword_->Entered();
}

}  // namespace wattlark
