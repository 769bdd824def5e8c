#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace wattlark {

/// The end of a service manager's socket at which it listens, and waits for signs of life; the
/// environment says so.
class NotifySocket {
 public:
  /// A file, or "@" and a name that is no file.
  NotifySocket(const std::string& name, const char* patienceMicroseconds)
      : descriptor_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::ranges::copy(name, static_cast<char*>(address.sun_path));
    if (name.starts_with('@')) address.sun_path[0] = '\0';
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    if (::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
      throw std::runtime_error("no socket " + name);
    }
    ::setenv("NOTIFY_SOCKET", name.c_str(), 1);
    ::setenv("WATCHDOG_USEC", patienceMicroseconds, 1);
  }
  ~NotifySocket() {
    for (const char* name : {"NOTIFY_SOCKET", "WATCHDOG_USEC"}) ::unsetenv(name);
    ::close(descriptor_);
  }
  NotifySocket(const NotifySocket&) = delete;
  NotifySocket& operator=(const NotifySocket&) = delete;

  /// All that has come, one datagram each.
  const std::vector<std::string>& Messages() {
    std::array<char, 4096> buffer;
    for (;;) {
      const ssize_t length = ::recv(descriptor_, buffer.data(), buffer.size(), 0);
      if (length < 0) return messages_;
      messages_.emplace_back(buffer.data(), static_cast<std::size_t>(length));
    }
  }
  std::ptrdiff_t Count(const std::string& message) {
    return std::ranges::count(Messages(), message);
  }

 private:
  int descriptor_;
  std::vector<std::string> messages_;
};

}  // namespace wattlark
