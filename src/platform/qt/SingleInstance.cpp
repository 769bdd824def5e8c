#include "platform/qt/SingleInstance.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QTimer>
#include <utility>

namespace wattlark {

namespace {

constexpr int kAnswerMilliseconds = 1000;
// A command must not be given up that is taken after all, once what keeps the program busy is done.
constexpr int kBusyMilliseconds = 10000;
constexpr qint64 kLongestMessage = 1024;
constexpr qsizetype kMostConnections = 8;
constexpr const char* kShowMessage = "show\n";
constexpr const char* kAnswer = "ok\n";
constexpr const char* kDone = "done\n";
constexpr const char* kFailed = "failed\n";
// A destination may send four requests of a minute each, and wait for another run to end.
constexpr int kLongestRunMilliseconds = 10 * 60 * 1000;
constexpr qsizetype kLongestAnswer = qsizetype{1024} * 1024;

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

// Whether the instance that listens there has understood the message; its answer may follow.
bool Send(QLocalSocket& socket, const std::string& place, const QByteArray& message, int patience) {
  socket.connectToServer(QString::fromStdString(place));
  if (!socket.waitForConnected(patience)) return false;
  socket.write(message);
  if (!socket.waitForBytesWritten(patience)) return false;
  while (!socket.canReadLine() && socket.waitForReadyRead(patience)) {
  }
  return socket.readLine() == kAnswer;
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
  auto* limit = new QTimer(socket);
  limit->setSingleShot(true);
  limit->setInterval(kAnswerMilliseconds);
  QObject::connect(limit, &QTimer::timeout, socket, [socket] { socket->abort(); });
  limit->start();
  QObject::connect(socket, &QLocalSocket::readyRead, limit,
                   [this, socket, limit] { ReadMessage(*socket, *limit); });
  if (socket->bytesAvailable() > 0) ReadMessage(*socket, *limit);
}

void SingleInstance::ReadMessage(QLocalSocket& socket, QTimer& limit) {
  if (!socket.canReadLine()) {
    if (socket.bytesAvailable() > kLongestMessage) socket.abort();
    return;
  }
  // Nothing that follows is listened to.
  QObject::disconnect(&socket, &QLocalSocket::readyRead, &limit, nullptr);
  const QByteArray line = socket.readLine();
  const bool isOneLine = socket.bytesAvailable() == 0;
  if (isOneLine && line == kShowMessage) {
    socket.write(kAnswer);
    socket.disconnectFromServer();
    if (onShow) onShow();
    return;
  }
  std::function<CommandAnswer()> run;
  if (isOneLine && onCommand) run = onCommand(line.chopped(1).toStdString());
  if (run) {
    RunCommand(socket, limit, std::move(run));
  } else {
    socket.abort();
  }
}

// Events run meanwhile, in which the socket may go: none of its signals must be under way.
void SingleInstance::RunCommand(QLocalSocket& socket, QTimer& limit,
                                std::function<CommandAnswer()> run) {
  limit.stop();
  socket.write(kAnswer);
  socket.flush();
  const QPointer<QLocalSocket> peer(&socket);
  QTimer::singleShot(0, server_.get(), [peer, run = std::move(run), &limit] {
    const CommandAnswer answer = run();
    if (!peer || peer->state() != QLocalSocket::ConnectedState) return;
    peer->write(answer.success ? kDone : kFailed);
    peer->write(QByteArray::fromStdString(answer.text));
    peer->flush();
    limit.start();  // it goes with its socket
    peer->disconnectFromServer();
  });
}

bool SingleInstance::ActivatePrevInstance() const {
  for (const std::string& place : places_) {
    QLocalSocket socket;
    if (Send(socket, place, kShowMessage, kAnswerMilliseconds)) return true;
  }
  return false;
}

std::optional<CommandAnswer> SingleInstance::Ask(const std::string& command) const {
  for (const std::string& place : places_) {
    QLocalSocket socket;
    const QByteArray message = QByteArray::fromStdString(command + "\n");
    if (!Send(socket, place, message, kBusyMilliseconds)) continue;
    QByteArray answer = socket.readAll();
    while (answer.size() <= kLongestAnswer && socket.waitForReadyRead(kLongestRunMilliseconds)) {
      answer += socket.readAll();
    }
    answer.truncate(kLongestAnswer);
    for (const QByteArray result : {kDone, kFailed}) {
      if (!answer.startsWith(result)) continue;
      return CommandAnswer{result == kDone, answer.mid(result.size()).toStdString()};
    }
    return CommandAnswer{false, socket.state() == QLocalSocket::ConnectedState
                                    ? "The running program does not answer any more"
                                    : "The running program has ended without an answer"};
  }
  return std::nullopt;
}

}  // namespace wattlark
