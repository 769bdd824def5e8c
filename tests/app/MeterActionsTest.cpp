#include <functional>
#include <optional>
#include <utility>

#include "MonitorFixture.h"
#include "app/MeterActions.h"
#include "twins/Meters.h"

namespace wattlark {
namespace {

struct MeterActionsTest : MonitorTest {
  MeterActionsTest() {
    Start();
    for (const int address : {5, 6}) {
      clsKillAWatt& meter =
          AddMeter(monitor->Profile().Meters(), "", static_cast<std::int16_t>(address));
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
  const struct {
    bool (MeterActions::*action)();
    const char* question;
    /// Whether the first meter shows that the action took place.
    std::function<bool()> isDone;
  } cases[] = {
      {&MeterActions::ResetSelectedData,
       "Are you sure you want to reset all the accumulated data for this Kill-A-Watt? This can not "
       "be undone.",
       [&] { return meters[0].Statistics().Usage(ToDate) == 0; }},
      {&MeterActions::ResetSelectedCalibration,
       "Are you sure you want to reset the calibration on this Kill-A-Watt? This can not be "
       "undone.",
       [&] { return meters[0].CurrentOffset() == 498; }},
      {&MeterActions::RemoveSelected,
       "Are you sure you want to remove this Kill-A-Watt? This can not be undone.",
       [&] { return meters.FindAddress(5) == nullptr; }}};
  for (const auto& [action, text, isDone] : cases) {
    prompts.asked.clear();
    selection->SelectTab(0);
    EXPECT_FALSE(((*actions).*action)());
    EXPECT_TRUE(prompts.asked.empty());
    selection->SelectTab(1);
    prompts.answers = {PromptAnswer::Cancel, PromptAnswer::OK};
    EXPECT_FALSE(((*actions).*action)());
    EXPECT_FALSE(isDone()) << text;
    EXPECT_TRUE(((*actions).*action)());
    EXPECT_TRUE(isDone()) << text;
    const PromptMessage& question = prompts.asked.front();
    EXPECT_EQ(question.text, text);
    EXPECT_EQ(question.caption, "Wattlark");
    EXPECT_EQ(question.icon, PromptIcon::Exclamation);
    EXPECT_EQ(question.buttons, PromptButtons::OKCancel);
    EXPECT_EQ(question.defaultAnswer, PromptAnswer::Cancel);
  }
}

TEST_F(MeterActionsTest, AMeterWhoseAddressIsTakenIsNotAdded) {
  EXPECT_FALSE(actions->Add(NewMeter("", 6)));
  ASSERT_EQ(prompts.asked.size(), 1U);
  EXPECT_EQ(prompts.asked[0].text, "A Kill-A-Watt with that XBee address is already defined");
  EXPECT_EQ(prompts.asked[0].caption, "Duplicate ID");
  EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Exclamation);
  EXPECT_FALSE(monitor->Profile().Settings().CSVFileChanged);
  EXPECT_EQ(monitor->Profile().Meters().Count(), 2U);
}

TEST_F(MeterActionsTest, AddingAndRemovingRenewTheHeaderOfTheLog) {
  bool& renewed = monitor->Profile().Settings().CSVFileChanged;
  EXPECT_TRUE(actions->Add(NewMeter("", 7)));
  EXPECT_TRUE(std::exchange(renewed, false));
  prompts.answers = {PromptAnswer::OK};
  EXPECT_TRUE(actions->RemoveSelected());
  EXPECT_TRUE(renewed);
}

}  // namespace
}  // namespace wattlark
