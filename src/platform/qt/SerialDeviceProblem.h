#pragma once

#include <QSerialPort>
#include <QString>
#include <string>

namespace wattlark {

// What keeps a serial device from being opened, in words that say what to do. `advice` is what they
// say of a device that is not there.

std::string MissingDeviceText(const std::string& path, const std::string& advice);
/// Why a path cannot be a serial device that the user may open; empty when it can. Touches no
/// device.
std::string SerialPathProblem(const std::string& path, const std::string& advice);
/// The command that gives the user access to a serial device after the next log-in; empty when it
/// is not access that is missing. Touches no device.
std::string SerialAccessCommand(const std::string& path);
/// The one name that all names of a device lead to.
QString CanonicalDevice(const std::string& path);
/// Opens the device for reading with the port's settings; empty when that worked, else why not.
std::string OpenSerialDevice(QSerialPort& port, const std::string& path, const std::string& advice);

}  // namespace wattlark
