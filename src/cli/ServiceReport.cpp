#include "cli/ServiceReport.h"

#include <chrono>

namespace wattlark {

namespace {

// Signs of life in the time after which the manager takes the program for dead.
constexpr int kSigns = 4;

}  // namespace

ServiceReport::ServiceReport() {
  const auto pause =
      std::chrono::duration_cast<std::chrono::milliseconds>(manager_.WatchdogTime()) / kSigns;
  if (!manager_.IsPresent() || manager_.WatchdogTime().count() == 0) return;
  tmrWait_.setInterval(pause);
  QObject::connect(&tmrWait_, &QTimer::timeout, [this] {
    if (isInTick_) TellAlive();
  });
  tmrWait_.start();
}

void ServiceReport::OnTickEnds() {
  isInTick_ = false;
  // Not at every tick: each sign wakes the manager up.
  const bool isDue = !sinceSign_.isValid() || sinceSign_.elapsed() >= tmrWait_.interval();
  if (tmrWait_.isActive() && isDue) TellAlive();
}

void ServiceReport::TellAlive() {
  manager_.TellAlive();
  sinceSign_.start();
}

void ServiceReport::ShowStatus(const std::string& text) {
  if (text == toldStatus_) return;
  toldStatus_ = text;
  manager_.TellStatus(text);
}

}  // namespace wattlark
