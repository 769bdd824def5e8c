#include "app/MeterActions.h"

#include <string>

namespace wattlark {

clsKillAWatt* MeterActions::Selected() const {
  clsKillAWatt* meter = selection_.SelectedKillAWatt(false);
  return meter == &monitor_.Profile().Total() ? nullptr : meter;
}

bool MeterActions::Add(std::unique_ptr<clsKillAWatt> meter) {
  if (!monitor_.Profile().Meters().Add(std::move(meter))) {
    prompts_.Ask({"A Kill-A-Watt with that XBee address is already defined", "Duplicate ID",
                  PromptIcon::Exclamation, PromptButtons::OK, PromptAnswer::OK});
    return false;
  }
  NoteEdited();
  return true;
}

void MeterActions::NoteEdited() {
  monitor_.Profile().Settings().CSVFileChanged = true;
}

bool MeterActions::RemoveSelected() {
  clsKillAWatt* meter = Selected();
  if (meter == nullptr ||
      !Confirms("Are you sure you want to remove this Kill-A-Watt? This can not be undone.")) {
    return false;
  }
  monitor_.Profile().Meters().Remove(*meter);
  selection_.RefreshTabs();
  NoteEdited();
  return true;
}

bool MeterActions::ResetSelectedData() {
  clsKillAWatt* meter = Selected();
  if (meter == nullptr || !Confirms("Are you sure you want to reset all the accumulated data for "
                                    "this Kill-A-Watt? This can not be undone.")) {
    return false;
  }
  meter->Statistics().ResetStatistics();
  return true;
}

bool MeterActions::ResetSelectedCalibration() {
  clsKillAWatt* meter = Selected();
  if (meter == nullptr || !Confirms("Are you sure you want to reset the calibration on this "
                                    "Kill-A-Watt? This can not be undone.")) {
    return false;
  }
  meter->ResetCalibration();
  return true;
}

bool MeterActions::Confirms(const char* question) {
  return prompts_.Ask({question, ApplicationTitle, PromptIcon::Exclamation, PromptButtons::OKCancel,
                       PromptAnswer::Cancel}) == PromptAnswer::OK;
}

bool KeepsRunning(const Monitor& monitor) {
  return !monitor.Profile().Meters().IsEmpty() && monitor.IsFlowing();
}

bool ConfirmsExit(const Monitor& monitor, Prompts& prompts) {
  if (!KeepsRunning(monitor)) return true;
  return prompts.Ask({std::string("Are you sure you want to exit ") + ApplicationTitle + "?",
                      ApplicationTitle, PromptIcon::Exclamation, PromptButtons::YesNo,
                      PromptAnswer::No}) == PromptAnswer::Yes;
}

}  // namespace wattlark
