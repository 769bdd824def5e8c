#pragma once

#include <QSerialPort>
#include <QString>
#include <string>

#include "config/PortDevices.h"

namespace wattlark {

// What keeps a serial device from being opened, in words that say what to do. `advice` is what they
// say of a device that is not there.

std::string MissingDeviceText(const std::string& path, const std::string& advice);
/// Why a path cannot be a serial device that the user may open; empty when it can. Touches no
/// device.
std::string SerialPathProblem(const std::string& path, const std::string& advice);
/// Whether it is access that is missing, and how to get it: the group that the device belongs to is
/// looked up, and whether the user is in it but has not logged in since. Touches no device.
SerialAccess AccessToSerialDevice(const std::string& path);
/// The one name that all names of a device lead to.
QString CanonicalDevice(const std::string& path);
/// Opens the device for reading with the port's settings; empty when that worked, else why not.
std::string OpenSerialDevice(QSerialPort& port, const std::string& path, const std::string& advice);

}  // namespace wattlark
