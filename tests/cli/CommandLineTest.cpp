#include <cstdlib>
#include <regex>

#include "cli/CommandTest.h"
#include "cli/DefaultFiles.h"
#include "cli/TextTable.h"
#include "support/modText.h"
#include "twins/Matchers.h"

namespace wattlark {
namespace {

using testing::IsSupersetOf;

/// Gives an environment variable a value for as long as it lives, and none afterwards.
class Variable {
 public:
  Variable(const char* name, const char* value) : name_(name) { ::setenv(name, value, 1); }
  ~Variable() { ::unsetenv(name_); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* name_;
};

using CommandLineTest = CommandTest;
using Words = std::vector<std::string>;

Words Of(const std::string& line) {
  const auto words = Split(line, ' ');
  return {words.begin(), words.end()};
}

TEST_F(CommandLineTest, VersionAndHelpAreData) {
  const CommandResult version = Run({"--version"});
  EXPECT_EQ(version.output, "wattlark 2.0\n");
  for (const char* line : {"--version", "--help", "meter add --help"}) {
    const CommandResult told = Run(Of(line));
    EXPECT_EQ(told.status, ExitOK);
    EXPECT_NE(told.output, "");
    EXPECT_EQ(told.messages, "");
  }
}

TEST_F(CommandLineTest, ABadOneIsToldAndDoesNothing) {
  // Words are parted by one blank each: behind the last one there can be an empty one.
  for (const char* line :
       {"reply", "--frobnicate", "--profile ", "--device ", "--demo replay x.cap",
        "--headless meter list", "replay", "replay a.cap b.cap", "replay --csv  x.cap", "meter",
        "meter add --address 5", "setting set Mils", "setting set TwitterMessage -hello"}) {
    const CommandResult result = Run(Of(line));
    EXPECT_NE(result.messages, "") << line;
    ExpectRefused(result, "", ExitBadInput);
  }
}

TEST_F(CommandLineTest, OutputThatCannotBeWrittenIsAFailure) {
  char program[] = "wattlark";
  char option[] = "--version";
  char* argv[] = {program, option, nullptr};
  int argc = 2;
  std::istringstream in;
  std::ostringstream out;
  std::ostringstream messages;
  out.setstate(std::ios::badbit);
  CommandEnvironment environment{in, out, messages, regional_};
  EXPECT_EQ(RunCommandLine(argc, argv, nullptr, environment), ExitRefused);
  EXPECT_EQ(messages.str(), "The output could not be written.\n");
}

TEST_F(CommandLineTest, TheDefaultProfileIsInTheDataFolderElseTheHomeFolder) {
  const Variable home("HOME", "/homes/a");
  for (const char* relativeOrEmpty : {"data", ""}) {
    const Variable data("XDG_DATA_HOME", relativeOrEmpty);
    EXPECT_EQ(DefaultProfileFolder(), "/homes/a/.local/share/wattlark");
  }
  EXPECT_EQ(DefaultProfileFolder(), "/homes/a/.local/share/wattlark");
  const Variable data("XDG_DATA_HOME", folder_.Path().c_str());
  EXPECT_EQ(Run({"setting", "set", "PortNum", "7"}).status, ExitOK);
  EXPECT_TRUE(std::filesystem::exists(folder_.File("wattlark/wattlark.db")));
}

TEST(TextTable, AlignsByWhatATerminalShows) {
  TextTable table({{"Name"}, {"W", TextTable::Align::Right}});
  table.AddRow({"Küche", "1"});
  table.AddRow({"\x1B[2J", "12.5"});
  table.AddRow({"short"});
  EXPECT_EQ(table.Text(),
            "Name      W\n"
            "Küche     1\n"
            "?[2J   12.5\n"
            "short\n");
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
    ASSERT_THAT(options, testing::Contains("--help"));
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

TEST_F(ManualTest, CompletesAsFarAsTheWordsGoAndWithWhatTheProfileHas) {
  EXPECT_THAT(Complete({"me"}), ElementsAre("meter"));
  EXPECT_THAT(Complete({"meter", "add", "--type", ""}), ElementsAre("load", "generator"));
  EXPECT_THAT(Complete({"meter", "add", "--name", ""}), IsEmpty());
  EXPECT_THAT(Complete({"publish", "p"}), ElementsAre("pachube", "powermeter"));
  EXPECT_THAT(Complete({"publish", "csv", ""}), IsEmpty());
  EXPECT_THAT(Complete({"setting", "set", "--profile", profile_, "PortNum", "--", "-"}), IsEmpty());
  EXPECT_FALSE(ProfileExists());
  AddKitchen();
  ExpectDone({"meter", "add", "--name", "Living room", "--address", "6"});
  EXPECT_THAT(Complete({"--profile", profile_, "meter", "remove", ""}),
              ElementsAre("Kitchen", "Living room"));
  EXPECT_THAT(Complete({"meter", "remove", "--profile=" + profile_, "K"}), ElementsAre("Kitchen"));
  EXPECT_THAT(Complete({"--profile", profile_, "setting", "get", "Service"}),
              IsSupersetOf({"ServiceState", "ServiceEndpoints/VersionFileURL"}));
}

}  // namespace
}  // namespace wattlark
