#include "cli/ConsoleStream.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string>

namespace wattlark {

bool ConsoleStream::IsTerminal() const {
  if (isatty(descriptor_) == 0) return false;
  const char* terminal = std::getenv("TERM");
  return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

// The variable names the stream by its device and file: a child of a service inherits it although
// its output may go elsewhere.
bool ConsoleStream::IsJournal() const {
  const char* journal = std::getenv("JOURNAL_STREAM");
  struct stat file {};
  return journal != nullptr && fstat(descriptor_, &file) == 0 &&
         std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino) == journal;
}

ConsoleSize ConsoleStream::Size() const {
  winsize window{};
  ConsoleSize size;
  if (ioctl(descriptor_, TIOCGWINSZ, &window) == 0 && window.ws_col > 0 && window.ws_row > 0) {
    size.columns = window.ws_col;
    size.rows = window.ws_row;
  }
  return size;
}

bool ConsoleStream::Write(std::string_view text) {
  while (!text.empty() && !isClosed_) {
    // A pipe that polls as writable takes this many bytes without blocking.
    const std::size_t length = std::min<std::size_t>(text.size(), PIPE_BUF);
    pollfd state{descriptor_, POLLOUT, 0};
    const int ready = poll(&state, 1, 0);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return false;
    const ssize_t written = write(descriptor_, text.data(), length);
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EPIPE || errno == EIO || errno == EBADF) {
      isClosed_ = true;
    } else if (errno != EINTR) {
      return false;
    }
  }
  return text.empty();
}

}  // namespace wattlark
