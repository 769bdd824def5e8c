#include "cli/HeadlessFace.h"

#include <algorithm>

#include "cli/CommandText.h"

namespace wattlark {

namespace {

constexpr int kUpdateMilliseconds = 1000;

}  // namespace

HeadlessFace::HeadlessFace(Console& console, ServiceReport& service, const SerialPort& serial,
                           std::string profileFolder)
    : console_(console),
      service_(service),
      serial_(serial),
      profileFolder_(std::move(profileFolder)) {
  tmrUpdate_.setSingleShot(true);
  tmrUpdate_.setTimerType(Qt::PreciseTimer);
  tmrUpdate_.setInterval(kUpdateMilliseconds);
}

void HeadlessFace::Attach(Monitor& monitor) {
  monitor_ = &monitor;
  QObject::connect(&tmrUpdate_, &QTimer::timeout, [this] { monitor_->UpdateCycle(); });
}

void HeadlessFace::OnError(const std::string& text, DateTime moment) {
  console_.WriteMessage(FormatDateAndTime(monitor_->Regional(), moment), text);
}

void HeadlessFace::OnAlarmNotice(const AlarmNotice& notice) {
  console_.WriteMessage(FormatDateAndTime(monitor_->Regional(), notice.time), notice.line);
}

void HeadlessFace::OnReading(const clsKillAWatt& meter, DateTime time) {
  if (!console_.IsTable()) PrintFirstReading(meter, time);
}

void HeadlessFace::OnUpdateTimer(bool enabled) {
  if (enabled) {
    tmrUpdate_.start();
    service_.OnTickEnds();
  } else {
    tmrUpdate_.stop();
    service_.OnTickBegins();
  }
}

void HeadlessFace::OnUpdateStatus() {
  if (isEnding_) return;
  const DateTime now = monitor_->Now();
  TellState();
  service_.ShowStatus(StatusText(now));
  TellHeard();
  if (console_.IsTable()) {
    console_.ShowTable(ConsoleTable(monitor_->Profile(), monitor_->Regional(),
                                    monitor_->IsFlowing(), now, console_.Size()));
  } else {
    PrintDueLines(now);
  }
}

void HeadlessFace::TellState() {
  State state = State::Receiving;
  if (!monitor_->IsFlowing()) {
    state = State::NoPort;
  } else if (monitor_->Profile().Meters().IsEmpty()) {
    state = State::NoMeters;
  }
  if (state == State::Receiving && toldState_ == State::Receiving) return;
  const std::string text = StateText(state);
  if (state == toldState_ && text == toldText_) return;
  if (toldState_ == State::NoPort && state != State::NoPort) {
    const int port = monitor_->Profile().Settings().PortNum;
    console_.WriteMessage("Communicating on COM" + std::to_string(port) + " again");
  }
  toldState_ = state;
  toldText_ = text;
  if (!text.empty()) console_.WriteMessage(text);
}

std::string HeadlessFace::StateText(State state) const {
  const std::string message = monitor_->MainAreaText();
  const std::string firstLine = message.substr(0, message.find('\r'));
  const bool isNew = monitor_->Profile().Meters().IsEmpty();
  const std::string discover = ProfileCommand("meter discover", profileFolder_);
  switch (state) {
    case State::NoPort:
      return firstLine + " " + serial_.ErrorText() + (isNew ? ". Or find it: " + discover : "");
    case State::NoMeters:
      if (monitor_->IsDemoMode()) {
        return firstLine + ": end this program, then type: " + AddCommand(profileFolder_, 1);
      }
      return firstLine +
             ": waiting to hear one. If none comes, end this program, then type: " + discover;
    case State::Receiving:
      break;
  }
  return {};
}

// Without readings, which would be another one every second.
std::string HeadlessFace::StatusText(DateTime now) const {
  if (toldState_ != State::Receiving) return toldText_;
  const MeterCollection& meters = monitor_->Profile().Meters();
  const auto sending =
      std::ranges::count_if(meters, [now](const auto& meter) { return meter->IsReceiving(now); });
  return std::to_string(sending) + " of " + std::to_string(meters.Count()) +
         (meters.Count() == 1 ? " meter sends" : " meters send");
}

// Only while there are no meters: later, the neighbours' may be heard for years.
void HeadlessFace::TellHeard() {
  if (!monitor_->Profile().Meters().IsEmpty()) return;
  for (const HeardMeter& heard : monitor_->Heard().All()) {
    if (toldAddresses_.size() == HeardMeters::Most) return;
    if (!toldAddresses_.insert(heard.address).second) continue;
    const std::string address = std::to_string(heard.address);
    console_.WriteMessage("Meter " + address +
                          " is sending. To add it, end this program, then type: " +
                          AddCommand(profileFolder_, heard.address));
  }
}

void HeadlessFace::PrintFirstReading(const clsKillAWatt& meter, DateTime time) {
  if (printedMeters_.insert(&meter).second) PrintLine(meter, time);
}

void HeadlessFace::PrintLine(const clsKillAWatt& meter, DateTime now) {
  console_.WriteLine(ConsoleDate(now), ConsoleLine(meter, now));
}

void HeadlessFace::PrintDueLines(DateTime now) {
  const MeterCollection& meters = monitor_->Profile().Meters();
  const std::int64_t minute = now.Milliseconds() / 60000;
  const bool isDue = printedMinute_ && minute != *printedMinute_;
  printedMinute_ = minute;
  for (const auto& meter : meters) {
    if (isDue) {
      if (meter->HasReading()) printedMeters_.insert(meter.get());
      PrintLine(*meter, now);
    } else if (meter->HasReading()) {
      PrintFirstReading(*meter, now);
    }
  }
}

}  // namespace wattlark
