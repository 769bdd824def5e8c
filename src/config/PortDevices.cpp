#include "config/PortDevices.h"

#include <algorithm>

#include "config/modRegistry.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr const char* kSection = "PortDevices";
constexpr int kFirstUsbPort = 5;

std::string ValueName(int portNumber) {
  return "COM" + std::to_string(portNumber);
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::string_view TakeDigits(std::string_view& text) {
  const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
  std::string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(digits.size());
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return digits;
}

// Numbers within the names count as numbers.
bool IsBefore(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (IsDigit(a.front()) && IsDigit(b.front())) {
      const std::string_view digitsA = TakeDigits(a);
      const std::string_view digitsB = TakeDigits(b);
      if (digitsA.size() != digitsB.size()) return digitsA.size() < digitsB.size();
      if (digitsA != digitsB) return digitsA < digitsB;
    } else {
      if (a.front() != b.front()) return a.front() < b.front();
      a.remove_prefix(1);
      b.remove_prefix(1);
    }
  }
  return a.size() < b.size();
}

}  // namespace

std::string DeviceText(const SerialDevice& device) {
  return device.product.empty() ? device.Path() : device.product + " – " + device.Path();
}

std::string DevicePathProblem(std::string_view path) {
  path = Trim(path);
  if (path.empty() || path.front() == '/') return {};
  return "A device is a full path such as /dev/ttyUSB0.";
}

void SortSerialDevices(std::vector<SerialDevice>& devices) {
  std::stable_sort(devices.begin(), devices.end(),
                   [](const SerialDevice& a, const SerialDevice& b) {
                     if (a.byIdPath.empty() != b.byIdPath.empty()) return b.byIdPath.empty();
                     if (!a.byIdPath.empty()) return a.byIdPath < b.byIdPath;
                     return IsBefore(a.devicePath, b.devicePath);
                   });
}

void PortDevices::UseForThisRun(int portNumber, std::string path) {
  chosenPort_ = portNumber;
  chosenPath_ = std::move(path);
}

bool PortDevices::Choose(int portNumber, const std::string& path) {
  const std::string chosen(Trim(path));
  if (!DevicePathProblem(chosen).empty()) return false;
  const std::string name = ValueName(portNumber);
  const bool isStored = !store_.GetAppSetting("", kSection, name, "").empty();
  const bool changed = chosen.empty() ? !isStored || store_.DeleteAppSetting("", kSection, name)
                                      : store_.SaveAppSetting("", kSection, name, chosen);
  if (changed && portNumber == chosenPort_) chosenPath_.clear();
  return changed;
}

std::string PortDevices::Path(int portNumber) const {
  if (portNumber < 1) return {};
  if (portNumber == chosenPort_ && !chosenPath_.empty()) return chosenPath_;
  const std::string stored = store_.GetAppSetting("", kSection, ValueName(portNumber), "");
  const std::string_view path = Trim(stored);
  return path.empty() ? DefaultPath(portNumber) : std::string(path);
}

std::string PortDevices::DefaultPath(int portNumber) const {
  if (portNumber < 1) return {};
  if (portNumber < kFirstUsbPort) return "/dev/ttyS" + std::to_string(portNumber - 1);
  std::vector<SerialDevice> connected = listConnected_();
  SortSerialDevices(connected);
  const auto index = static_cast<std::size_t>(portNumber - kFirstUsbPort);
  return index < connected.size() ? connected[index].Path() : std::string();
}

}  // namespace wattlark
