#pragma once

#include <string>
#include <vector>

#include "app/ProfileData.h"

namespace wattlark {

struct MeterTab {
  std::string caption;
  std::string key;  ///< "TOTAL", or the meter's collection key
  bool visible = true;
};

/// The tab strip as values, and the meter that it chooses. Tab 0 is the Total, visible with two
/// meters or more; tabs 1..n are the meters in collection order.
class MeterSelection {
 public:
  /// `profile` must outlive this object.
  explicit MeterSelection(ProfileData& profile) : profile_(profile) {}

  std::vector<MeterTab> Tabs() const;
  /// After meters came or went: selects tab 0 when it is visible, else tab 1.
  void RefreshTabs();
  int SelectedTab() const { return selectedTab_; }
  /// A tab outside the strip is ignored.
  void SelectTab(int tab);
  /// The meter shown: null without meters; the Total on its tab, or with `preferTotal` when there
  /// are two meters or more; else the selected tab's meter.
  clsKillAWatt* SelectedKillAWatt(bool preferTotal) const;

 private:
  ProfileData& profile_;
  int selectedTab_ = 1;
};

}  // namespace wattlark
