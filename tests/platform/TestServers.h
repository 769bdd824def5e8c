#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <atomic>
#include <functional>

#include "services/HttpServer.h"

namespace wattlark {

/// A server on loopback that does to a connection what the test says, byte by byte.
class RawServer {
 public:
  /// `answer` is called with each connection once its request comes.
  explicit RawServer(const std::function<void(QTcpSocket&)>& answer) {
    server_.listen(QHostAddress::LocalHost);
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this, answer] {
      QTcpSocket* socket = server_.nextPendingConnection();
      ++connections;
      const auto call = [answer, socket] { answer(*socket); };
      QObject::connect(socket, &QTcpSocket::readyRead, &server_, call, Qt::SingleShotConnection);
      QObject::connect(socket, &QTcpSocket::disconnected, &server_, [this] { ++disconnections; });
    });
  }

  std::string URL() const { return "http://127.0.0.1:" + std::to_string(server_.serverPort()); }

  int connections = 0;
  int disconnections = 0;

 private:
  QTcpServer server_;
};

/// Answers every request in the same way.
struct AnyServer : HttpServer {
  explicit AnyServer(const httplib::Server::Handler& handler,
                     std::unique_ptr<httplib::Server> server = std::make_unique<httplib::Server>())
      : HttpServer(std::move(server)) {
    Handlers().Get(".*", handler).Post(".*", handler).Put(".*", handler);
    Start();
  }
  std::string URL(const std::string& path) const { return "http://" + Place(path); }
};

}  // namespace wattlark
