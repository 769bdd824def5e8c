#pragma once

#include "config/OptionsEdit.h"
#include "config/forms/OptionsTab.h"

namespace wattlark {

/// The Google Docs spreadsheet and the Google account.
class GoogleDocTab : public OptionsTab {
 public:
  GoogleDocTab();

  void Load(const GoogleOptions& edit);
  void Store(GoogleOptions& edit) const;

 private:
  QCheckBox* chkLogToGoogle_;
  QComboBox* cboGoogleInterval_;
  TextBox* txtGoogleDocName_;
  TextBox* txtGoogleWorksheetName_;
  TextBox* txtGoogleUsername_;
  PasswordBox* txtGooglePassword_;
};

}  // namespace wattlark
