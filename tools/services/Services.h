#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "services/Certificate.h"
#include "services/HttpServer.h"

namespace wattlark {

/// What the services do with a request.
enum class Behaviour {
  Right,         ///< what they should
  Slow,          ///< the same, a moment later
  Stalled,       ///< nothing, as long as they behave so
  Cut,           ///< the answer ends in its middle
  Endless,       ///< the answer never ends
  Megabyte,      ///< an answer of 1 MiB that is none
  WrongContent,  ///< a page for people
  Echo,          ///< what was sent, secrets and all
  Unauthorized,  ///< status 401
  NotFound,      ///< status 404
  Failure,       ///< status 500
};
struct BehaviourName {
  const char* name;
  Behaviour behaviour;
};
/// "right", "slow" and so on: "wrong-content" for `WrongContent`.
const std::vector<BehaviourName>& BehaviourNames();

struct ServiceRequest {
  std::string target;  ///< path and query
  std::string body;
  std::string authorization;  ///< value of that header line
  std::string problem;        ///< why a service would refuse it, or empty
};

/// The web services that the program publishes to, in one server on loopback: sign-in,
/// spreadsheets, feeds, measurements and status updates. They check what they are sent, remember
/// it, and misbehave when they are told to.
class Services {
 public:
  static constexpr const char* UserName = "someone@example.com";
  static constexpr const char* Password = "p@ss/w0rd";
  static constexpr const char* FeedKey = "feed-key-0123456789";
  static constexpr const char* DeviceToken = "device-token-0123456789";
  static constexpr const char* SessionToken = "session-token-0123456789";
  static constexpr const char* DevicePath = "/user/123/456/device.serial";

  static constexpr const char* SignInPath = "/accounts/ClientLogin";
  static constexpr const char* SpreadsheetsPath = "/feeds/spreadsheets/private/full";
  static constexpr const char* WorksheetsPath = "/feeds/worksheets/key/private/full";
  static constexpr const char* RowsPath = "/feeds/list/key/od6/private/full";
  static constexpr const char* FeedPath = "/api/feeds/1234.xml";
  static constexpr const char* UpdatePath = "/statuses/update.xml";
  static constexpr const char* MeasurementsPath = "/powermeter/feeds";

  /// Over HTTPS when there is a certificate.
  explicit Services(const Certificate* certificate = nullptr);
  ~Services();

  std::string URL(const std::string& path) const { return scheme_ + server_.Place(path); }
  /// From now on, with the requests whose path begins so. Ends what has stalled.
  void Behave(Behaviour behaviour, const std::string& path = "/");
  std::vector<ServiceRequest> Requests() const;
  /// Called for each request, on a thread of the server.
  std::function<void(const ServiceRequest&)> onRequest;

 private:
  using Answer = std::function<std::string(const httplib::Request&, httplib::Response&)>;

  httplib::Server::Handler Handler(Answer answer);
  void AddSpreadsheets();
  bool Misbehaves(const httplib::Request& request, httplib::Response& response);

  const std::string scheme_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  Behaviour behaviour_ = Behaviour::Right;
  std::string misbehavingPath_ = "/";
  std::vector<ServiceRequest> requests_;
  HttpServer server_;  ///< its threads use all of the above: it goes first
};

}  // namespace wattlark
