#pragma once

#include <memory>

#include "app/MeterSelection.h"
#include "app/Monitor.h"

namespace wattlark {

/// What a user does to the meters, with the questions that come first. Each answers whether the
/// meters changed; the caller then shows the tabs and the status anew.
class MeterActions {
 public:
  /// All must outlive this object.
  MeterActions(Monitor& monitor, MeterSelection& selection, Prompts& prompts)
      : monitor_(monitor), selection_(selection), prompts_(prompts) {}

  /// Adds a meter whose properties the user has entered, and selects nothing else.
  bool Add(std::unique_ptr<clsKillAWatt> meter);
  /// The properties of a meter have been edited.
  void NoteEdited();
  bool RemoveSelected();
  bool ResetSelectedData();
  bool ResetSelectedCalibration();
  /// The selected meter; null for none and for the Total.
  clsKillAWatt* Selected() const;

 private:
  bool Confirms(const char* question);

  Monitor& monitor_;
  MeterSelection& selection_;
  Prompts& prompts_;
};

/// The program would hide rather than end, and asks before it ends: there are meters and data
/// flows.
bool KeepsRunning(const Monitor& monitor);
/// Asks, where that is needed, whether the program may end.
bool ConfirmsExit(const Monitor& monitor, Prompts& prompts);

}  // namespace wattlark
