#include "platform/qt/UnixSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>

namespace wattlark {

namespace {

constexpr std::array kQuitSignals = {SIGINT, SIGTERM, SIGHUP};

// A signal handler can reach nothing but what has static storage.
volatile sig_atomic_t signalPipe = -1;

void WriteToPipe(int) {
  const int savedError = errno;
  const char byte = 0;
  [[maybe_unused]] const auto written = write(signalPipe, &byte, 1);
  errno = savedError;
}

}  // namespace

struct UnixSignals::Handlers {
  std::array<int, 2> pipe{-1, -1};
  std::array<struct sigaction, kQuitSignals.size()> before{};
  struct sigaction pipeSignalBefore {};
};

UnixSignals::UnixSignals(std::function<void()> onQuit)
    : onQuit_(std::move(onQuit)), handlers_(std::make_unique<Handlers>()) {
  if (pipe2(handlers_->pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::runtime_error("The system gives no pipe for its signals");
  }
  notifier_ = std::make_unique<QSocketNotifier>(handlers_->pipe[0], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { Drain(); });
  signalPipe = handlers_->pipe[1];

  struct sigaction action {};
  action.sa_handler = WriteToPipe;
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kQuitSignals.size(); ++i) {
    sigaction(kQuitSignals[i], nullptr, &handlers_->before[i]);
    const bool isNoHangUp = kQuitSignals[i] == SIGHUP && handlers_->before[i].sa_handler == SIG_IGN;
    if (!isNoHangUp) sigaction(kQuitSignals[i], &action, nullptr);
  }
  action.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &action, &handlers_->pipeSignalBefore);
}

UnixSignals::~UnixSignals() {
  for (std::size_t i = 0; i < kQuitSignals.size(); ++i) {
    sigaction(kQuitSignals[i], &handlers_->before[i], nullptr);
  }
  sigaction(SIGPIPE, &handlers_->pipeSignalBefore, nullptr);
  signalPipe = -1;
  notifier_.reset();
  close(handlers_->pipe[0]);
  close(handlers_->pipe[1]);
}

void UnixSignals::Drain() {
  std::array<char, 16> bytes;
  while (read(handlers_->pipe[0], bytes.data(), bytes.size()) > 0) {
  }
  onQuit_();
}

}  // namespace wattlark
