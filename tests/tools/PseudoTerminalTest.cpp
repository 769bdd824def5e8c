#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <numeric>
#include <stdexcept>

#include "platform/TemporaryFolder.h"
#include "sim/PseudoTerminal.h"

namespace wattlark {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

class Reader {
 public:
  explicit Reader(const fs::path& path)
      : descriptor_(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK)) {
    EXPECT_GE(descriptor_, 0);
  }
  ~Reader() { close(descriptor_); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  bool HasBytes(int timeoutMilliseconds) const {
    pollfd event{descriptor_, POLLIN, 0};
    return poll(&event, 1, timeoutMilliseconds) == 1;
  }
  /// What comes until `count` bytes are there or nothing more comes.
  Bytes Read(std::size_t count) const {
    Bytes bytes;
    while (bytes.size() < count && HasBytes(5000)) {
      std::array<std::uint8_t, 256> part{};
      const ssize_t length = read(descriptor_, part.data(), std::min(part.size(), count));
      if (length <= 0) break;
      bytes.insert(bytes.end(), part.begin(), part.begin() + length);
    }
    return bytes;
  }

 private:
  int descriptor_;
};

struct PseudoTerminalTest : testing::Test {
  TemporaryFolder folder;
  fs::path link = folder.File("meters");
};

TEST_F(PseudoTerminalTest, CarriesEveryByteValueToReadersThatComeAndGo) {
  Bytes all(256);
  std::iota(all.begin(), all.end(), std::uint8_t{0});
  for (const fs::path& name : {link, fs::path()}) {
    PseudoTerminal terminal(name);
    EXPECT_EQ(terminal.PublicPath(), name.empty() ? terminal.DevicePath() : name);
    for (int round = 1; round <= 3; ++round) {
      const Reader reader(terminal.PublicPath());
      terminal.Write(all, std::int64_t{100} * round);
      EXPECT_EQ(reader.Read(256), all);
    }
  }
}

TEST_F(PseudoTerminalTest, WithoutAReaderOnlyTheNewestBytesWait) {
  PseudoTerminal terminal(link);
  const Reader observer(link);
  for (std::uint8_t i = 1; i <= 50; ++i) {
    terminal.Write({i, i}, std::int64_t{250} * i);
    ASSERT_TRUE(observer.HasBytes(5000));
    EXPECT_FALSE(terminal.CheckForReader(std::int64_t{250} * i + 100));
  }
  EXPECT_FALSE(terminal.HasReader());
  EXPECT_EQ(observer.Read(2), (Bytes{50, 50}));
  EXPECT_FALSE(observer.HasBytes(0));
}

TEST_F(PseudoTerminalTest, NoticesAReaderOnceAndThatItLeft) {
  PseudoTerminal terminal(link);
  const Reader reader(link);
  terminal.Write({1}, 0);
  ASSERT_EQ(reader.Read(1), Bytes{1});
  EXPECT_TRUE(terminal.CheckForReader(100));
  EXPECT_FALSE(terminal.CheckForReader(120));
  EXPECT_TRUE(terminal.HasReader());

  terminal.Write({2}, 200);
  ASSERT_TRUE(reader.HasBytes(5000));
  EXPECT_FALSE(terminal.CheckForReader(1199));
  EXPECT_TRUE(terminal.HasReader()) << "a reader may be busy for a while";
  EXPECT_FALSE(terminal.CheckForReader(1200));
  EXPECT_FALSE(terminal.HasReader());
  ASSERT_EQ(reader.Read(1), Bytes{2});
  EXPECT_TRUE(terminal.CheckForReader(1300));
}

TEST_F(PseudoTerminalTest, RemovesItsLinkButNotAnothers) {
  fs::create_symlink("/dev/pts/4095", link);  // of a killed run
  {
    const PseudoTerminal terminal(link);
    EXPECT_EQ(fs::read_symlink(link), terminal.DevicePath());
  }
  EXPECT_EQ(fs::symlink_status(link).type(), fs::file_type::not_found);
  {
    const PseudoTerminal terminal(link);
    fs::remove(link);
    fs::create_symlink("/dev/null", link);
  }
  EXPECT_EQ(fs::read_symlink(link), "/dev/null");
}

TEST_F(PseudoTerminalTest, LeavesAnythingElseInItsPlaceAlone) {
  WriteFile(link, "kept");
  for (const fs::path& taken :
       {link, fs::path(folder.Path()), fs::path(folder.File("none/meters"))}) {
    EXPECT_THROW(PseudoTerminal{taken}, std::runtime_error) << taken;
  }
  EXPECT_EQ(FileBytes(link), "kept");
}

}  // namespace
}  // namespace wattlark
