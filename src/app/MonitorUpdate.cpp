#include "app/Monitor.h"
#include "update/SoftwareUpdate.h"

namespace wattlark {

void Monitor::CheckForUpdates(bool showUpToDate) {
  if (!update_ || !(showUpToDate || profile_.Settings().AutoUpdate)) return;
  update_->Find(VersionFileAddress(), false, showUpToDate);
  if (!ended_ && update_->Tell()) listener_.OnExitApplication();
}

std::string Monitor::VersionFileAddress() const {
  const std::string& stored = profile_.Endpoints().VersionFileURL;
  return stored.empty() ? options_.versionFileAddress : stored;
}

// News of a check in the background wait until no other window is open. They are told between two
// ticks, so that readings go on while the user is away.
void Monitor::TellUpdate() {
  if (ended_ || !update_ || !update_->HasNews() || !listener_.CanShowNotice()) return;
  if (update_->Tell()) listener_.OnExitApplication();
}

void Monitor::ShowUpdateProgress(const std::string& text) {
  SetInfoText(text.empty() && !errors_.IsEmpty() ? ErrorsInvitation : text);
}

}  // namespace wattlark
