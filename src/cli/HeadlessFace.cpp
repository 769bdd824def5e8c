#include "cli/HeadlessFace.h"

#include <algorithm>

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
  switch (state) {
    case State::NoPort:
      return firstLine + " " + serial_.ErrorText();
    case State::NoMeters:
      return firstLine + ": end this program, then add one with: wattlark meter add --profile \"" +
             profileFolder_ + "\" --name Kitchen --address 5";
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
