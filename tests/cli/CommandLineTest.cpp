#include <cstdlib>
#include <optional>
#include <string>

#include "cli/CommandTest.h"
#include "cli/DefaultFiles.h"
#include "cli/TextTable.h"

namespace wattlark {
namespace {

/// Gives an environment variable a value, or none, for as long as it lives.
class Variable {
 public:
  Variable(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    Set(value);
  }
  ~Variable() { Set(before_ ? before_->c_str() : nullptr); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  void Set(const char* value) const {
    if (value == nullptr) {
      ::unsetenv(name_);
    } else {
      ::setenv(name_, value, 1);
    }
  }

  const char* name_;
  std::optional<std::string> before_;
};

using CommandLineTest = CommandTest;

TEST_F(CommandLineTest, VersionAndHelpAreData) {
  const CommandResult version = Run({"--version"});
  EXPECT_EQ(version.status, ExitOK);
  EXPECT_EQ(version.output, "wattlark 2.0\n");
  EXPECT_EQ(version.messages, "");
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--help"},
                                                    {"replay", "--help"},
                                                    {"meter", "add", "--help"},
                                                    {"setting", "set", "--help"}}) {
    const CommandResult help = Run(arguments);
    EXPECT_EQ(help.status, ExitOK);
    EXPECT_NE(help.output.find("Exit status: 0 done, 1 refused"), std::string::npos);
    EXPECT_EQ(help.messages, "");
  }
}

struct BadArguments {
  std::vector<std::string> arguments;
};

class BadCommandLine : public CommandTest, public testing::WithParamInterface<BadArguments> {};

TEST_P(BadCommandLine, IsToldAndDoesNothing) {
  const CommandResult result = Run(GetParam().arguments);
  EXPECT_EQ(result.status, ExitBadInput);
  EXPECT_EQ(result.output, "");
  EXPECT_NE(result.messages, "");
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, BadCommandLine,
    testing::Values(BadArguments{{"reply"}}, BadArguments{{"--frobnicate"}},
                    BadArguments{{"--profile"}}, BadArguments{{"--profile", ""}},
                    BadArguments{{"--device", ""}}, BadArguments{{"--demo", "replay", "x.cap"}},
                    BadArguments{{"--headless", "meter", "list"}}, BadArguments{{"replay"}},
                    BadArguments{{"replay", "--demo", "x.cap"}},
                    BadArguments{{"replay", "a.cap", "b.cap"}},
                    BadArguments{{"replay", "--csv", "", "x.cap"}}, BadArguments{{"meter"}},
                    BadArguments{{"meter", "rename", "a"}},
                    BadArguments{{"meter", "add", "--name", "Kitchen"}},
                    BadArguments{{"meter", "add", "--address", "5"}},
                    BadArguments{{"meter", "add", "--name", "K", "--address", "5", "surplus"}},
                    BadArguments{{"meter", "remove"}}, BadArguments{{"setting"}},
                    BadArguments{{"setting", "get"}}, BadArguments{{"setting", "set", "Mils"}},
                    BadArguments{{"setting", "set", "TwitterMessage", "-hello"}},
                    BadArguments{{"setting", "list", "--json", "Mils"}}));

TEST_F(CommandLineTest, ProfileIsTakenBeforeAndBehindTheCommand) {
  AddKitchen();
  const std::string expected = RunHere({"meter", "list"}).output;
  EXPECT_NE(expected.find("Kitchen"), std::string::npos);
  EXPECT_EQ(Run({"--profile", profile_, "meter", "list"}).output, expected);
  EXPECT_EQ(Run({"meter", "--profile", profile_, "list"}).output, expected);
  EXPECT_EQ(Run({"meter", "list", "--profile=" + profile_}).output, expected);
}

TEST_F(CommandLineTest, RunWithADisplayGetsItsOptions) {
  const Variable display("DISPLAY", ":0");
  std::optional<RunOptions> seen;
  runWindow_ = [&seen](int& /*argc*/, char** /*argv*/, const RunOptions& options) {
    seen = options;
    return 7;
  };
  EXPECT_EQ(RunHere({"--demo", "--device", "/dev/x", "--record", "a.cap"}).status, 7);
  ASSERT_TRUE(seen);
  EXPECT_EQ(seen->profileFolder, profile_);
  EXPECT_EQ(seen->device, "/dev/x");
  EXPECT_EQ(seen->recordFile, "a.cap");
  EXPECT_TRUE(seen->demo);
  EXPECT_FALSE(seen->headless);
}

TEST_F(CommandLineTest, CommandsNeedNoWindow) {
  const Variable display("DISPLAY", ":0");
  runWindow_ = [](int& /*argc*/, char** /*argv*/, const RunOptions& /*options*/) {
    ADD_FAILURE();
    return 7;
  };
  EXPECT_EQ(RunHere({"meter", "list"}).status, ExitOK);
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

TEST(DefaultFiles, ProfileFollowsTheDataFolderThenTheHomeFolder) {
  const Variable home("HOME", "/homes/a");
  {
    const Variable data("XDG_DATA_HOME", "/data");
    EXPECT_EQ(DefaultProfileFolder(), "/data/wattlark");
  }
  const Variable relative("XDG_DATA_HOME", "data");
  EXPECT_EQ(DefaultProfileFolder(), "/homes/a/.local/share/wattlark");
  const Variable none("XDG_DATA_HOME", nullptr);
  EXPECT_EQ(DefaultProfileFolder(), "/homes/a/.local/share/wattlark");
}

TEST_F(CommandLineTest, DefaultProfileIsTheUsersOwn) {
  const Variable data("XDG_DATA_HOME", folder_.Path().c_str());
  EXPECT_EQ(Run({"setting", "set", "PortNum", "7"}).status, ExitOK);
  EXPECT_TRUE(std::filesystem::exists(folder_.File("wattlark/wattlark.db")));
  EXPECT_EQ(Run({"setting", "get", "PortNum"}).output, "7\n");
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

}  // namespace
}  // namespace wattlark
