#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/MeterActions.h"
#include "twins/HandClock.h"
#include "twins/MemoryRegistry.h"
#include "twins/RecordingDesktop.h"
#include "twins/RecordingListener.h"
#include "twins/ScriptedPort.h"
#include "twins/ScriptedPrompts.h"
#include "twins/ScriptedRandom.h"

namespace wattlark {
namespace {

struct MeterActionsTest : testing::Test {
  MeterActionsTest() {
    for (const int address : {5, 6}) {
      auto meter = NewMeter(static_cast<std::int16_t>(address));
      meter->Statistics().SetUsage(ToDate, 1234);
      meter->SetCurrentOffset(512);
      EXPECT_TRUE(monitor.Profile().Meters().Add(std::move(meter)));
    }
    selection.SelectTab(1);
  }
  static std::unique_ptr<clsKillAWatt> NewMeter(std::int16_t address) {
    auto meter = std::make_unique<clsKillAWatt>();
    meter->SetXBeeAddress(address);
    return meter;
  }
  clsKillAWatt& First() { return monitor.Profile().Meters()[0]; }

  HandClock clock;
  ScriptedPort port;
  MemoryRegistry registry;
  ScriptedRandom random{{}};
  RecordingDesktop desktop;
  ScriptedPrompts prompts;
  RecordingListener listener;
  Monitor monitor{{clock, port, registry, random, desktop, prompts},
                  RegionalSettings::UnitedStates(),
                  {},
                  listener};
  MeterSelection selection{monitor.Profile()};
  MeterActions actions{monitor, selection, prompts};
};

struct QuestionCase {
  const char* name;
  bool (MeterActions::*action)();
  const char* question;
  /// Whether the first meter shows that the action took place.
  bool (*isDone)(const MeterCollection& meters);
};

struct MeterActionsQuestion : MeterActionsTest, testing::WithParamInterface<QuestionCase> {};

TEST_P(MeterActionsQuestion, OnlyOKActs) {
  const QuestionCase& test = GetParam();
  const MeterCollection& meters = monitor.Profile().Meters();
  prompts.answers = {PromptAnswer::Cancel, PromptAnswer::OK};
  EXPECT_FALSE((actions.*test.action)());
  EXPECT_FALSE(test.isDone(meters));
  EXPECT_TRUE((actions.*test.action)());
  EXPECT_TRUE(test.isDone(meters));
  const PromptMessage& question = prompts.asked.front();
  EXPECT_EQ(question.text, test.question);
  EXPECT_EQ(question.caption, "Wattlark");
  EXPECT_EQ(question.icon, PromptIcon::Exclamation);
  EXPECT_EQ(question.buttons, PromptButtons::OKCancel);
  EXPECT_EQ(question.defaultAnswer, PromptAnswer::Cancel);
}

TEST_P(MeterActionsQuestion, TheTotalIsLeftAlone) {
  selection.SelectTab(0);
  EXPECT_FALSE((actions.*GetParam().action)());
  EXPECT_TRUE(prompts.asked.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, MeterActionsQuestion,
    testing::Values(
        QuestionCase{
            "Remove", &MeterActions::RemoveSelected,
            "Are you sure you want to remove this Kill-A-Watt? This can not be undone.",
            [](const MeterCollection& meters) { return meters.FindAddress(5) == nullptr; }},
        QuestionCase{"ResetData", &MeterActions::ResetSelectedData,
                     "Are you sure you want to reset all the accumulated data for this "
                     "Kill-A-Watt? This can not be undone.",
                     [](const MeterCollection& meters) {
                       return meters[0].Statistics().Usage(ToDate) == 0;
                     }},
        QuestionCase{
            "ResetCalibration", &MeterActions::ResetSelectedCalibration,
            "Are you sure you want to reset the calibration on this Kill-A-Watt? This can "
            "not be undone.",
            [](const MeterCollection& meters) { return meters[0].CurrentOffset() == 498; }}),
    [](const auto& test) { return test.param.name; });

TEST_F(MeterActionsTest, AMeterWhoseAddressIsTakenIsNotAdded) {
  EXPECT_FALSE(actions.Add(NewMeter(6)));
  ASSERT_EQ(prompts.asked.size(), 1U);
  EXPECT_EQ(prompts.asked[0].text, "A Kill-A-Watt with that XBee address is already defined");
  EXPECT_EQ(prompts.asked[0].caption, "Duplicate ID");
  EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Exclamation);
  EXPECT_FALSE(monitor.Profile().Settings().CSVFileChanged);
  EXPECT_EQ(monitor.Profile().Meters().Count(), 2U);
}

TEST_F(MeterActionsTest, AddingAndRemovingRenewTheHeaderOfTheLog) {
  bool& renewed = monitor.Profile().Settings().CSVFileChanged;
  EXPECT_TRUE(actions.Add(NewMeter(7)));
  EXPECT_TRUE(std::exchange(renewed, false));
  prompts.answers = {PromptAnswer::OK};
  EXPECT_TRUE(actions.RemoveSelected());
  EXPECT_TRUE(renewed);
}

}  // namespace
}  // namespace wattlark
