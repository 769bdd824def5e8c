#pragma once

#include "config/OptionsEdit.h"
#include "config/forms/OptionsTab.h"

namespace wattlark {

/// The Twitter account, for statistics and alarms.
class TwitterTab : public OptionsTab {
 public:
  TwitterTab();

  void Load(const TwitterOptions& edit);
  void Store(TwitterOptions& edit) const;

 private:
  QCheckBox* chkLogToTwitter_;
  QComboBox* cboTwitterInterval_;
  TextBox* txtTwitterMessage_;
  QCheckBox* chkAlarmsToTwitter_;
  TextBox* txtTwitterAlarmMessage_;
  TextBox* txtTwitterUsername_;
  PasswordBox* txtTwitterPassword_;
};

}  // namespace wattlark
