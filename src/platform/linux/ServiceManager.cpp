#include "platform/linux/ServiceManager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace wattlark {

namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// 0 for whatever is no positive number.
std::int64_t Number(const std::string& text) {
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && rest == end && number > 0 ? number : 0;
}

}  // namespace

ServiceManager::ServiceManager() {
  const std::string socket = Variable("NOTIFY_SOCKET");
  const bool hasKnownForm = socket.starts_with('/') || socket.starts_with('@');
  if (hasKnownForm && socket.size() < sizeof(sockaddr_un::sun_path)) socket_ = socket;
  const std::string process = Variable("WATCHDOG_PID");
  if (process.empty() || Number(process) == ::getpid()) {
    watchdogTime_ = std::chrono::microseconds(Number(Variable("WATCHDOG_USEC")));
  }
}

void ServiceManager::TellStatus(const std::string& text) const {
  Send("STATUS=" + text.substr(0, text.find_first_of("\r\n")));
}

// A message that cannot be sent is lost: readings must not wait for a manager that does not listen,
// and one that misses the signs of life restarts the program.
void ServiceManager::Send(const std::string& message) const {
  if (!IsPresent()) return;
  const int descriptor = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (descriptor < 0) return;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, socket_.data(), socket_.size());
  // The name of an abstract socket begins with a zero byte, for which "@" stands.
  if (socket_.front() == '@') address.sun_path[0] = '\0';
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + socket_.size());
  ::sendto(descriptor, message.data(), message.size(), MSG_NOSIGNAL,
           reinterpret_cast<const sockaddr*>(&address), length);
  ::close(descriptor);
}

}  // namespace wattlark
