#include "platform/qt/QtSerialPort.h"

#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <stdexcept>

#include "platform/qt/SerialDeviceProblem.h"
#include "support/modText.h"

namespace wattlark {

namespace {

constexpr int kFileCheckMilliseconds = 2000;

struct PortSettings {
  std::int32_t baudRate = 9600;
  QSerialPort::Parity parity = QSerialPort::NoParity;
  QSerialPort::DataBits dataBits = QSerialPort::Data8;
  QSerialPort::StopBits stopBits = QSerialPort::OneStop;
};

std::optional<QSerialPort::Parity> ParityOf(std::string_view letter) {
  if (letter == "n") return QSerialPort::NoParity;
  if (letter == "e") return QSerialPort::EvenParity;
  if (letter == "o") return QSerialPort::OddParity;
  if (letter == "m") return QSerialPort::MarkParity;
  if (letter == "s") return QSerialPort::SpaceParity;
  return std::nullopt;
}

// Why the settings text cannot be used, or an empty text with `settings` filled.
std::string ParseSettings(const std::string& text, PortSettings& settings) {
  const std::vector<std::string_view> parts = Split(text, ',');
  if (parts.size() != 4) {
    return "The serial settings \"" + text +
           "\" are not baud rate, parity, data bits and stop bits, as in 9600,N,8,1.";
  }
  const auto wrong = [](const char* what, std::string_view value, const char* choices) {
    return "The " + std::string(what) + " \"" + std::string(value) + "\" is not possible: choose " +
           choices + ".";
  };
  const auto baudRate = TextToInteger(Trim(parts[0]), 1, 20'000'000);
  if (!baudRate) return wrong("baud rate", parts[0], "a whole number such as 9600");
  const auto parity = ParityOf(FoldCase(Trim(parts[1])));
  if (!parity) return wrong("parity", parts[1], "E, M, N, O or S");
  const auto dataBits = TextToInteger(Trim(parts[2]), 5, 8);
  if (!dataBits) return wrong("number of data bits", parts[2], "5, 6, 7 or 8");
  const std::string_view stopBits = Trim(parts[3]);
  if (stopBits != "1" && stopBits != "1.5" && stopBits != "2") {
    return wrong("number of stop bits", parts[3], "1, 1.5 or 2");
  }
  settings.baudRate = static_cast<std::int32_t>(*baudRate);
  settings.parity = *parity;
  settings.dataBits = static_cast<QSerialPort::DataBits>(*dataBits);
  // Set to two, hardware sends one and a half with five data bits; a receiver checks only the
  // first.
  settings.stopBits = stopBits == "1" ? QSerialPort::OneStop : QSerialPort::TwoStop;
  return {};
}

}  // namespace

struct QtSerialPort::DeviceFile {
  dev_t folderDevice = 0;
  ino_t node = 0;
  dev_t device = 0;
  bool operator==(const DeviceFile&) const = default;
};

QtSerialPort::QtSerialPort(std::function<std::string(int)> devicePath,
                           std::function<std::string(int)> choosing)
    : devicePath_(std::move(devicePath)),
      choosing_(std::move(choosing)),
      openedFile_(std::make_unique<DeviceFile>()) {
  fileCheck_.setInterval(kFileCheckMilliseconds);
  QObject::connect(&fileCheck_, &QTimer::timeout, [this] { CheckDeviceFile(); });
  lossEvent_.setSingleShot(true);
  QObject::connect(&lossEvent_, &QTimer::timeout, [this] { FinishLoss(); });
}

QtSerialPort::~QtSerialPort() {
  Close();
}

bool QtSerialPort::Open(int portNumber, const std::string& settings) {
  Close();
  PortSettings parsed;
  errorText_ = ParseSettings(settings, parsed);
  if (!errorText_.empty()) return false;
  portNumber_ = portNumber;
  path_ = devicePath_(portNumber);
  auto port = std::make_unique<QSerialPort>();
  port->setBaudRate(parsed.baudRate);
  port->setParity(parsed.parity);
  port->setDataBits(parsed.dataBits);
  port->setStopBits(parsed.stopBits);
  if (!OpenDevice(*port)) return false;
  port_ = port.release();
  port_->setParent(&owner_);
  QObject::connect(port_, &QSerialPort::readyRead, [this] {
    if (IsOpen() && onReceive) onReceive();
  });
  QObject::connect(port_, &QSerialPort::errorOccurred,
                   [this](QSerialPort::SerialPortError error) { OnDeviceError(error); });
  fileCheck_.start();
  return true;
}

bool QtSerialPort::OpenDevice(QSerialPort& port) {
  errorText_ = OpenSerialDevice(port, path_, Advice());
  if (!errorText_.empty()) return false;
  struct stat file {};
  if (fstat(port.handle(), &file) != 0) {
    errorText_ = MissingDeviceText(path_, Advice());
    return false;
  }
  *openedFile_ = {file.st_dev, file.st_ino, file.st_rdev};
  return true;
}

std::string QtSerialPort::DeviceProblem(const std::string& path) const {
  if (IsOpen() && CanonicalDevice(path) == CanonicalDevice(path_)) return {};
  QSerialPort probe;
  return OpenSerialDevice(probe, path, "Plug in the receiver, or choose another device");
}

void QtSerialPort::Close() {
  fileCheck_.stop();
  lossEvent_.stop();
  if (port_ == nullptr) return;
  port_->disconnect();
  port_->close();
  port_->deleteLater();  // one of its own signals may have led here
  port_ = nullptr;
}

bool QtSerialPort::IsOpen() const {
  return port_ != nullptr && port_->isOpen() && !lossEvent_.isActive();
}

std::vector<std::uint8_t> QtSerialPort::ReadAll() {
  if (port_ == nullptr || !port_->isOpen()) return {};
  const QByteArray bytes = port_->readAll();
  if (bytes.isEmpty() && port_->error() != QSerialPort::NoError &&
      port_->error() != QSerialPort::TimeoutError) {
    throw std::runtime_error(port_->errorString().toStdString());
  }
  return {bytes.begin(), bytes.end()};
}

std::string QtSerialPort::Advice() const {
  return "Plug in the receiver, or choose its device: " + choosing_(portNumber_);
}

void QtSerialPort::OnDeviceError(QSerialPort::SerialPortError error) {
  if (error == QSerialPort::NoError || error == QSerialPort::TimeoutError || !IsOpen()) return;
  const std::string problem = SerialPathProblem(path_, Advice());
  Lose(problem.empty()
           ? "The device " + path_ + " was disconnected: " + port_->errorString().toStdString()
           : problem);
}

void QtSerialPort::CheckDeviceFile() {
  struct stat file {};
  if (stat(path_.c_str(), &file) != 0) {
    if (errno == ENOENT || errno == ENOTDIR || errno == ELOOP)
      Lose(MissingDeviceText(path_, Advice()));
  } else if (DeviceFile{file.st_dev, file.st_ino, file.st_rdev} != *openedFile_) {
    Lose("The device " + path_ + " was replaced by another one");
  }
}

void QtSerialPort::Lose(const std::string& reason) {
  errorText_ = reason;
  fileCheck_.stop();
  lossEvent_.start(0);
}

void QtSerialPort::FinishLoss() {
  Close();
  if (onLost) onLost();
}

}  // namespace wattlark
