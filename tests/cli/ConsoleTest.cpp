#include <sys/ioctl.h>

#include <array>
#include <csignal>
#include <regex>

#include "cli/Console.h"
#include "twins/Matchers.h"
#include "twins/TestTerminal.h"

namespace wattlark {
namespace {

// What a terminal shows of the characters and cursor movements that the console writes.
class Screen {
 public:
  void Write(const std::string& text) {
    static const std::regex part("\x1b\\[(\\d*)([A-Z])|([^])");
    for (std::sregex_iterator at(text.begin(), text.end(), part), end; at != end; ++at) {
      if ((*at)[2].matched) {
        Control((*at)[2].str(), (*at)[1].length() > 0 ? std::stoul((*at)[1]) : 0);
      } else if (*at->str().c_str() == '\r') {
        column_ = 0;
      } else if (*at->str().c_str() == '\n') {
        column_ = 0;
        if (++row_ == lines_.size()) lines_.emplace_back();
      } else {
        lines_[row_].resize(std::max(lines_[row_].size(), column_ + 1), ' ');
        lines_[row_][column_++] = *at->str().c_str();
      }
    }
  }
  // Without the line in which the cursor stands, which has to be an empty one.
  std::vector<std::string> Lines() const {
    EXPECT_EQ(row_, lines_.size() - 1);
    EXPECT_EQ(lines_.back(), "");
    return {lines_.begin(), lines_.end() - 1};
  }

 private:
  void Control(const std::string& command, std::size_t count) {
    ASSERT_NE(std::string("AHJK").find(command), std::string::npos) << "unknown control";
    ASSERT_TRUE(command != "A" || count <= row_);
    if (command == "A") row_ -= count;
    if (command == "H") row_ = column_ = 0;
    if (command == "J" && count == 2) lines_.assign(lines_.size(), "");
    if (command == "J") lines_.resize(row_ + 1);
    if (command >= "J") lines_[row_].resize(std::min(lines_[row_].size(), column_));
  }

  std::vector<std::string> lines_{""};
  std::size_t row_ = 0;
  std::size_t column_ = 0;
};

struct ConsoleOnTerminal : testing::Test {
  TestTerminal terminal;
  int device = ::open(terminal.Path().c_str(), O_RDWR | O_NOCTTY);
  ConsoleStream stream{device};
  Screen screen;

  ConsoleOnTerminal() {
    ::setenv("TERM", "xterm", 1);
    Resize(80, 24);
  }
  ~ConsoleOnTerminal() override { ::close(device); }

  void Resize(unsigned short columns, unsigned short rows) {
    winsize size{};
    size.ws_col = columns;
    size.ws_row = rows;
    ::ioctl(device, TIOCSWINSZ, &size);
  }
  std::vector<std::string> Shown() {
    screen.Write(terminal.Read());
    return screen.Lines();
  }
};

TEST_F(ConsoleOnTerminal, RefreshesTheTableInPlaceBelowTheMessagesAndAnewOnAnotherWidth) {
  Console console(stream, stream);
  ASSERT_TRUE(console.IsTable());
  console.WriteMessage("first");
  console.ShowTable("Meter  Watts\nKitchen  1000\nDen  20\n");
  console.ShowTable("Meter  Watts\nKitchen  9\n");
  EXPECT_THAT(Shown(), ElementsAre("first", "Meter  Watts", "Kitchen  9"));
  console.ShowTable("Meter  Watts\nKitchen  9\n");
  EXPECT_EQ(terminal.Read(), "") << "it shows already";
  console.WriteMessage("second\r\nthird \x1b[2J\n");
  console.ShowTable("Meter  Watts\nKitchen  7\nDen  20\n");
  EXPECT_THAT(Shown(), ElementsAre("first", "second", "third ?[2J", "Meter  Watts", "Kitchen  7",
                                   "Den  20"));
  Resize(40, 24);
  screen.Write("wrapped anew\r\n");
  console.ShowTable("A\nB\n");
  EXPECT_THAT(Shown(), ElementsAre("A", "B"));
}

TEST_F(ConsoleOnTerminal, KnowsItsSizeAndWhetherItsCursorMoves) {
  Resize(132, 43);
  EXPECT_EQ(stream.Size().columns, 132);
  EXPECT_EQ(stream.Size().rows, 43);
  Resize(0, 0);  // a serial line tells none
  EXPECT_EQ(stream.Size().columns, 80);
  EXPECT_EQ(stream.Size().rows, 24);
  ::setenv("TERM", "dumb", 1);
  EXPECT_FALSE(stream.IsTerminal());
  ::unsetenv("TERM");
  EXPECT_FALSE(stream.IsTerminal());
}

TEST(ConsoleOnPipe, AReaderThatDoesNotReadHoldsNobodyUpAndOneThatHasGoneEndsNothing) {
  std::array<int, 2> pipe{-1, -1};
  ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
  ::signal(SIGPIPE, SIG_IGN);
  ConsoleStream stream(pipe[1]);
  EXPECT_FALSE(stream.IsTerminal());
  const std::string line(1000, 'x');
  int written = 0;
  while (stream.Write(line) && written < 100000) ++written;
  EXPECT_GT(written, 0);
  EXPECT_LT(written, 100000);  // the pipe is full; a write that waits would hang here
  std::string bytes(65536, '\0');
  EXPECT_GT(::read(pipe[0], bytes.data(), bytes.size()), 0);
  EXPECT_TRUE(stream.Write(line));
  ::close(pipe[0]);
  EXPECT_FALSE(stream.Write("a\n"));
  EXPECT_FALSE(stream.Write("b\n"));
  ::close(pipe[1]);
  ::signal(SIGPIPE, SIG_DFL);
}

}  // namespace
}  // namespace wattlark
