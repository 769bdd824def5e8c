#include "platform/qt/SerialDevices.h"

#include <QDir>
#include <QSerialPortInfo>
#include <set>

namespace wattlark {

namespace {

QString TargetOf(const QFileInfo& file) {
  const QString target = file.canonicalFilePath();
  return target.isEmpty() ? file.absoluteFilePath() : target;
}

}  // namespace

std::vector<SerialDevice> ListSerialDevices(const std::string& deviceFolder) {
  const QString folder = QString::fromStdString(deviceFolder);
  const QDir::Filters files = QDir::Files | QDir::System;
  std::vector<SerialDevice> devices;
  std::set<QString> listed;
  const auto add = [&](const QFileInfo& file, bool isById) {
    const QString target = TargetOf(file);
    if (!file.exists() || !listed.insert(target).second) return;
    const std::string byIdPath = isById ? file.absoluteFilePath().toStdString() : std::string();
    devices.push_back({byIdPath, target.toStdString()});
  };
  for (const QFileInfo& file :
       QDir(folder + QStringLiteral("/serial/by-id")).entryInfoList(files, QDir::Name)) {
    add(file, true);
  }
  const QStringList patterns{QStringLiteral("ttyUSB*"), QStringLiteral("ttyACM*")};
  for (const QFileInfo& file : QDir(folder).entryInfoList(patterns, files)) add(file, false);
  SortSerialDevices(devices);
  return devices;
}

std::vector<SerialDevice> ListSerialDevicesWithProducts() {
  std::vector<SerialDevice> devices = ListSerialDevices();
  const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
  for (SerialDevice& device : devices) {
    for (const QSerialPortInfo& port : ports) {
      if (port.systemLocation().toStdString() == device.devicePath) {
        device.product = port.description().toStdString();
      }
    }
  }
  return devices;
}

}  // namespace wattlark
