#pragma once

#include "config/OptionsEdit.h"
#include "config/forms/OptionsTab.h"

namespace wattlark {

/// The Pachube feed.
class PachubeTab : public OptionsTab {
 public:
  PachubeTab();

  void Load(const PachubeOptions& edit);
  void Store(PachubeOptions& edit) const;

 private:
  QCheckBox* chkLogToPachube_;
  QComboBox* cboPachubeInterval_;
  TextBox* txtPachubeFeedURL_;
  TextBox* txtPachubeAPIKey_;
};

}  // namespace wattlark
