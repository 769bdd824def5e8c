#pragma once

#include <httplib.h>

#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace wattlark {

/// A real HTTP server on loopback, in a thread of its own. Handlers are set before `Start`.
class HttpServer {
 public:
  explicit HttpServer(std::unique_ptr<httplib::Server> server = std::make_unique<httplib::Server>())
      : server_(std::move(server)) {}
  ~HttpServer() {
    server_->stop();
    if (thread_.joinable()) thread_.join();
  }
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  httplib::Server& Handlers() { return *server_; }
  void Start() {
    port_ = server_->bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_->listen_after_bind(); });
    while (!server_->is_running()) std::this_thread::yield();
  }
  /// "127.0.0.1:PORT" and the path.
  std::string Place(const std::string& path) const {
    return "127.0.0.1:" + std::to_string(port_) + path;
  }

 private:
  std::unique_ptr<httplib::Server> server_;
  int port_ = 0;
  std::thread thread_;
};

}  // namespace wattlark
