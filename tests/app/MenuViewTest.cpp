#include <gtest/gtest.h>

#include "app/MenuView.h"
#include "app/ProfileData.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

TEST(MenuView, EnablesWhatCanWork) {
  enum class Shown { None, Meter, Total };
  struct Row {
    bool isFlowing, hasMeter;
    Shown shown;
    bool pages, addMeter, meter;
  };
  for (const auto& row : {Row{false, false, Shown::None, false, false, false},
                          Row{true, false, Shown::None, false, true, false},
                          Row{false, true, Shown::Meter, false, false, false},
                          Row{true, true, Shown::Meter, true, true, true},
                          Row{true, true, Shown::Total, true, true, false},
                          Row{true, true, Shown::None, true, true, false}}) {
    const RegionalSettings regional = RegionalSettings::UnitedStates();
    ProfileData profile(regional);
    if (row.hasMeter) AddMeter(profile.Meters(), "Kitchen", 5);
    const clsKillAWatt* shown = nullptr;
    if (row.shown == Shown::Meter) shown = &profile.Meters()[0];
    if (row.shown == Shown::Total) shown = &profile.Total();
    const MenuView view = MakeMenuView(profile, shown, row.isFlowing);
    EXPECT_EQ(view.publish, row.pages);
    EXPECT_EQ(view.pages, row.pages);
    EXPECT_EQ(view.addMeter, row.addMeter);
    EXPECT_EQ(view.meter, row.meter);
  }
}

}  // namespace
}  // namespace wattlark
