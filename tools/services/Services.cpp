#include "services/Services.h"

#include <QByteArray>
#include <chrono>
#include <memory>

#include "services/Documents.h"

namespace wattlark {

namespace {

constexpr const char* kXml = "application/atom+xml";
constexpr auto kMoment = std::chrono::milliseconds(300);
const std::string kFeedStart = "<feed xmlns='http://www.w3.org/2005/Atom'>";

std::unique_ptr<httplib::Server> MakeServer(const Certificate* certificate) {
  if (certificate == nullptr) return std::make_unique<httplib::Server>();
  return std::make_unique<httplib::SSLServer>(certificate->file.c_str(),
                                              certificate->keyFile.c_str());
}

std::string TypeProblem(const httplib::Request& request, const std::string& type) {
  const std::string sent = request.get_header_value("Content-Type");
  return sent == type ? "" : "content of type \"" + sent + "\"";
}

std::string AuthorizationProblem(const httplib::Request& request, const std::string& value) {
  return request.get_header_value("Authorization") == value ? "" : "not the authorization";
}

std::string FirstOf(const std::string& problem, const std::string& other) {
  return problem.empty() ? other : problem;
}

// An entry as spreadsheet feeds have them: its title and the link behind it.
std::string Entry(const std::string& title, const std::string& relation, const std::string& url) {
  return "<entry><title type='text'>" + title +
         "</title><link rel='http://schemas.google.com/spreadsheets/2006#" + relation +
         "' type='application/atom+xml' href='" + url + "'/></entry>";
}

std::string SignIn(const httplib::Request& request, httplib::Response& response) {
  const std::string start = std::string("Email=") + Services::UserName + "&Passwd=";
  const std::string end = "&source=FennickLabs-Wattlark-v2.0&service=wise";
  if (!request.body.starts_with("Email=") || !request.body.ends_with(end)) return "not the form";
  if (request.body == start + Services::Password + end) {
    response.set_content(std::string("SID=s\nLSID=l\nAuth=") + Services::SessionToken + "\n",
                         "text/plain");
  } else {
    response.status = 403;
    response.set_content("Error=BadAuthentication\n", "text/plain");
  }
  return TypeProblem(request, "application/x-www-form-urlencoded");
}

std::string UpdateFeed(const httplib::Request& request, httplib::Response& response) {
  response.set_content(" ", "text/plain");
  if (request.get_param_value("key") != Services::FeedKey) return "not the key";
  return FirstOf(TypeProblem(request, kXml), FeedProblem(request.body));
}

std::string TakeMeasurement(const httplib::Request& request, httplib::Response& response) {
  response.status = 201;
  response.set_content("<entry><updated>2026-11-16T20:10:00Z</updated></entry>", kXml);
  const std::string authorization = std::string("AuthSub token=\"") + Services::DeviceToken + "\"";
  return FirstOf(FirstOf(AuthorizationProblem(request, authorization), TypeProblem(request, kXml)),
                 MeasurementProblem(request.body));
}

std::string UpdateStatus(const httplib::Request& request, httplib::Response& response) {
  const QByteArray credentials =
      QByteArray(Services::UserName) + ":" + QByteArray(Services::Password);
  if (!AuthorizationProblem(request, "Basic " + credentials.toBase64().toStdString()).empty()) {
    response.status = 401;
    response.set_content("<error>Could not authenticate you.</error>", "application/xml");
    return "";
  }
  response.set_content("<status><created_at>Mon Nov 16 20:10:00 +0000 2026</created_at></status>",
                       "application/xml");
  const QByteArray form = QByteArray::fromStdString(request.body);
  const bool isForm = form.startsWith("status=") && form.count('=') == 1 && !form.contains('&') &&
                      !form.contains('+');
  return FirstOf(TypeProblem(request, "application/x-www-form-URLencoded"),
                 isForm ? "" : "not one status");
}

}  // namespace

const std::vector<BehaviourName>& BehaviourNames() {
  using B = Behaviour;
  static const std::vector<BehaviourName> names{{"right", B::Right},
                                                {"slow", B::Slow},
                                                {"stalled", B::Stalled},
                                                {"cut", B::Cut},
                                                {"endless", B::Endless},
                                                {"megabyte", B::Megabyte},
                                                {"wrong-content", B::WrongContent},
                                                {"echo", B::Echo},
                                                {"unauthorized", B::Unauthorized},
                                                {"not-found", B::NotFound},
                                                {"failure", B::Failure}};
  return names;
}

Services::Services(const Certificate* certificate)
    : scheme_(certificate == nullptr ? "http://" : "https://"), server_(MakeServer(certificate)) {
  httplib::Server& handlers = server_.Handlers();
  handlers.set_tcp_nodelay(true);
  handlers.Post(SignInPath, Handler(SignIn));
  handlers.Put(FeedPath, Handler(UpdateFeed));
  handlers.Post(UpdatePath, Handler(UpdateStatus));
  handlers.Post(std::string(MeasurementsPath) + DevicePath + R"(\.d1/durMeasurement)",
                Handler(TakeMeasurement));
  AddSpreadsheets();
  server_.Start();
}

Services::~Services() {
  Behave(Behaviour::Right);
}

void Services::AddSpreadsheets() {
  const std::string authorization = std::string("GoogleLogin auth=") + SessionToken;
  httplib::Server& handlers = server_.Handlers();
  // The addresses in the feeds name the port, which is known when a request has come.
  const auto listing = [this, authorization](const char* title, const char* relation,
                                             const char* path) {
    return Handler([this, authorization, title, relation, path](const httplib::Request& request,
                                                                httplib::Response& response) {
      response.set_content(kFeedStart + Entry("Another", relation, URL("/another")) +
                               Entry(title, relation, URL(path)) + "</feed>",
                           kXml);
      return AuthorizationProblem(request, authorization);
    });
  };
  handlers.Get(SpreadsheetsPath, listing("wattlark", "worksheetsfeed", WorksheetsPath));
  handlers.Get(WorksheetsPath, listing("Sheet1", "listfeed", RowsPath));
  handlers.Post(
      RowsPath,
      Handler([authorization](const httplib::Request& request, httplib::Response& response) {
        response.status = 201;
        response.set_content("<entry><updated>2026-11-16T20:10:00Z</updated></entry>", kXml);
        return FirstOf(
            FirstOf(AuthorizationProblem(request, authorization), TypeProblem(request, kXml)),
            RowProblem(request.body));
      }));
}

httplib::Server::Handler Services::Handler(Answer answer) {
  return [this, answer = std::move(answer)](const httplib::Request& request,
                                            httplib::Response& response) {
    const std::string problem = answer(request, response);
    const ServiceRequest noted{request.target, request.body,
                               request.get_header_value("Authorization"), problem};
    {
      const std::lock_guard lock(mutex_);
      requests_.push_back(noted);
    }
    if (onRequest) onRequest(noted);
    if (Misbehaves(request, response) || problem.empty()) return;
    response.status = 400;
    response.set_content(problem, "text/plain");
  };
}

void Services::Behave(Behaviour behaviour, const std::string& path) {
  const std::lock_guard lock(mutex_);
  behaviour_ = behaviour;
  misbehavingPath_ = path;
  changed_.notify_all();
}

std::vector<ServiceRequest> Services::Requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

bool Services::Misbehaves(const httplib::Request& request, httplib::Response& response) {
  std::unique_lock lock(mutex_);
  if (!request.path.starts_with(misbehavingPath_)) return false;
  const auto answer = [&](int status, const std::string& body) {
    response.status = status;
    response.set_content(body, "text/html");
  };
  switch (behaviour_) {
    case Behaviour::Right:
      return false;
    case Behaviour::Slow:
      changed_.wait_for(lock, kMoment);
      return false;
    case Behaviour::Stalled:
      changed_.wait(lock, [this] { return behaviour_ != Behaviour::Stalled; });
      return false;
    case Behaviour::Cut:
      response.body.clear();
      response.set_content_provider(1000, "text/html",
                                    [](std::size_t, std::size_t, httplib::DataSink& sink) {
                                      sink.write("half", 4);
                                      return false;
                                    });
      return true;
    case Behaviour::Endless:
      response.body.clear();
      response.set_chunked_content_provider("text/html", [](std::size_t, httplib::DataSink& sink) {
        static const std::string part(std::size_t{256} * 1024, 'x');
        return sink.write(part.data(), part.size());
      });
      return true;
    case Behaviour::Megabyte:
      answer(200, std::string(std::size_t{1024} * 1024, 'x'));
      return true;
    case Behaviour::WrongContent:
      answer(200, "<html>Welcome</html>");
      return true;
    case Behaviour::Echo:
      answer(200, request.target + "\n" + request.get_header_value("Authorization") + "\n" +
                      request.body);
      return true;
    case Behaviour::Unauthorized:
      answer(401, "Unauthorized");
      return true;
    case Behaviour::NotFound:
      answer(404, "Not Found");
      return true;
    case Behaviour::Failure:
      answer(500, "Internal Error");
      return true;
  }
  return false;
}

}  // namespace wattlark
