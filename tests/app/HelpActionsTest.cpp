#include <gmock/gmock.h>

#include "app/HelpActions.h"
#include "twins/RecordingDesktop.h"
#include "twins/ScriptedPrompts.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(HelpActionsTest, AboutShowsVersionAndLegalNotice) {
  ScriptedPrompts prompts;
  ShowAbout("2.1", prompts);
  ASSERT_EQ(prompts.asked.size(), 1U);
  EXPECT_THAT(prompts.asked[0].text, testing::StartsWith("Wattlark version 2.1\r\nCopyright "));
  EXPECT_THAT(prompts.asked[0].text, testing::HasSubstr("GPL-3.0-or-later"));
  EXPECT_EQ(prompts.asked[0].caption, "About Wattlark...");
  EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Information);
}

TEST(HelpActionsTest, AnAddressThatDoesNotOpenIsTold) {
  ScriptedPrompts prompts;
  RecordingDesktop desktop;
  OpenURL("https://one.example/", desktop, prompts);
  EXPECT_THAT(prompts.asked, IsEmpty());
  desktop.opensAddresses = false;
  OpenURL("https://two.example/", desktop, prompts);
  EXPECT_THAT(desktop.addresses, ElementsAre("https://one.example/", "https://two.example/"));
  ASSERT_EQ(prompts.asked.size(), 1U);
  EXPECT_THAT(prompts.asked[0].text, testing::HasSubstr("https://two.example/"));
}

}  // namespace
}  // namespace wattlark
