#pragma once

#include <QPushButton>

#include "config/OptionsEdit.h"
#include "config/forms/OptionsTab.h"
#include "platform/Prompts.h"

namespace wattlark {

/// The CSV log file. The box of its name shows a long path shortened; the tab keeps the full one.
class CSVTab : public OptionsTab {
 public:
  explicit CSVTab(Prompts& prompts);

  void Load(const CSVOptions& edit);
  void Store(CSVOptions& edit) const;

 private:
  void ShowFilename(const std::string& path);
  void cmdSetCSVFilename_Click();

  Prompts& prompts_;
  std::string csvFilename_;
  QCheckBox* chkLogToCSV_;
  QComboBox* cboCSVInterval_;
  QLineEdit* txtCSVFilename_;
  QPushButton* cmdSetCSVFilename_;
};

}  // namespace wattlark
