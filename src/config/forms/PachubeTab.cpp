#include "config/forms/PachubeTab.h"

#include "config/OptionsLists.h"

namespace wattlark {

PachubeTab::PachubeTab()
    : OptionsTab("tabPachube"),
      chkLogToPachube_(Named(new QCheckBox, "chkLogToPachube")),
      cboPachubeInterval_(MakeList("cboPachubeInterval", LogIntervalEntries())),
      txtPachubeFeedURL_(new TextBox("txtPachubeFeedURL")),
      txtPachubeAPIKey_(new TextBox("txtPachubeAPIKey")) {
  AddSwitch(Grid(), "&Log data to this Pachube feed every", chkLogToPachube_, cboPachubeInterval_);
  AddRow(Grid(), "Pachube Feed &URL:", txtPachubeFeedURL_);
  NoteWhenEmpty(txtPachubeFeedURL_, AddNote(Grid(), txtPachubeFeedURL_));
  AddRow(Grid(), "Pachube API &Key:", txtPachubeAPIKey_);
  NoteWhenEmpty(txtPachubeAPIKey_, AddNote(Grid(), txtPachubeAPIKey_));
  EndRows();
}

void PachubeTab::Load(const PachubeOptions& edit) {
  chkLogToPachube_->setChecked(edit.logToPachube);
  cboPachubeInterval_->setCurrentIndex(edit.pachubeInterval);
  txtPachubeFeedURL_->Show(edit.pachubeFeedURL);
  txtPachubeAPIKey_->Show(edit.pachubeAPIKey);
}

void PachubeTab::Store(PachubeOptions& edit) const {
  edit.logToPachube = chkLogToPachube_->isChecked();
  edit.pachubeInterval = cboPachubeInterval_->currentIndex();
  edit.pachubeFeedURL = txtPachubeFeedURL_->Entered();
  edit.pachubeAPIKey = txtPachubeAPIKey_->Entered();
}

}  // namespace wattlark
