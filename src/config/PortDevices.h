#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace wattlark {

class modRegistry;

/// A USB or ACM serial device that is connected now.
struct SerialDevice {
  /// "/dev/serial/by-id/...", a name that stays with the device wherever it is plugged in; empty
  /// when the system gives it none.
  std::string byIdPath;
  std::string devicePath;    ///< "/dev/ttyUSB0"
  std::string product = {};  ///< what the device calls itself; may be empty

  const std::string& Path() const { return byIdPath.empty() ? devicePath : byIdPath; }
};

/// Whether the user may open a serial device.
struct SerialAccess {
  bool isDenied = false;
  /// What the user types to get access at the next log-in; empty when that was done already.
  std::string command = {};
};

/// A device for a user to choose: its product name, if it has one, and its path.
std::string DeviceText(const SerialDevice& device);

/// Why a text does not name a device, for the user who typed it; empty when it does, or is empty or
/// blank.
std::string DevicePathProblem(std::string_view path);

/// Sorts by the names by-id; devices without one follow, by their device path ("ttyUSB2" before
/// "ttyUSB10").
void SortSerialDevices(std::vector<SerialDevice>& devices);

/// Which device a COM number means. In this order: the device chosen for this run; the path that
/// section "PortDevices" of the store gives for "COMn"; COM1 to COM4 are /dev/ttyS0 to /dev/ttyS3,
/// and COM5 upward the connected USB and ACM devices in their sorted order.
class PortDevices {
 public:
  /// `listConnected` is asked only when its answer is needed. `store` must outlive this object.
  PortDevices(modRegistry& store, std::function<std::vector<SerialDevice>()> listConnected)
      : store_(store), listConnected_(std::move(listConnected)) {}

  void UseForThisRun(int portNumber, std::string path);
  /// Stores the device of a number, and uses it at once; an empty path, or blanks, forgets what is
  /// stored. False, with nothing changed, when the path is not absolute or cannot be stored.
  bool Choose(int portNumber, const std::string& path);
  /// Empty when no device is connected as that number, or the number is below 1.
  std::string Path(int portNumber) const;
  /// What the number means when nobody has chosen; empty as for `Path`.
  std::string DefaultPath(int portNumber) const;

 private:
  modRegistry& store_;
  std::function<std::vector<SerialDevice>()> listConnected_;
  int chosenPort_ = 0;
  std::string chosenPath_;
};

}  // namespace wattlark
