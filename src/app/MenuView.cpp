#include "app/MenuView.h"

#include "app/ProfileData.h"

namespace wattlark {

MenuView MakeMenuView(const ProfileData& profile, const clsKillAWatt* selected, bool isFlowing) {
  const bool hasMeters = isFlowing && !profile.Meters().IsEmpty();
  MenuView view;
  view.publish = hasMeters;
  view.pages = hasMeters;
  view.addMeter = isFlowing;
  view.meter = isFlowing && selected != nullptr && selected != &profile.Total();
  return view;
}

}  // namespace wattlark
