#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "sim/Options.h"
#include "sim/PseudoTerminal.h"
#include "sim/Simulation.h"
#include "sim/SimulationCapture.h"

namespace wattlark {
namespace {

constexpr int kFailed = 1;
constexpr std::int64_t kLateMilliseconds = 1000;
constexpr std::int64_t kReaderCheckMilliseconds = 20;

/// Readable when the process has been asked to end.
class EndSignals {
 public:
  EndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC);
    if (descriptor_ < 0) throw std::runtime_error("Cannot wait for signals");
  }
  ~EndSignals() { close(descriptor_); }
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

  int Descriptor() const { return descriptor_; }

 private:
  int descriptor_ = -1;
};

/// Waits `milliseconds`; true when an end signal came.
bool Wait(const EndSignals& signals, PseudoTerminal& terminal, std::int64_t milliseconds) {
  std::array<pollfd, 2> events{
      {{signals.Descriptor(), POLLIN, 0}, {terminal.Descriptor(), POLLIN, 0}}};
  const int timeout = static_cast<int>(std::clamp<std::int64_t>(milliseconds, 0, 60000));
  if (poll(events.data(), events.size(), timeout) < 0 && errno != EINTR)
    throw std::runtime_error("Cannot wait for the pseudo-terminal");
  if ((events[1].revents & POLLIN) != 0) terminal.DiscardInput();
  return (events[0].revents & POLLIN) != 0;
}

void RunTerminal(const Options& options, Simulation& simulation) {
  const EndSignals signals;
  PseudoTerminal terminal(options.link);
  for (const MeterSettings& meter : options.meters)
    std::cerr << meter.name << ": address " << meter.address << ", " << meter.watts << " W, "
              << meter.nominalVoltage << " V, " << meter.frequency << " Hz"
              << (meter.isGenerator ? ", generator" : "") << '\n';
  std::cout << "ready: " << terminal.PublicPath().string() << std::endl;

  const auto start = std::chrono::steady_clock::now();
  const auto elapsed = [&start] {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start)
        .count();
  };
  for (;;) {
    const std::int64_t now = elapsed();
    if (options.durationSeconds && now >= *options.durationSeconds * 1000) return;
    // A new reader hears all meters at once instead of waiting for their turns; after a stop of the
    // process what was missed is not made up for.
    if (terminal.CheckForReader(now) || simulation.Next().milliseconds < now - kLateMilliseconds)
      simulation.Restart(now);
    if (simulation.Next().milliseconds <= now) {
      terminal.Write(simulation.Next().bytes, now);
      simulation.Advance();
    }
    std::int64_t until = simulation.Next().milliseconds;
    if (!terminal.HasReader()) until = std::min(until, now + kReaderCheckMilliseconds);
    if (options.durationSeconds) until = std::min(until, *options.durationSeconds * 1000);
    if (Wait(signals, terminal, until - elapsed())) return;
  }
}

void RunCapture(const Options& options, Simulation& simulation) {
  const std::int64_t duration = options.durationSeconds.value_or(0);
  if (options.capture == "-") {
    if (!WriteCapture(simulation, options.start, duration, std::cout))
      throw std::runtime_error("Cannot write the capture to standard output");
    return;
  }
  errno = 0;
  std::ofstream file(options.capture, std::ios::binary | std::ios::trunc);
  if (!file || !WriteCapture(simulation, options.start, duration, file))
    throw std::runtime_error("Cannot write the capture " + options.capture +
                             (errno != 0 ? ": " + std::generic_category().message(errno) : ""));
}

int Main(const std::vector<std::string>& arguments) {
  const ParsedOptions parsed = ParseOptions(arguments);
  if (!parsed.options) {
    if (parsed.exitStatus == 0)
      std::cout << parsed.message;
    else
      std::cerr << "wattlark-sim: " << parsed.message << "\nTry wattlark-sim --help\n";
    return parsed.exitStatus;
  }
  const Options& options = *parsed.options;
  Simulation simulation(options.meters, options.line, options.periodSeconds, options.seed);
  if (options.capture.empty())
    RunTerminal(options, simulation);
  else
    RunCapture(options, simulation);
  return 0;
}

}  // namespace
}  // namespace wattlark

int main(int argc, char** argv) {
  try {
    return wattlark::Main({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << "wattlark-sim: " << error.what() << '\n';
    return wattlark::kFailed;
  }
}
