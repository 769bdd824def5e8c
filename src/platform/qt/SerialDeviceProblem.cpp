#include "platform/qt/SerialDeviceProblem.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

namespace wattlark {

namespace {

bool IsDenied(const std::string& path) {
  return faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0 && errno == EACCES;
}

// The group whose members may read the device; where none may, the one that serial devices have.
std::string GroupName(const struct stat& device) {
  constexpr const char* kUsual = "dialout";
  if ((device.st_mode & S_IRGRP) == 0 || device.st_gid == 0) return kUsual;
  const group* found = getgrgid(device.st_gid);
  return found != nullptr ? found->gr_name : kUsual;
}

// In the user's groups as the system knows them, whatever this process was started with.
bool IsUserInGroup(gid_t wanted) {
  const passwd* user = getpwuid(geteuid());
  if (user == nullptr) return false;
  int count = 0;
  getgrouplist(user->pw_name, user->pw_gid, nullptr, &count);
  std::vector<gid_t> groups(static_cast<std::size_t>(count));
  if (getgrouplist(user->pw_name, user->pw_gid, groups.data(), &count) < 0) return false;
  return std::ranges::find(groups, wanted) != groups.end();
}

std::string AddToGroupCommand(const std::string& group) {
  return "sudo usermod -aG " + group + " $USER";
}

bool AwaitsLogin(const struct stat& device) {
  return (device.st_mode & S_IRGRP) != 0 && IsUserInGroup(device.st_gid);
}

std::string DeniedText(const std::string& path, const struct stat& device) {
  const std::string group = GroupName(device);
  if (AwaitsLogin(device)) {
    return "Permission denied: " + path + ". Your user is in the group " + group +
           ", which counts from the next log-in: log out and in again";
  }
  return "Permission denied: " + path + ". Add your user to the group " + group + ": " +
         AddToGroupCommand(group) + ", then log in again";
}

// What a service's DeviceAllow leaves out: the permissions of the file do not tell.
bool IsForbidden(const std::string& path) {
  const int device = open(path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (device >= 0) close(device);
  return device < 0 && errno == EPERM;
}

std::string OpenProblem(const std::string& path, const std::string& advice,
                        const QSerialPort& port) {
  switch (port.error()) {
    case QSerialPort::DeviceNotFoundError:
      return MissingDeviceText(path, advice);
    case QSerialPort::PermissionError:  // the file's permissions allow it
      if (IsForbidden(path)) {
        return "Not allowed: the system keeps this program from " + path + ". " + advice;
      }
      return "In use: another program has " + path + " open (" + port.errorString().toStdString() +
             "). End that program";
    case QSerialPort::UnsupportedOperationError:
      return "Not a serial device, or it cannot be set to these serial settings: " + path;
    default:
      return "Cannot open " + path + ": " + port.errorString().toStdString();
  }
}

}  // namespace

std::string MissingDeviceText(const std::string& path, const std::string& advice) {
  return "No such device: " + (path.empty() ? "no serial device is connected" : path) + ". " +
         advice;
}

std::string SerialPathProblem(const std::string& path, const std::string& advice) {
  if (path.empty()) return MissingDeviceText(path, advice);
  struct stat file {};
  if (stat(path.c_str(), &file) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) return MissingDeviceText(path, advice);
    return "Cannot look at " + path + ": " + std::generic_category().message(errno);
  }
  if (!S_ISCHR(file.st_mode)) return "Not a serial device: " + path;
  return IsDenied(path) ? DeniedText(path, file) : std::string();
}

SerialAccess AccessToSerialDevice(const std::string& path) {
  struct stat file {};
  const bool isDevice = stat(path.c_str(), &file) == 0 && S_ISCHR(file.st_mode);
  if (!isDevice || !IsDenied(path)) return {};
  return {true, AwaitsLogin(file) ? std::string() : AddToGroupCommand(GroupName(file))};
}

QString CanonicalDevice(const std::string& path) {
  const QString canonical = QFileInfo(QString::fromStdString(path)).canonicalFilePath();
  return canonical.isEmpty() ? QString::fromStdString(path) : canonical;
}

std::string OpenSerialDevice(QSerialPort& port, const std::string& path,
                             const std::string& advice) {
  std::string problem = SerialPathProblem(path, advice);
  if (!problem.empty()) return problem;
  // The lock that programs share is named after the device: all its names must give the same one.
  port.setPortName(CanonicalDevice(path));
  if (!port.open(QIODevice::ReadOnly)) problem = OpenProblem(path, advice, port);
  return problem;
}

}  // namespace wattlark
