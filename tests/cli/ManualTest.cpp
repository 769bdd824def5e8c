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
  static Words Of(const std::string& line) {
    const auto words = Split(line, ' ');
    return {words.begin(), words.end()};
  }
  // What a help text lists, by a pattern of its lines.
  static Words Listed(const std::string& help, const std::string& pattern) {
    const std::regex line(pattern);
    Words names;
    for (std::sregex_iterator at(help.begin(), help.end(), line), end; at != end; ++at) {
      names.push_back((*at)[1]);
    }
    return names;
  }
  /// `command` ends in a blank, or is empty.
  void ExpectAllOf(const std::string& command) const {
    SCOPED_TRACE(command);
    const std::string help = Run(Of(command + "--help")).output;
    const Words options = Listed(help, "\n  (?:-h,)?(--[a-z-]+) ");
    ASSERT_THAT(options, Contains("--help"));
    for (const std::string& option : options) {
      EXPECT_THAT(manual, HasSubstr(" Fl Fl " + option.substr(2))) << option;
    }
    EXPECT_THAT(Complete(Of(command + "--")), IsSupersetOf(options));
    const Words commands = Listed(help, "\n  ([a-z]+)  ");
    EXPECT_THAT(Complete(Of(command)), IsSupersetOf(commands));
    for (const std::string& name : commands) ExpectAllOf(command + name + " ");
    if (commands.empty()) {
      EXPECT_THAT(manual, HasSubstr("\n.It Ic " + command));
    }
  }

  const std::string manual = FileBytes(WATTLARK_MANUAL) + "\n";
};

TEST_F(ManualTest, ManualAndCompletionHaveWhatTheHelpLists) {
  ASSERT_THAT(Listed(Run({"--help"}).output, "\n  ([a-z]+)  "),
              IsSupersetOf({"replay", "meter", "setting", "publish"}));
  ExpectAllOf("");
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
