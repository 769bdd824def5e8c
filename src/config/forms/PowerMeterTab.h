#pragma once

#include <QPushButton>

#include "config/OptionsEdit.h"
#include "config/forms/OptionsTab.h"
#include "platform/Prompts.h"

namespace wattlark {

/// Google PowerMeter. The name of its variable is part of the key: the box for it is there, but
/// nothing is entered in it.
class PowerMeterTab : public OptionsTab {
 public:
  explicit PowerMeterTab(Prompts& prompts);

  void Load(const PowerMeterOptions& edit);
  void Store(PowerMeterOptions& edit) const;

 private:
  QCheckBox* chkLogToPowerMeter_;
  QComboBox* cboPowerMeterInterval_;
  TextBox* txtPowerMeterAuthToken_;
  QLineEdit* txtPowerMeterVariable_;
  QPushButton* cmdTestPowerMeter_;
};

}  // namespace wattlark
