#include <gtest/gtest.h>

#include <memory>

#include "app/MenuView.h"
#include "app/ProfileData.h"

namespace wattlark {
namespace {

enum class Shown { None, Meter, Total };

struct MenuCase {
  bool isFlowing;
  bool hasMeter;
  Shown shown;
  bool pages;
  bool addMeter;
  bool meter;
};

class MenuViewTest : public testing::TestWithParam<MenuCase> {};

TEST_P(MenuViewTest, EnablesWhatCanWork) {
  const MenuCase& row = GetParam();
  const RegionalSettings regional = RegionalSettings::UnitedStates();
  ProfileData profile(regional);
  if (row.hasMeter) profile.Meters().Add(std::make_unique<clsKillAWatt>());
  const clsKillAWatt* shown = nullptr;
  if (row.shown == Shown::Meter) shown = &profile.Meters()[0];
  if (row.shown == Shown::Total) shown = &profile.Total();
  const MenuView view = MakeMenuView(profile, shown, row.isFlowing);
  EXPECT_EQ(view.publish, row.pages);
  EXPECT_EQ(view.pages, row.pages);
  EXPECT_EQ(view.addMeter, row.addMeter);
  EXPECT_EQ(view.meter, row.meter);
}

INSTANTIATE_TEST_SUITE_P(States, MenuViewTest,
                         testing::Values(MenuCase{false, false, Shown::None, false, false, false},
                                         MenuCase{true, false, Shown::None, false, true, false},
                                         MenuCase{false, true, Shown::Meter, false, false, false},
                                         MenuCase{true, true, Shown::Meter, true, true, true},
                                         MenuCase{true, true, Shown::Total, true, true, false},
                                         MenuCase{true, true, Shown::None, true, true, false}));

}  // namespace
}  // namespace wattlark
