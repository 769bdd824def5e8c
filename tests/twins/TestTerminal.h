#pragma once

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace wattlark {

/// A pseudo-terminal of a test's own: what the test writes arrives at the device.
class TestTerminal {
 public:
  TestTerminal() {
    master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0) {
      throw std::runtime_error("no pseudo-terminal");
    }
    path_ = ::ptsname(master_);
    // Bytes written before the device is opened must not be changed or echoed.
    termios raw{};
    ::tcgetattr(master_, &raw);
    ::cfmakeraw(&raw);
    ::tcsetattr(master_, TCSANOW, &raw);
  }
  ~TestTerminal() { ::close(master_); }
  TestTerminal(const TestTerminal&) = delete;
  TestTerminal& operator=(const TestTerminal&) = delete;

  const std::string& Path() const { return path_; }
  int Master() const { return master_; }

  void Write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
      const ssize_t written = ::write(master_, bytes.data(), bytes.size());
      if (written < 0 && errno != EINTR) throw std::runtime_error("the terminal takes no bytes");
      if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
  }
  /// What the device's side has written since the last call.
  std::string Read() {
    std::string text;
    std::vector<char> buffer(4096);
    for (;;) {
      const ssize_t count = ::read(master_, buffer.data(), buffer.size());
      if (count <= 0) return text;
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
  }

 private:
  int master_ = -1;
  std::string path_;
};

}  // namespace wattlark
