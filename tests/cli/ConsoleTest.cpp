#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <vector>

#include "cli/Console.h"
#include "twins/TestTerminal.h"

namespace wattlark {
namespace {

using testing::ElementsAre;

// What a terminal shows of the characters and cursor movements that the console writes.
class Screen {
 public:
  void Write(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\x1b') {
        ASSERT_EQ(text.at(++i), '[');
        std::string digits;
        while (std::isdigit(static_cast<unsigned char>(text.at(++i))) != 0) digits += text[i];
        Control(text[i], digits.empty() ? 0 : std::stoul(digits));
      } else if (text[i] == '\r') {
        column_ = 0;
      } else if (text[i] == '\n') {
        ++row_;
        column_ = 0;
        if (row_ == lines_.size()) lines_.emplace_back();
      } else {
        lines_[row_].resize(std::max(lines_[row_].size(), column_ + 1), ' ');
        lines_[row_][column_++] = text[i];
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
  void Control(char command, std::size_t count) {
    switch (command) {
      case 'A':
        ASSERT_LE(count, row_);
        row_ -= count;
        break;
      case 'H':
        row_ = column_ = 0;
        break;
      case 'J':
        if (count == 2) lines_.assign(lines_.size(), "");
        lines_[row_].resize(std::min(lines_[row_].size(), column_));
        lines_.resize(row_ + 1);
        break;
      case 'K':
        lines_[row_].resize(std::min(lines_[row_].size(), column_));
        break;
      default:
        FAIL() << "unknown control " << command;
    }
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

TEST_F(ConsoleOnTerminal, RefreshesTheTableInPlace) {
  Console console(stream, stream);
  ASSERT_TRUE(console.IsTable());
  console.ShowTable("Meter  Watts\nKitchen  1000\nDen  20\n");
  EXPECT_THAT(Shown(), ElementsAre("Meter  Watts", "Kitchen  1000", "Den  20"));
  console.ShowTable("Meter  Watts\nKitchen  9\nDen  20\n");
  EXPECT_THAT(Shown(), ElementsAre("Meter  Watts", "Kitchen  9", "Den  20"));
  console.ShowTable("Meter  Watts\n");
  EXPECT_THAT(Shown(), ElementsAre("Meter  Watts"));
  console.ShowTable("Meter  Watts\n");
  EXPECT_EQ(terminal.Read(), "") << "it shows already";
  console.ShowTable("Meter  Watts\nKitchen  7\n");
  EXPECT_THAT(Shown(), ElementsAre("Meter  Watts", "Kitchen  7"));
}

TEST_F(ConsoleOnTerminal, PutsMessagesAboveTheTable) {
  Console console(stream, stream);
  console.WriteMessage("first");
  console.ShowTable("A\nB\n");
  console.WriteMessage("second\r\nthird \x1b[2J\n");
  console.ShowTable("C\nD\n");
  EXPECT_THAT(Shown(), ElementsAre("first", "second", "third ?[2J", "C", "D"));
}

TEST_F(ConsoleOnTerminal, BeginsAnewOnAScreenOfAnotherWidth) {
  Console console(stream, stream);
  console.ShowTable("A\nB\n");
  Resize(40, 24);
  screen.Write(terminal.Read() + "wrapped anew\r\n");
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

struct ConsoleOnPipe : testing::Test {
  std::array<int, 2> pipe{-1, -1};
  ConsoleOnPipe() {
    EXPECT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    ::signal(SIGPIPE, SIG_IGN);
  }
  ~ConsoleOnPipe() override {
    for (const int end : pipe) {
      if (end >= 0) ::close(end);
    }
    ::signal(SIGPIPE, SIG_DFL);
  }
};

TEST_F(ConsoleOnPipe, AReaderThatDoesNotReadHoldsNobodyUp) {
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
}

TEST_F(ConsoleOnPipe, AReaderThatHasGoneEndsNothing) {
  ConsoleStream stream(pipe[1]);
  ::close(pipe[0]);
  pipe[0] = -1;
  EXPECT_FALSE(stream.Write("a\n"));
  EXPECT_FALSE(stream.Write("b\n"));
}

}  // namespace
}  // namespace wattlark
