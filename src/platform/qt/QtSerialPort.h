#pragma once

#include <QSerialPort>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>

#include "platform/SerialPort.h"

namespace wattlark {

/// The serial port on real devices and pseudo-terminals. Needs a running event loop for its events.
///
/// An open port whose device hangs up, fails, or is removed or replaced in the file system closes
/// itself and raises `onLost` once, from the event loop. Whether the device's file is still the one
/// that was opened is checked every 2 seconds.
class QtSerialPort : public SerialPort {
 public:
  /// `devicePath` answers which device a port number means, empty for none; it is asked at every
  /// `Open`. `choosing` answers the command that chooses that device, for messages.
  QtSerialPort(std::function<std::string(int portNumber)> devicePath,
               std::function<std::string(int portNumber)> choosing);
  ~QtSerialPort() override;
  QtSerialPort(const QtSerialPort&) = delete;
  QtSerialPort& operator=(const QtSerialPort&) = delete;

  bool Open(int portNumber, const std::string& settings) override;
  void Close() override;
  bool IsOpen() const override;
  std::vector<std::uint8_t> ReadAll() override;
  std::string ErrorText() const override { return errorText_; }

  /// Why that device cannot be opened, in words; empty when it can, or is the one that is open. To
  /// know, the device is opened for a moment.
  std::string DeviceProblem(const std::string& path) const;

 private:
  struct DeviceFile;

  /// Opens the device at `path_`; false with the reason in `errorText_`.
  bool OpenDevice(QSerialPort& port);
  void OnDeviceError(QSerialPort::SerialPortError error);
  void CheckDeviceFile();
  /// Ends the use of the device as soon as the event loop has come round: a port must not be
  /// destroyed from within its own signals.
  void Lose(const std::string& reason);
  void FinishLoss();

  std::string Advice() const;

  std::function<std::string(int)> devicePath_;
  std::function<std::string(int)> choosing_;
  int portNumber_ = 0;
  std::string path_;
  std::string errorText_;
  std::unique_ptr<DeviceFile> openedFile_;
  QObject owner_;  // of closed ports as well, until the event loop destroys them
  QSerialPort* port_ = nullptr;
  QTimer fileCheck_;
  QTimer lossEvent_;
};

}  // namespace wattlark
