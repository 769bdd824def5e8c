#include <gtest/gtest.h>

#include "app/MeterSelection.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

struct MeterSelectionTest : testing::Test {
  void Add(const char* name, std::int16_t address) {
    AddMeter(profile.Meters(), name, address);
    selection.RefreshTabs();
  }

  RegionalSettings regional = RegionalSettings::UnitedStates();
  ProfileData profile{regional};
  MeterSelection selection{profile};
};

TEST_F(MeterSelectionTest, ShowsNoTotalOfNoMeterOrOne) {
  selection.RefreshTabs();
  EXPECT_EQ(selection.SelectedKillAWatt(false), nullptr);
  EXPECT_EQ(selection.SelectedKillAWatt(true), nullptr);
  ASSERT_EQ(selection.Tabs().size(), 1U);
  EXPECT_FALSE(selection.Tabs()[0].visible);
  // Nor the total of one.
  Add("Kitchen", 5);
  EXPECT_EQ(selection.SelectedTab(), 1);
  EXPECT_EQ(selection.SelectedKillAWatt(false), &profile.Meters()[0]);
  EXPECT_EQ(selection.SelectedKillAWatt(true), &profile.Meters()[0]);
  EXPECT_FALSE(selection.Tabs()[0].visible);
  selection.SelectTab(0);
  EXPECT_EQ(selection.SelectedTab(), 1);
}

TEST_F(MeterSelectionTest, NamesAndFollowsTheTabsInOrderUntilTheirMeterGoes) {
  Add("Office", 300);
  Add("Kitchen", 5);
  const auto tabs = selection.Tabs();
  std::string shown;
  for (const auto& tab : tabs) shown += tab.caption + ' ' + tab.key + (tab.visible ? "; " : "- ");
  EXPECT_EQ(shown, "Total TOTAL; Office XBEE300; Kitchen XBEE5; ");
  EXPECT_EQ(selection.SelectedTab(), 0);
  EXPECT_EQ(selection.SelectedKillAWatt(false), &profile.Total());
  selection.SelectTab(2);
  EXPECT_EQ(selection.SelectedKillAWatt(false), &profile.Meters()[1]);
  EXPECT_EQ(selection.SelectedKillAWatt(true), &profile.Total());
  for (const int outside : {-1, 3, 1000}) {
    selection.SelectTab(outside);
    EXPECT_EQ(selection.SelectedTab(), 2);
  }
  profile.Meters().Remove(profile.Meters()[1]);
  EXPECT_EQ(selection.SelectedKillAWatt(false), nullptr) << "the tab's meter is gone";
  selection.RefreshTabs();
  EXPECT_EQ(selection.SelectedKillAWatt(false), &profile.Meters()[0]);
}

}  // namespace
}  // namespace wattlark
