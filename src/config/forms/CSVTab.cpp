#include "config/forms/CSVTab.h"

#include <exception>

#include "app/forms/modForm.h"
#include "config/OptionsLists.h"
#include "platform/qtwidgets/QtPrompts.h"

namespace wattlark {

CSVTab::CSVTab(Prompts& prompts)
    : OptionsTab("tabCSV"),
      prompts_(prompts),
      chkLogToCSV_(Named(new QCheckBox, "chkLogToCSV")),
      cboCSVInterval_(MakeList("cboCSVInterval", LogIntervalEntries())),
      txtCSVFilename_(Named(new QLineEdit, "txtCSVFilename")),
      cmdSetCSVFilename_(Named(new QPushButton("&Set..."), "cmdSetCSVFilename")) {
  // The button sets the name: what was typed into a shortened path could not be told from it.
  txtCSVFilename_->setReadOnly(true);
  cmdSetCSVFilename_->setAccessibleName("Set the log file name");
  cmdSetCSVFilename_->setAutoDefault(false);
  connect(cmdSetCSVFilename_, &QPushButton::clicked, this, [this] { cmdSetCSVFilename_Click(); });
  AddSwitch(Grid(), "&Log data to a Comma Seperated Value (CSV) file every", chkLogToCSV_,
            cboCSVInterval_);
  AddRow(Grid(), "Log &File Name:", txtCSVFilename_, cmdSetCSVFilename_);
  EndRows();
}

void CSVTab::Load(const CSVOptions& edit) {
  chkLogToCSV_->setChecked(edit.logToCSV);
  cboCSVInterval_->setCurrentIndex(edit.csvInterval);
  ShowFilename(edit.csvFilename);
}

void CSVTab::Store(CSVOptions& edit) const {
  edit.logToCSV = chkLogToCSV_->isChecked();
  edit.csvInterval = cboCSVInterval_->currentIndex();
  edit.csvFilename = csvFilename_;
}

void CSVTab::ShowFilename(const std::string& path) {
  csvFilename_ = path;
  txtCSVFilename_->setText(QString::fromStdString(ShownCSVFilename(path)));
  txtCSVFilename_->setCursorPosition(0);
  txtCSVFilename_->setToolTip(PlainToolTip(BoxText(path)));
  txtCSVFilename_->setAccessibleDescription(QString::fromStdString(path));
}

void CSVTab::cmdSetCSVFilename_Click() {
  try {
    const auto file = prompts_.ChooseSaveFile(
        {"Save Log File", "CSV (Comma Separated Value) File (*.csv)", csvFilename_, true});
    if (file) ShowFilename(*file);
  } catch (const std::exception& error) {
    prompts_.Ask(
        {error.what(), "Error!", PromptIcon::Exclamation, PromptButtons::OK, PromptAnswer::OK});
  }
}

}  // namespace wattlark
