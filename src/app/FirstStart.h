#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/FirstStartView.h"
#include "app/Monitor.h"

namespace wattlark {

/// Leads from a profile without meters to the first reading: looks for receivers, listens for
/// meters, and does what the user then chooses. It has nothing to say once there are meters.
class FirstStart {
 public:
  /// All must outlive this object.
  struct Ports {
    Monitor& monitor;
    PortDevices& devices;
    Registry& registry;
    Prompts& prompts;
    /// The devices that are there: asked every second, so it must be cheap.
    std::function<std::vector<SerialDevice>()> listDevices;
    /// The same with product names: asked when devices came or went.
    std::function<std::vector<SerialDevice>()> listDevicesWithProducts;
    /// Why a device cannot be opened, as far as that can be told without touching it.
    std::function<std::string(const std::string& path)> deviceProblem;
    std::function<SerialAccess(const std::string& path)> access;
  };

  explicit FirstStart(Ports ports) : ports_(std::move(ports)) {}

  /// Nothing once there are meters.
  std::optional<FirstStartView> View();
  /// Makes a device that of the port number, for good, and opens the port anew where that is
  /// needed.
  void UseDevice(const std::string& path);
  /// Asks, then starts demo mode; false when the user would rather not.
  bool StartDemoMode();
  void LeaveDemoMode();

 private:
  FirstStartState State();
  void FindDevices();
  void FindDenied(FirstStartState& state) const;

  Ports ports_;
  std::vector<std::string> seen_;
  std::vector<SerialDevice> devices_;
};

}  // namespace wattlark
