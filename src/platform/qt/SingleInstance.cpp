#include "platform/qt/SingleInstance.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTimer>

namespace wattlark {

namespace {

constexpr int kAnswerMilliseconds = 1000;
constexpr qint64 kLongestMessage = 1024;
constexpr qsizetype kMostConnections = 8;
constexpr const char* kShowMessage = "show\n";
constexpr const char* kAnswer = "ok\n";

// A folder that nobody but the user can enter.
bool IsPrivate(const QString& folder) {
  struct stat file {};
  return lstat(QFile::encodeName(folder).constData(), &file) == 0 && S_ISDIR(file.st_mode) &&
         file.st_uid == geteuid() && (file.st_mode & 0077) == 0;
}

std::vector<QString> PrivateFolders(const QString& profileFolder) {
  std::vector<QString> folders;
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  if (QDir::isAbsolutePath(runtime) && IsPrivate(runtime)) folders.push_back(runtime);
  if (IsPrivate(profileFolder)) folders.push_back(profileFolder);
  const QString temporary =
      QDir::tempPath() + QStringLiteral("/wattlark-") + QString::number(geteuid());
  mkdir(QFile::encodeName(temporary).constData(), 0700);
  if (IsPrivate(temporary)) folders.push_back(temporary);
  return folders;
}

}  // namespace

SingleInstance::SingleInstance(const std::string& profileFolder) {
  const QFileInfo folder(QString::fromStdString(profileFolder));
  const QString path = folder.exists() ? folder.canonicalFilePath() : folder.absoluteFilePath();
  const QString name =
      QStringLiteral("/wattlark-") +
      QString::fromLatin1(
          QCryptographicHash::hash(path.toUtf8(), QCryptographicHash::Sha256).toHex().left(16));
  for (const QString& place : PrivateFolders(path)) {
    places_.push_back((place + name).toStdString());
  }
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::Listen() {
  for (const std::string& place : places_) {
    const QString path = QString::fromStdString(place);
    QLocalServer::removeServer(path);  // left behind by an instance that was killed
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(server_.get(), &QLocalServer::newConnection, [this] { AcceptConnection(); });
    if (server_->listen(path)) return true;
  }
  server_.reset();
  return false;
}

void SingleInstance::AcceptConnection() {
  QLocalSocket* socket = server_->nextPendingConnection();
  if (socket == nullptr) return;
  QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
  if (server_->findChildren<QLocalSocket*>().size() > kMostConnections) {
    socket->abort();
    return;
  }
  socket->setReadBufferSize(kLongestMessage + 1);
  QTimer::singleShot(kAnswerMilliseconds, socket, [socket] { socket->abort(); });
  const auto read = [this, socket] {
    if (!socket->canReadLine()) {
      if (socket->bytesAvailable() > kLongestMessage) socket->abort();
      return;
    }
    const bool isShow = socket->readLine() == kShowMessage && socket->bytesAvailable() == 0;
    if (!isShow) {
      socket->abort();
      return;
    }
    socket->write(kAnswer);
    socket->disconnectFromServer();
    if (onShow) onShow();
  };
  QObject::connect(socket, &QLocalSocket::readyRead, socket, read);
  if (socket->bytesAvailable() > 0) read();
}

bool SingleInstance::ActivatePrevInstance() const {
  for (const std::string& place : places_) {
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(place));
    if (!socket.waitForConnected(kAnswerMilliseconds)) continue;
    socket.write(kShowMessage);
    if (!socket.waitForBytesWritten(kAnswerMilliseconds)) continue;
    while (!socket.canReadLine() && socket.waitForReadyRead(kAnswerMilliseconds)) {
    }
    if (socket.readLine() == kAnswer) return true;
  }
  return false;
}

}  // namespace wattlark
