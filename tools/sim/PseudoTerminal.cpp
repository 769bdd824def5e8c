#include "sim/PseudoTerminal.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace wattlark {
namespace {

namespace fs = std::filesystem;

// What has been written reaches the reader's end, where it can be counted, a moment later.
constexpr std::int64_t kSettleMilliseconds = 20;

std::runtime_error Failure(const std::string& what, int error) {
  return std::runtime_error(what + ": " + std::generic_category().message(error));
}

bool IsPseudoTerminalLink(const fs::path& path) {
  std::error_code error;
  const fs::path target = fs::read_symlink(path, error);
  return !error && target.parent_path() == "/dev/pts";
}

}  // namespace

PseudoTerminal::PseudoTerminal(const fs::path& link) : link_(link) {
  try {
    OpenDevice();
    if (!link_.empty()) CreateLink();
  } catch (...) {
    CloseDevice();
    throw;
  }
}

PseudoTerminal::~PseudoTerminal() {
  std::error_code error;
  if (!link_.empty() && fs::read_symlink(link_, error) == devicePath_ && !error)
    fs::remove(link_, error);
  CloseDevice();
}

const fs::path& PseudoTerminal::PublicPath() const {
  return link_.empty() ? devicePath_ : link_;
}

void PseudoTerminal::OpenDevice() {
  master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0)
    throw Failure("Cannot create a pseudo-terminal", errno);
  std::array<char, 128> name{};
  if (const int error = ptsname_r(master_, name.data(), name.size()); error != 0)
    throw Failure("Cannot name the pseudo-terminal", error);
  devicePath_ = name.data();
  keeper_ = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (keeper_ < 0) throw Failure("Cannot open " + devicePath_.string(), errno);
  if (fcntl(master_, F_SETFL, O_NONBLOCK) != 0)
    throw Failure("Cannot set up " + devicePath_.string(), errno);
  MakeRaw();
}

void PseudoTerminal::CreateLink() {
  std::error_code error;
  if (fs::symlink_status(link_, error).type() != fs::file_type::not_found) {
    if (!IsPseudoTerminalLink(link_))
      throw std::runtime_error("Cannot create the link " + link_.string() +
                               ": something else has that name");
    // The name may have gone meanwhile; if it has not, creating the link says why.
    fs::remove(link_, error);
  }
  fs::create_symlink(devicePath_, link_, error);
  if (error)
    throw std::runtime_error("Cannot create the link " + link_.string() + ": " + error.message());
}

void PseudoTerminal::CloseDevice() {
  if (keeper_ >= 0) close(keeper_);
  if (master_ >= 0) close(master_);
}

void PseudoTerminal::MakeRaw() {
  termios mode{};
  if (tcgetattr(keeper_, &mode) != 0) return;
  cfmakeraw(&mode);
  tcsetattr(keeper_, TCSANOW, &mode);
}

bool PseudoTerminal::CheckForReader(std::int64_t nowMilliseconds) {
  if (!hasWritten_ || nowMilliseconds - lastWrite_ < kSettleMilliseconds) return false;
  int unread = 0;
  if (ioctl(keeper_, FIONREAD, &unread) != 0) return false;
  if (unread == 0) {
    lastEmpty_ = nowMilliseconds;
    return !std::exchange(hasReader_, true);
  }
  if (hasReader_ && nowMilliseconds - lastEmpty_ >= kGoneMilliseconds) {
    hasReader_ = false;
    MakeRaw();
  }
  return false;
}

void PseudoTerminal::Write(const std::vector<std::uint8_t>& bytes, std::int64_t nowMilliseconds) {
  DiscardInput();
  CheckForReader(nowMilliseconds);
  if (!hasReader_) {
    tcflush(keeper_, TCIFLUSH);
    // A reader that was killed leaves its exclusive lock behind. On hardware the last close ends
    // it; here it would outlive every reader, as one end is kept open.
    ioctl(keeper_, TIOCNXCL);
  }
  hasWritten_ = true;
  lastWrite_ = nowMilliseconds;
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t count = write(master_, bytes.data() + written, bytes.size() - written);
    if (count > 0)
      written += static_cast<std::size_t>(count);
    else if (count == 0 || errno != EINTR)
      return;
  }
}

void PseudoTerminal::DiscardInput() {
  std::array<char, 512> bytes{};
  while (read(master_, bytes.data(), bytes.size()) > 0) {
  }
}

}  // namespace wattlark
