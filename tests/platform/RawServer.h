#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <string>

namespace wattlark {

/// A server on loopback that does to a connection what the test says, byte by byte.
class RawServer {
 public:
  /// `answer` is called with each connection once the header lines of its request are complete.
  explicit RawServer(std::function<void(QTcpSocket&)> answer) : answer_(std::move(answer)) {
    server_.listen(QHostAddress::LocalHost);
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
      QTcpSocket* socket = server_.nextPendingConnection();
      ++connections;
      QObject::connect(socket, &QTcpSocket::readyRead, &server_,
                       [this, socket, request = std::string()]() mutable {
                         const bool wasComplete = IsComplete(request);
                         request += socket->readAll().toStdString();
                         if (!wasComplete && IsComplete(request)) answer_(*socket);
                       });
      QObject::connect(socket, &QTcpSocket::disconnected, &server_, [this] { ++disconnections; });
    });
  }

  std::string URL(const std::string& path = "/") const {
    return "http://127.0.0.1:" + std::to_string(server_.serverPort()) + path;
  }

  int connections = 0;
  int disconnections = 0;

 private:
  static bool IsComplete(const std::string& request) {
    return request.find("\r\n\r\n") != std::string::npos;
  }

  std::function<void(QTcpSocket&)> answer_;
  QTcpServer server_;
};

}  // namespace wattlark
