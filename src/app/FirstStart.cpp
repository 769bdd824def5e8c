#include "app/FirstStart.h"

#include "config/OptionsActions.h"

namespace wattlark {

std::optional<FirstStartView> FirstStart::View() {
  if (!ports_.monitor.Profile().Meters().IsEmpty()) return std::nullopt;
  return MakeFirstStartView(State(), ports_.monitor.Now());
}

FirstStartState FirstStart::State() {
  const Monitor& monitor = ports_.monitor;
  FirstStartState state;
  state.portNumber = monitor.Profile().Settings().PortNum;
  state.isDemoMode = monitor.IsDemoMode();
  if (state.isDemoMode) {
    state.canLeaveDemoMode = !monitor.IsDemoModeGiven();
    return state;
  }
  FindDevices();
  state.devices = devices_;
  state.devicePath = ports_.devices.Path(state.portNumber);
  state.isOpen = monitor.IsFlowing();
  if (state.isOpen) {
    state.heard = monitor.Heard().All();
    return state;
  }
  state.isChosen = state.devicePath != ports_.devices.DefaultPath(state.portNumber);
  FindDenied(state);
  if (!state.deniedPath.empty()) return state;  // which says more than the port can
  state.portProblem = ports_.deviceProblem(state.devicePath);
  if (state.portProblem.empty()) state.portProblem = monitor.PortProblem();
  return state;
}

// Product names cost more than a look at a folder.
void FirstStart::FindDevices() {
  std::vector<std::string> names;
  for (const SerialDevice& device : ports_.listDevices()) {
    names.push_back(device.devicePath);
    names.push_back(device.byIdPath);
  }
  if (names == seen_) return;
  seen_ = std::move(names);
  devices_ = ports_.listDevicesWithProducts();
}

// Before anything is chosen, the first device stands for all: they belong to the same group.
void FirstStart::FindDenied(FirstStartState& state) const {
  std::string path = state.devicePath;
  if (!state.isChosen) path = state.devices.empty() ? "" : state.devices.front().Path();
  if (path.empty()) return;
  const SerialAccess access = ports_.access(path);
  if (!access.isDenied) return;
  state.deniedPath = path;
  state.accessCommand = access.command;
}

void FirstStart::UseDevice(const std::string& path) {
  const int port = ports_.monitor.Profile().Settings().PortNum;
  const std::string before = ports_.devices.Path(port);
  bool saved = ports_.registry.Begin();
  if (saved) {
    saved = ports_.devices.Choose(port, path);
    if (saved) {
      saved = ports_.registry.Commit();
    } else {
      ports_.registry.Rollback();
    }
  }
  if (!saved) {
    ports_.monitor.ReportError("The device could not be saved: " + ports_.registry.ErrorText());
    ports_.devices.UseForThisRun(port, path);
  }
  if (ports_.devices.Path(port) != before || !ports_.monitor.IsFlowing()) {
    ports_.monitor.RestartPort();
  }
}

bool FirstStart::StartDemoMode() {
  if (!SwitchDemoMode(true, ports_.monitor.Profile().Settings(), ports_.prompts)) return false;
  ports_.monitor.RestartPort();
  return true;
}

void FirstStart::LeaveDemoMode() {
  if (!SwitchDemoMode(false, ports_.monitor.Profile().Settings(), ports_.prompts)) return;
  ports_.monitor.RestartPort();
}

}  // namespace wattlark
