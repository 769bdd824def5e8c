#include "app/FirstStartView.h"

#include <algorithm>
#include <cstdlib>

namespace wattlark {

namespace {

constexpr std::int64_t kMilliseconds = 1000;

bool IsUsed(const SerialDevice& device, const FirstStartState& state) {
  return state.isOpen && !state.devicePath.empty() &&
         (device.byIdPath == state.devicePath || device.devicePath == state.devicePath);
}

std::string Port(const FirstStartState& state) {
  return "COM" + std::to_string(state.portNumber);
}

std::string ListeningText(const FirstStartState& state) {
  const bool isListed = std::ranges::any_of(
      state.devices, [&](const SerialDevice& device) { return IsUsed(device, state); });
  const std::string device = isListed || state.devicePath.empty() ? "" : ", " + state.devicePath;
  return "Listening on " + Port(state) + device + ".";
}

std::string ReceiverText(const FirstStartState& state) {
  if (state.isDemoMode) {
    return "Demo mode is on: no receiver is used, and every meter shows made-up readings.";
  }
  if (state.isOpen) return ListeningText(state);
  if (!state.deniedPath.empty() && state.accessCommand.empty()) {
    return "You may use " + state.deniedPath + " from the next log-in: log out and in again.";
  }
  if (!state.deniedPath.empty()) {
    return "You may not use " + state.deniedPath +
           " yet. Type this in a terminal, then log out and in again:";
  }
  if (state.isChosen && !state.portProblem.empty()) return state.portProblem + ".";
  if (state.devices.empty()) {
    return "No USB serial device is connected. Plug in the receiver: it appears here.";
  }
  return state.devices.size() == 1 ? "A serial device is connected. Is it the receiver?"
                                   : "Which of these is the receiver?";
}

// A clock that was set does not keep a meter on the screen.
bool IsSending(const HeardMeter& meter, DateTime now) {
  return std::abs(now.Milliseconds() - meter.lastHeard.Milliseconds()) <
         FirstStartView::HeardSeconds * kMilliseconds;
}

/// Those that send now, by address; the ones with the most frames where there are too many.
std::vector<HeardMeter> Sending(std::vector<HeardMeter> heard, DateTime now) {
  std::erase_if(heard, [now](const HeardMeter& meter) { return !IsSending(meter, now); });
  return heard;
}

void AddMeters(const FirstStartState& state, DateTime now, FirstStartView& view) {
  std::vector<HeardMeter> sending = Sending(state.heard, now);
  if (sending.empty()) {
    view.metersText =
        "No meter is heard yet. One that is plugged in sends every few seconds. If none comes, try "
        "another device, or check the baud rate in the options.";
    return;
  }
  if (sending.size() > FirstStartView::MostRows) {
    const std::size_t more = sending.size() - FirstStartView::MostRows;
    view.metersText = "And " + std::to_string(more) + " more.";
    std::ranges::stable_sort(sending, std::ranges::greater(), &HeardMeter::frames);
    sending.resize(FirstStartView::MostRows);
    std::ranges::sort(sending, {}, &HeardMeter::address);
  }
  for (const HeardMeter& meter : sending) {
    view.meters.push_back(
        {meter.address, "Meter " + std::to_string(meter.address) + " is sending: add it?"});
  }
}

void AddDevices(const FirstStartState& state, FirstStartView& view) {
  for (const SerialDevice& device : state.devices) {
    if (view.devices.size() == FirstStartView::MostRows) {
      view.receiverText += " The options list all devices.";
      return;
    }
    const std::string& title = device.product.empty() ? device.devicePath : device.product;
    const std::string& path = device.Path();
    view.devices.push_back({path, title, path == title ? "" : path, IsUsed(device, state)});
  }
}

}  // namespace

FirstStartView MakeFirstStartView(const FirstStartState& state, DateTime now) {
  FirstStartView view;
  view.receiverText = ReceiverText(state);
  if (state.isDemoMode) {
    view.offersAdding = true;
    view.demoText = "Its readings go through everything as real ones do.";
    if (state.canLeaveDemoMode) view.demoCaption = "Leave demo mode";
    return view;
  }
  if (!state.isOpen && !state.deniedPath.empty()) view.command = state.accessCommand;
  AddDevices(state, view);
  if (state.isOpen) AddMeters(state, now, view);
  view.demoText = "No receiver at hand? Demo mode shows made-up readings.";
  view.demoCaption = "Try demo mode…";
  return view;
}

}  // namespace wattlark
