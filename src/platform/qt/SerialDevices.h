#pragma once

#include <string>
#include <vector>

#include "config/PortDevices.h"

namespace wattlark {

/// The USB and ACM serial devices that are connected, sorted, without product names. Cheap, and
/// touches no device. `deviceFolder` is where the system keeps its device files.
std::vector<SerialDevice> ListSerialDevices(const std::string& deviceFolder = "/dev");
/// The same with the names by which the devices call themselves, for a user to choose from.
std::vector<SerialDevice> ListSerialDevicesWithProducts();

}  // namespace wattlark
