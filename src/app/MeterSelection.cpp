#include "app/MeterSelection.h"

namespace wattlark {

namespace {

constexpr std::size_t kMetersForTotal = 2;

}  // namespace

std::vector<MeterTab> MeterSelection::Tabs() const {
  const MeterCollection& meters = profile_.Meters();
  std::vector<MeterTab> tabs{{"Total", "TOTAL", meters.Count() >= kMetersForTotal}};
  for (const auto& meter : meters) {
    tabs.push_back({meter->Name(), MeterCollection::Key(meter->XBeeAddress())});
  }
  return tabs;
}

void MeterSelection::RefreshTabs() {
  selectedTab_ = profile_.Meters().Count() >= kMetersForTotal ? 0 : 1;
}

void MeterSelection::SelectTab(int tab) {
  const std::size_t count = profile_.Meters().Count();
  const bool isShown =
      tab == 0 ? count >= kMetersForTotal : tab > 0 && static_cast<std::size_t>(tab) <= count;
  if (isShown) selectedTab_ = tab;
}

clsKillAWatt* MeterSelection::SelectedKillAWatt(bool preferTotal) const {
  MeterCollection& meters = profile_.Meters();
  if (meters.IsEmpty()) return nullptr;
  if (selectedTab_ <= 0 || (preferTotal && meters.Count() >= kMetersForTotal)) {
    return &profile_.Total();
  }
  const auto index = static_cast<std::size_t>(selectedTab_) - 1;
  return index < meters.Count() ? &meters[index] : nullptr;
}

}  // namespace wattlark
