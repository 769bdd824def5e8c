#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSslConfiguration>
#include <atomic>
#include <ctime>
#include <vector>

#include "EventLoop.h"
#include "RawServer.h"
#include "TemporaryFolder.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtHttpClient.h"
#include "publish/PublishResult.h"
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
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.body, " ");
    EXPECT_EQ(answer.info, "");
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

TEST_F(QtHttpClientTest, SendsCredentialsAtOnce) {
  HttpServer server;
  std::atomic<int> requests = 0;
  std::string authorization;
  server.Handlers().Post("/update", [&](const httplib::Request& request, httplib::Response& r) {
    ++requests;
    authorization = request.get_header_value("Authorization");
    r.status = 401;
    r.set_header("WWW-Authenticate", "Basic realm=\"x\"");
    r.set_content("Could not authenticate you.", "text/plain");
  });
  server.Start();
  const Answer answer = Send("http://user:p@ss@" + server.Place("/update"), "POST", "status=x");
  EXPECT_EQ(authorization, "Basic dXNlcjpwQHNz");
  EXPECT_EQ(requests, 1);
  EXPECT_EQ(answer.code, 0);
  EXPECT_EQ(answer.body, "Could not authenticate you.");
  EXPECT_EQ(answer.info, "The server answers with status 401");
}

TEST_F(QtHttpClientTest, DeliversTheBodyOfEveryStatus) {
  HttpServer server;
  server.Handlers().Get(R"(/(\d+))", [](const httplib::Request& request, httplib::Response& r) {
    r.status = std::stoi(request.matches[1]);
    r.set_content("body of " + std::string(request.matches[1]), "text/plain");
  });
  server.Start();
  for (const int status : {200, 400, 403, 404, 405, 409, 410, 418, 500, 501, 503, 599}) {
    const std::string text = std::to_string(status);
    const Answer answer = Send("http://" + server.Place("/" + text));
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
  const auto get = [&](std::size_t size) {
    return Send("http://" + server.Place("/" + std::to_string(size)));
  };
  EXPECT_EQ(get(1024 * 1024).body.size(), 1024U * 1024);
  EXPECT_EQ(get(LongestResponse).body.size(), LongestResponse);
  const Answer answer = get(LongestResponse + 1);
  EXPECT_NE(answer.code, 0);
  EXPECT_EQ(answer.body, "");
  EXPECT_EQ(answer.info, "The response is too long");
}

TEST_F(QtHttpClientTest, EndsAnEndlessResponse) {
  QTimer more;
  RawServer server([&](QTcpSocket& socket) {
    socket.write("HTTP/1.1 200 OK\r\n\r\n");
    QObject::connect(&more, &QTimer::timeout, &socket,
                     [&socket] { socket.write(QByteArray(256 * 1024, 'x')); });
    more.start(0);
  });
  EXPECT_EQ(Send(server.URL()).info, "The response is too long");
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
  // One that never answers, and one that goes on and on, slowly.
  QTimer drip;
  for (const bool drips : {false, true}) {
    RawServer server([&](QTcpSocket& socket) {
      if (!drips) return;
      socket.write("HTTP/1.1 200 OK\r\n\r\n");
      QObject::connect(&drip, &QTimer::timeout, &socket, [&socket] { socket.write("x"); });
      drip.start(20);
    });
    const Answer answer = Send(server.URL(), "GET", "", "", std::chrono::milliseconds(1000));
    EXPECT_EQ(answer.code, HttpTimedOut);
    EXPECT_EQ(answer.info, "No complete answer within 1 s");
    EXPECT_TRUE(WaitUntil([&] { return server.disconnections == 1; }));
    drip.stop();
  }
}

TEST_F(QtHttpClientTest, TellsOfPlacesThatCannotBeReached) {
  std::string closed;
  {
    const RawServer server([](QTcpSocket&) {});
    closed = server.URL("/secret-path");
  }
  const Answer refused = Send(closed);
  EXPECT_NE(refused.code, 0);
  EXPECT_EQ(refused.info, "Connection refused");
  for (const char* address : {"ftp://127.0.0.1/", "file:///etc/passwd", "", "http://"}) {
    const Answer answer = Send(address);
    EXPECT_NE(answer.code, 0) << address;
    EXPECT_EQ(answer.body, "") << address;
    EXPECT_EQ(answer.info, "The address is not valid") << address;
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
    const char* operation;
    const char* headers;
    bool follows;
  };
  const Case cases[] = {
      {"/there", "GET", "", true},
      {"/there", "POST", "Authorization: x", true},
      {"http://" + other.Place("/there"), "GET", "", true},
      // Another server must not get what this one was trusted with.
      {"http://" + other.Place("/there"), "GET", "Authorization: x", false},
      {"http://" + other.Place("/there"), "POST", "", false},
      {"https://" + other.Place("/there"), "GET", "", false},
      {"file:///etc/passwd", "GET", "", false},
      {"/away", "GET", "", false},
  };
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
  for (const auto& [status, body] :
       {std::pair("301", "GET "), std::pair("302", "GET "), std::pair("303", "GET "),
        std::pair("307", ""), std::pair("308", "")}) {
    const Answer answer = Send("http://" + server.Place(std::string("/") + status), "POST", "x=y",
                               "Content-Type: text/plain");
    EXPECT_EQ(answer.body, body) << status;
    EXPECT_EQ(answer.code == 0, !answer.body.empty()) << status;
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

TEST_F(QtHttpClientTest, RunsOneRequestAtATime) {
  const RawServer server([](QTcpSocket&) {});
  QtHttpClient client;
  std::vector<HttpState> states;
  client.onState = [&](HttpState state) { states.push_back(state); };
  client.Execute(server.URL(), "GET", "", "");
  EXPECT_THROW(client.Execute(server.URL(), "GET", "", ""), std::runtime_error);
  client.Cancel();
  EXPECT_THAT(states, ElementsAre(HttpState::Error));
  EXPECT_NE(client.ResponseCode(), 0);
  // What was still to be told of the first one does not reach the second.
  RawServer quick(
      [](QTcpSocket& socket) { socket.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok"); });
  client.Execute(quick.URL(), "GET", "", "");
  ASSERT_TRUE(WaitUntil([&] { return states.back() == HttpState::ResponseCompleted; }));
  EXPECT_EQ(std::count(states.begin(), states.end(), HttpState::Error), 1);
  EXPECT_EQ(client.GetChunk(10), "ok");
  EXPECT_EQ(client.GetChunk(10), "");
  client.Cancel();
  EXPECT_EQ(states.back(), HttpState::ResponseCompleted);
}

TEST_F(QtHttpClientTest, MayEndWithARequestUnderWay) {
  RawServer server([](QTcpSocket&) {});
  auto client = std::make_unique<QtHttpClient>();
  int events = 0;
  client->onState = [&](HttpState) { ++events; };
  client->Execute(server.URL(), "GET", "", "");
  ASSERT_TRUE(WaitUntil([&] { return server.connections == 1; }));
  const int before = events;
  client.reset();
  EXPECT_TRUE(WaitUntil([&] { return server.disconnections == 1; }));
  EXPECT_EQ(events, before);
}

/// The status with which the event loop ends when a wait for a server that never answers is under
/// way and `end` is called; -1 when the wait does not notice.
int RunUntil(const std::function<void(QtEventPump&)>& end) {
  const RawServer server([](QTcpSocket&) {});
  QtHttpClient client;
  QtEventPump pump;
  WebRequestRunner runner(client, pump, "", [](const std::string&) {});
  bool stopped = false;
  QTimer::singleShot(0, [&] {
    QTimer::singleShot(50, [&] { end(pump); });
    try {
      runner.ExecuteAndWait({server.URL(), "GET"});
    } catch (const PublishStopped&) {
      stopped = true;
    }
    // The next destination of the same tick must not wait either.
    EXPECT_THROW(runner.ExecuteAndWait({server.URL(), "GET"}), PublishStopped);
  });
  QTimer patience;
  patience.setSingleShot(true);
  patience.callOnTimeout([&] { client.Cancel(); });
  patience.start(10000);
  const int status = QCoreApplication::exec();
  return stopped ? status : -1;
}

TEST(QtEventPump, EndsAWaitWhenTheApplicationIsToldToQuit) {
  EXPECT_EQ(RunUntil([](QtEventPump&) { QCoreApplication::quit(); }), 0);
  EXPECT_EQ(RunUntil([](QtEventPump& pump) {
              QCoreApplication::exit(3);
              pump.NoteExit();
            }),
            3);
}

TEST(QtEventPump, GoesOnWhenQuittingWasRefused) {
  QtEventPump pump;
  pump.NoteExit();
  QTimer::singleShot(0, [] {});
  EXPECT_TRUE(pump.ProcessEvents());
}

TEST(QtEventPump, TakesNoProcessorTimeWhileItWaits) {
  const auto processorTime = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  };
  const RawServer server([](QTcpSocket&) {});
  QtHttpClient client(std::chrono::milliseconds(2000));
  QtEventPump pump;
  WebRequestRunner runner(client, pump, "", [](const std::string&) {});
  const auto before = processorTime();
  EXPECT_NE(runner.ExecuteAndWait({server.URL(), "GET"}).ResponseCode, 0);
  const auto used = processorTime() - before;
  EXPECT_LT(used, std::chrono::milliseconds(200)) << "of 2 s";
}

}  // namespace
}  // namespace wattlark
