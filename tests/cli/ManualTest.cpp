#include <gmock/gmock.h>

#include <regex>

#include "cli/CommandTest.h"
#include "support/modText.h"

namespace wattlark {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;

using Words = std::vector<std::string>;

Words operator+(Words words, const std::string& word) {
  words.push_back(word);
  return words;
}

std::string Joined(const Words& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

struct ManualTest : CommandTest {
  Words Complete(Words words) const {
    words.insert(words.begin(), "--complete");
    const std::string output = Run(words).output;
    Words found;
    for (const std::string_view line : Split(output, '\n')) {
      if (!line.empty()) found.emplace_back(line);
    }
    return found;
  }
  // What the help of a command lists, by a pattern of its lines.
  Words Listed(const Words& command, const std::string& pattern) const {
    const std::string help = Run(command + "--help").output;
    const std::regex line(pattern);
    Words names;
    for (std::sregex_iterator at(help.begin(), help.end(), line), end; at != end; ++at) {
      names.push_back((*at)[1]);
    }
    return names;
  }
  void ExpectAllOf(const Words& command) const {
    SCOPED_TRACE(Joined(command));
    const Words options = Listed(command, "\n  (?:-h,)?(--[a-z-]+) ");
    ASSERT_THAT(options, Contains("--help"));
    for (const std::string& option : options) {
      EXPECT_THAT(manual, HasSubstr(" Fl Fl " + option.substr(2))) << option;
    }
    EXPECT_THAT(Complete(command + "--"), IsSupersetOf(options));
    const Words commands = Listed(command, "\n  ([a-z]+)  ");
    EXPECT_THAT(Complete(command + ""), IsSupersetOf(commands));
    for (const std::string& name : commands) ExpectAllOf(command + name);
    if (commands.empty()) {
      EXPECT_THAT(manual, HasSubstr("\n.It Ic " + Joined(command) + " "));
    }
  }

  const std::string manual = FileBytes(WATTLARK_MANUAL) + "\n";
};

TEST_F(ManualTest, ManualAndCompletionHaveWhatTheHelpLists) {
  const Words commands = Listed({}, "\n  ([a-z]+)  ");
  ASSERT_THAT(commands, IsSupersetOf({"replay", "meter", "setting", "publish"}));
  ExpectAllOf({});
}

TEST_F(ManualTest, CompletesWhatTheProfileHas) {
  AddKitchen();
  ExpectDone({"meter", "add", "--name", "Living room", "--address", "6"});
  EXPECT_THAT(Complete({"--profile", profile_, "meter", "remove", ""}),
              ElementsAre("Kitchen", "Living room"));
  EXPECT_THAT(Complete({"meter", "remove", "--profile=" + profile_, "K"}), ElementsAre("Kitchen"));
  EXPECT_THAT(Complete({"--profile", profile_, "setting", "get", "Service"}),
              IsSupersetOf({"ServiceState", "ServiceEndpoints/VersionFileURL"}));
}

TEST_F(ManualTest, CompletesAsFarAsTheWordsGo) {
  EXPECT_THAT(Complete({"me"}), ElementsAre("meter"));
  EXPECT_THAT(Complete({"meter", "add", "--type", ""}), ElementsAre("load", "generator"));
  EXPECT_THAT(Complete({"meter", "add", "--name", ""}), IsEmpty());
  EXPECT_THAT(Complete({"publish", "p"}), ElementsAre("pachube", "powermeter"));
  EXPECT_THAT(Complete({"publish", "csv", ""}), IsEmpty());
  EXPECT_THAT(Complete({"replay", ""}), IsEmpty());
  EXPECT_THAT(Complete({"setting", "set", "--profile", profile_, "PortNum", "--", "-"}), IsEmpty());
  EXPECT_FALSE(ProfileExists());
}

}  // namespace
}  // namespace wattlark
