#include "config/forms/GoogleDocTab.h"

#include "config/OptionsLists.h"

namespace wattlark {

GoogleDocTab::GoogleDocTab()
    : OptionsTab("tabGoogleDoc"),
      chkLogToGoogle_(Named(new QCheckBox, "chkLogToGoogle")),
      cboGoogleInterval_(MakeList("cboGoogleInterval", LogIntervalEntries())),
      txtGoogleDocName_(new TextBox("txtGoogleDocName")),
      txtGoogleWorksheetName_(new TextBox("txtGoogleWorksheetName")),
      txtGoogleUsername_(new TextBox("txtGoogleUsername")),
      txtGooglePassword_(new PasswordBox("txtGooglePassword")) {
  AddSwitch(Grid(), "&Log data to a Google Doc spreadsheet every", chkLogToGoogle_,
            cboGoogleInterval_);
  AddRow(Grid(), "&Spreadsheet Name:", txtGoogleDocName_);
  NoteWhenEmpty(txtGoogleDocName_, AddNote(Grid(), txtGoogleDocName_));
  AddRow(Grid(), "Worksheet &Name:", txtGoogleWorksheetName_);
  NoteWhenEmpty(txtGoogleWorksheetName_, AddNote(Grid(), txtGoogleWorksheetName_));
  AddLogin("Google Login", "fraGoogleLogin", "&Username (email address):", txtGoogleUsername_,
           txtGooglePassword_);
  EndRows();
}

void GoogleDocTab::Load(const GoogleOptions& edit) {
  chkLogToGoogle_->setChecked(edit.logToGoogle);
  cboGoogleInterval_->setCurrentIndex(edit.googleInterval);
  txtGoogleDocName_->Show(edit.googleDocName);
  txtGoogleWorksheetName_->Show(edit.googleWorksheetName);
  txtGoogleUsername_->Show(edit.googleUsername);
  txtGooglePassword_->Show(edit.googlePassword);
}

void GoogleDocTab::Store(GoogleOptions& edit) const {
  edit.logToGoogle = chkLogToGoogle_->isChecked();
  edit.googleInterval = cboGoogleInterval_->currentIndex();
  edit.googleDocName = txtGoogleDocName_->Entered();
  edit.googleWorksheetName = txtGoogleWorksheetName_->Entered();
  edit.googleUsername = txtGoogleUsername_->Entered();
  edit.googlePassword = txtGooglePassword_->Entered();
}

}  // namespace wattlark
