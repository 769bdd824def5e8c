#include <functional>
#include <optional>
#include <utility>

#include "app/MeterActions.h"
#include "app/MeterSelection.h"
#include "app/MonitorFixture.h"
#include "twins/Matchers.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

struct MeterActionsTest : MonitorTest {
  MeterActionsTest() {
    Start();
    for (std::int16_t address = 5; address <= 6; ++address) {
      clsKillAWatt& meter = AddMeter(monitor->Profile().Meters(), "", address);
      meter.Statistics().SetUsage(ToDate, 1234);
      meter.SetCurrentOffset(512);
    }
    selection.emplace(monitor->Profile());
    actions.emplace(*monitor, *selection, prompts);
    selection->SelectTab(1);
  }

  std::optional<MeterSelection> selection;
  std::optional<MeterActions> actions;
};

TEST_F(MeterActionsTest, OnlyOKActsAndTheTotalIsLeftAlone) {
  const MeterCollection& meters = monitor->Profile().Meters();
  using Row = std::pair<bool (MeterActions::*)(), std::function<bool()>>;
  for (const auto& [action, isDone] :
       {Row{&MeterActions::ResetSelectedData,
            [&] { return meters[0].Statistics().Usage(ToDate) == 0; }},
        Row{&MeterActions::ResetSelectedCalibration,
            [&] { return meters[0].CurrentOffset() == 498; }},
        Row{&MeterActions::RemoveSelected, [&] { return meters.FindAddress(5) == nullptr; }}}) {
    prompts.asked.clear();
    selection->SelectTab(0);
    EXPECT_FALSE(((*actions).*action)());
    EXPECT_TRUE(prompts.asked.empty());
    selection->SelectTab(1);
    prompts.answers = {PromptAnswer::Cancel, PromptAnswer::OK};
    EXPECT_FALSE(((*actions).*action)());
    EXPECT_FALSE(isDone());
    EXPECT_TRUE(((*actions).*action)());
    EXPECT_TRUE(isDone());
    EXPECT_THAT(prompts.asked.front(),
                FieldsAre(testing::EndsWith("This can not be undone."), "Wattlark",
                          PromptIcon::Exclamation, PromptButtons::OKCancel, PromptAnswer::Cancel));
  }
}

TEST_F(MeterActionsTest, AddingAndRemovingRenewTheHeaderOfTheLogUnlessTheAddressIsTaken) {
  bool& renewed = monitor->Profile().Settings().CSVFileChanged;
  EXPECT_FALSE(actions->Add(NewMeter("", 6)));
  EXPECT_THAT(prompts.asked,
              ElementsAre(FieldsAre("A Kill-A-Watt with that XBee address is already defined",
                                    "Duplicate ID", PromptIcon::Exclamation, _, _)));
  EXPECT_FALSE(renewed);
  EXPECT_TRUE(actions->Add(NewMeter("", 7)));
  EXPECT_TRUE(std::exchange(renewed, false));
  EXPECT_EQ(monitor->Profile().Meters().Count(), 3U);
  prompts.answers = {PromptAnswer::OK};
  EXPECT_TRUE(actions->RemoveSelected());
  EXPECT_TRUE(renewed);
}

TEST(MeterSelectionTest, ShowsATotalOfTwoAndFollowsTheTabsUntilTheirMeterGoes) {
  const RegionalSettings regional = RegionalSettings::UnitedStates();
  ProfileData profile(regional);
  MeterSelection selection(profile);
  const auto add = [&](const char* name, std::int16_t address) {
    AddMeter(profile.Meters(), name, address);
    selection.RefreshTabs();
  };
  selection.RefreshTabs();
  EXPECT_EQ(selection.SelectedKillAWatt(true), nullptr);
  // Nor the total of one.
  add("Office", 300);
  EXPECT_EQ(selection.SelectedKillAWatt(true), &profile.Meters()[0]);
  EXPECT_FALSE(selection.Tabs()[0].visible);
  selection.SelectTab(0);
  EXPECT_EQ(selection.SelectedTab(), 1);
  add("Kitchen", 5);
  std::string shown;
  for (const auto& tab : selection.Tabs())
    shown += tab.caption + ' ' + tab.key + (tab.visible ? "; " : "- ");
  EXPECT_EQ(shown, "Total TOTAL; Office XBEE300; Kitchen XBEE5; ");
  EXPECT_EQ(selection.SelectedTab(), 0);
  EXPECT_EQ(selection.SelectedKillAWatt(false), &profile.Total());
  selection.SelectTab(2);
  EXPECT_EQ(selection.SelectedKillAWatt(false), &profile.Meters()[1]);
  EXPECT_EQ(selection.SelectedKillAWatt(true), &profile.Total());
  selection.SelectTab(3);
  EXPECT_EQ(selection.SelectedTab(), 2);
  profile.Meters().Remove(profile.Meters()[1]);
  EXPECT_EQ(selection.SelectedKillAWatt(false), nullptr) << "the tab's meter is gone";
  selection.RefreshTabs();
  EXPECT_EQ(selection.SelectedKillAWatt(false), &profile.Meters()[0]);
}

}  // namespace
}  // namespace wattlark
