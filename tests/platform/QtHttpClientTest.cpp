#include <gmock/gmock.h>

#include <QSslConfiguration>
#include <atomic>
#include <vector>

#include "EventLoop.h"
#include "RawServer.h"
#include "TemporaryFolder.h"
#include "platform/qt/QtHttpClient.h"
#include "publish/WebRequestRunner.h"
#include "services/Certificate.h"
#include "services/HttpServer.h"

namespace wattlark {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr std::chrono::milliseconds kPatience = std::chrono::seconds(20);

struct Answer {
  std::string body;
  long code = -1;
  std::string info;
  std::vector<HttpState> states;
};

struct QtHttpClientTest : testing::Test {
  Answer Send(const std::string& url, const std::string& operation = "GET",
              const std::string& body = "", const std::string& headers = "",
              std::chrono::milliseconds limit = kPatience) {
    QtHttpClient client(limit);
    Answer answer;
    client.onState = [&](HttpState state) { answer.states.push_back(state); };
    client.Execute(url, operation, body, headers);
    EXPECT_THAT(answer.states, testing::IsEmpty()) << "events come from the event loop";
    EXPECT_TRUE(WaitUntil([&] {
      return !answer.states.empty() && (answer.states.back() == HttpState::Error ||
                                        answer.states.back() == HttpState::ResponseCompleted);
    }));
    for (std::string chunk; !(chunk = client.GetChunk(1024)).empty();) {
      EXPECT_LE(chunk.size(), 1024U);
      answer.body += chunk;
    }
    answer.code = client.ResponseCode();
    answer.info = client.ResponseInfo();
    EXPECT_EQ(answer.states.back() == HttpState::Error, answer.code != 0);
    return answer;
  }
};

TEST_F(QtHttpClientTest, SendsRequestsAsTheyAre) {
  HttpServer server;
  httplib::Request seen;
  const auto note = [&](const httplib::Request& request, httplib::Response& response) {
    seen = request;
    response.set_content(" ", "text/plain");
  };
  server.Handlers().Put("/feed", note).Post("/feed", note).Get("/feed", note);
  server.Start();
  const std::string body = "<?xml ?> \r\nü\r\n";
  for (const char* operation : {"PUT", "POST", "GET"}) {
    const Answer answer =
        Send("http://" + server.Place("/feed?key=a%20b"), operation,
             operation == std::string("GET") ? "" : body,
             "Content-Type:application/x-www-form-URLencoded\r\nAuthorization: AuthSub "
             "token=\"x\"");
    EXPECT_EQ(answer.body, " ");
    EXPECT_EQ(seen.method, operation);
    EXPECT_EQ(seen.get_param_value("key"), "a b");
    EXPECT_EQ(seen.get_header_value("Content-Type"), "application/x-www-form-URLencoded");
    EXPECT_EQ(seen.get_header_value("Authorization"), "AuthSub token=\"x\"");
    EXPECT_THAT(seen.get_header_value("User-Agent"), StartsWith("Wattlark/"));
    if (operation != std::string("GET")) {
      EXPECT_EQ(seen.body, body);
    }
    EXPECT_THAT(answer.states,
                ElementsAre(HttpState::ResolvingHost, HttpState::Connecting, HttpState::RequestSent,
                            HttpState::ReceivingResponse, HttpState::ResponseReceived,
                            HttpState::ResponseCompleted));
  }
}

TEST_F(QtHttpClientTest, SendsCredentialsAtOnceAndDeliversTheBodyOfEveryStatus) {
  HttpServer server;
  std::atomic<int> requests = 0;
  std::string authorization;
  server.Handlers().Post(R"(/(\d+))", [&](const httplib::Request& request, httplib::Response& r) {
    ++requests;
    authorization = request.get_header_value("Authorization");
    r.status = std::stoi(request.matches[1]);
    if (r.status == 401) r.set_header("WWW-Authenticate", "Basic realm=\"x\"");
    r.set_content("body of " + std::string(request.matches[1]), "text/plain");
  });
  server.Start();
  for (const int status : {200, 400, 401, 404, 500, 599}) {
    const std::string text = std::to_string(status);
    requests = 0;
    const Answer answer = Send("http://user:p@ss@" + server.Place("/" + text), "POST", "status=x",
                               "Content-Type: text/plain");
    EXPECT_EQ(requests, 1) << status;
    EXPECT_EQ(authorization, "Basic dXNlcjpwQHNz");
    EXPECT_EQ(answer.code, 0) << status;
    EXPECT_EQ(answer.body, "body of " + text);
    EXPECT_EQ(answer.info, status == 200 ? "" : "The server answers with status " + text);
  }
}

TEST_F(QtHttpClientTest, BoundsTheResponse) {
  HttpServer server;
  server.Handlers().Get(R"(/(\d+))", [](const httplib::Request& request, httplib::Response& r) {
    const auto size = static_cast<std::size_t>(std::stoul(request.matches[1]));
    r.set_content(std::string(size, 'x'), "text/plain");
  });
  server.Start();
  const std::string place = "http://" + server.Place("/");
  EXPECT_EQ(Send(place + std::to_string(LongestResponse)).body.size(), LongestResponse);
  const Answer answer = Send(place + std::to_string(LongestResponse + 1));
  EXPECT_NE(answer.code, 0);
  EXPECT_EQ(answer.body, "");
  EXPECT_EQ(answer.info, "The response is too long");
  QTimer more;
  RawServer endless([&](QTcpSocket& socket) {
    socket.write("HTTP/1.1 200 OK\r\n\r\n");
    QObject::connect(&more, &QTimer::timeout, &socket,
                     [&socket] { socket.write(QByteArray(qsizetype{256} << 10, 'x')); });
    more.start(0);
  });
  EXPECT_EQ(Send(endless.URL()).info, "The response is too long");
}

TEST_F(QtHttpClientTest, TellsACutResponseFromAWholeOne) {
  for (const char* operation : {"POST", "PUT"}) {
    for (const char* response :
         {"HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf", "HTTP/1.1 200 OK\r\nContent-", "",
          "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nhalf\r\n",
          "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n8\r\nhalf",
          "not HTTP at all\r\n\r\n"}) {
      RawServer server([&](QTcpSocket& socket) {
        socket.write(response);
        socket.disconnectFromHost();
      });
      const Answer answer = Send(server.URL(), operation, "x=y");
      EXPECT_NE(answer.code, 0) << response;
      EXPECT_NE(answer.info, "") << response;
      // The server may have acted on it: once is enough.
      EXPECT_EQ(server.connections, 1) << response;
    }
  }
}

TEST_F(QtHttpClientTest, EndsARequestAtItsLimit) {
  // Though the answer goes on and on, slowly.
  QTimer drip;
  RawServer server([&](QTcpSocket& socket) {
    socket.write("HTTP/1.1 200 OK\r\n\r\n");
    QObject::connect(&drip, &QTimer::timeout, &socket, [&socket] { socket.write("x"); });
    drip.start(20);
  });
  const Answer answer = Send(server.URL(), "GET", "", "", std::chrono::milliseconds(1000));
  EXPECT_EQ(answer.code, HttpTimedOut);
  EXPECT_EQ(answer.info, "No complete answer within 1 s");
  EXPECT_TRUE(WaitUntil([&] { return server.disconnections == 1; }));
}

TEST_F(QtHttpClientTest, TellsOfPlacesThatCannotBeReached) {
  const std::string closed = RawServer([](QTcpSocket&) {}).URL("/secret-path");
  EXPECT_EQ(Send(closed).info, "Connection refused");
  for (const char* address : {"ftp://127.0.0.1/", "file:///etc/passwd", "", "http://"}) {
    EXPECT_EQ(Send(address).info, "The address is not valid") << address;
  }
}

TEST_F(QtHttpClientTest, FollowsRedirectsOnlyWhereTheyAreHarmless) {
  HttpServer other;
  std::atomic<int> reached = 0;
  const auto arrive = [&](const httplib::Request&, httplib::Response& response) {
    ++reached;
    response.set_content("there", "text/plain");
  };
  other.Handlers().Get("/there", arrive).Post("/there", arrive);
  other.Start();
  HttpServer server;
  std::string target;
  const auto redirect = [&](const httplib::Request&, httplib::Response& response) {
    response.set_redirect(target, 307);
  };
  server.Handlers().Get("/away", redirect).Post("/away", redirect);
  server.Handlers().Get("/there", arrive).Post("/there", arrive);
  server.Start();
  struct Case {
    std::string target;
    const char *operation, *headers;
    bool follows;
  };
  const Case cases[] = {{"/there", "POST", "Authorization: x", true},
                        {"http://" + other.Place("/there"), "GET", "", true},
                        // Another server must not get what this one was trusted with.
                        {"http://" + other.Place("/there"), "GET", "Authorization: x", false},
                        {"http://" + other.Place("/there"), "POST", "", false},
                        {"https://" + other.Place("/there"), "GET", "", false},
                        {"file:///etc/passwd", "GET", "", false},
                        {"/away", "GET", "", false}};
  for (const Case& c : cases) {
    target = c.target;
    reached = 0;
    const Answer answer = Send("http://" + server.Place("/away"), c.operation, "", c.headers);
    EXPECT_EQ(answer.code == 0, c.follows) << c.operation << " " << c.target;
    EXPECT_EQ(reached, c.follows ? 1 : 0) << c.operation << " " << c.target;
    EXPECT_EQ(answer.body, c.follows ? "there" : "") << c.operation << " " << c.target;
  }
  EXPECT_EQ(Send("http://" + server.Place("/away")).info, "The server redirects in circles");
  // Credentials in the address count as well.
  target = "http://" + other.Place("/there");
  reached = 0;
  EXPECT_NE(Send("http://user:pass@" + server.Place("/away")).code, 0);
  EXPECT_EQ(reached, 0);
}

TEST_F(QtHttpClientTest, SendsABodyToOnePlaceOnly) {
  HttpServer server;
  const auto tell = [](const httplib::Request& request, httplib::Response& response) {
    response.set_content(request.method + " " + request.body, "text/plain");
  };
  server.Handlers().Get("/there", tell).Post("/there", tell);
  server.Handlers().Post(R"(/(\d+))", [](const httplib::Request& request, httplib::Response& r) {
    r.set_redirect("/there", std::stoi(request.matches[1]));
  });
  server.Start();
  for (const int status : {301, 302, 303, 307, 308}) {
    const Answer answer = Send("http://" + server.Place("/" + std::to_string(status)), "POST",
                               "x=y", "Content-Type: text/plain");
    EXPECT_EQ(answer.body, status < 307 ? "GET " : "") << status;
    EXPECT_EQ(answer.code == 0, status < 307) << status;
  }
}

TEST_F(QtHttpClientTest, ChecksCertificates) {
  const TemporaryFolder folder;
  const Certificate certificate(folder.Path());
  HttpServer server(
      std::make_unique<httplib::SSLServer>(certificate.file.c_str(), certificate.keyFile.c_str()));
  std::atomic<int> requests = 0;
  server.Handlers().Get("/", [&](const httplib::Request&, httplib::Response& response) {
    ++requests;
    response.set_content("safe", "text/plain");
  });
  server.Start();
  const Answer refused = Send("https://user:secret@" + server.Place("/"));
  EXPECT_NE(refused.code, 0);
  EXPECT_THAT(refused.info, StartsWith("No secure connection to the server could be made: "));
  EXPECT_THAT(refused.info, Not(HasSubstr("secret")));
  EXPECT_EQ(requests, 0);

  const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
  QSslConfiguration trusting = before;
  ASSERT_TRUE(trusting.addCaCertificates(QString::fromStdString(certificate.file)));
  QSslConfiguration::setDefaultConfiguration(trusting);
  const Answer answer = Send("https://" + server.Place("/"));
  EXPECT_EQ(answer.body, "safe") << answer.info;
  EXPECT_EQ(answer.code, 0);
  EXPECT_THAT(answer.states, Contains(HttpState::Connected));
  // The same certificate under another name is refused.
  const std::string port = server.Place("").substr(server.Place("").find(':'));
  EXPECT_NE(Send("https://localhost" + port + "/").code, 0);
  QSslConfiguration::setDefaultConfiguration(before);
}

}  // namespace
}  // namespace wattlark
