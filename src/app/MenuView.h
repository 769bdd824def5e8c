#pragma once

namespace wattlark {

class clsKillAWatt;
class ProfileData;

/// Which groups of menu items are enabled; everything else always is.
struct MenuView {
  bool publish = false;   ///< the five publishing items of the File and tray menus
  bool pages = false;     ///< the four pages of the View menu
  bool addMeter = false;  ///< "Add a Kill-A-Watt Meter..."
  bool meter = false;     ///< what works on the selected meter
};

/// `selected` is the meter shown, or null.
MenuView MakeMenuView(const ProfileData& profile, const clsKillAWatt* selected, bool isFlowing);

}  // namespace wattlark
