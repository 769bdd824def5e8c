#include <gmock/gmock.h>

#include <QSslConfiguration>
#include <algorithm>
#include <ctime>

#include "EventLoop.h"
#include "TemporaryFolder.h"
#include "TestServers.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtHttpClient.h"
#include "publish/PublishResult.h"
#include "publish/WebRequestRunner.h"
#include "services/Certificate.h"

namespace wattlark {
namespace {

struct Answer {
  std::string body;
  long code = -1;
  std::string info;
  std::vector<HttpState> states;
};

struct QtHttpClientTest : testing::Test {
  Answer Send(const std::string& url, const std::string& operation = "GET",
              const std::string& body = "", const std::string& headers = "") {
    QtHttpClient client(std::chrono::seconds(20));
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

TEST_F(QtHttpClientTest, SendsRequestsAsTheyAreAndDeliversTheBodyOfEveryStatus) {
  std::atomic<int> requests = 0;
  httplib::Request seen;
  const AnyServer server([&](const httplib::Request& request, httplib::Response& response) {
    ++requests;
    seen = request;
    response.status = std::stoi(request.path.substr(1));
    if (response.status == 401) response.set_header("WWW-Authenticate", "Basic realm=\"x\"");
    response.set_content("body of " + request.path, "text/plain");
  });
  for (const std::string operation : {"PUT", "GET"}) {
    const std::string body = operation == "GET" ? "" : "<?xml ?> \r\nü\r\n";
    const Answer answer = Send(server.URL("/200?key=a%20b"), operation, body,
                               "Content-Type:application/x-www-form-URLencoded\r\n"
                               "Authorization: AuthSub token=\"x\"");
    EXPECT_EQ(seen.method, operation);
    EXPECT_EQ(seen.get_param_value("key"), "a b");
    EXPECT_EQ(seen.get_header_value("Content-Type"), "application/x-www-form-URLencoded");
    EXPECT_EQ(seen.get_header_value("Authorization"), "AuthSub token=\"x\"");
    EXPECT_THAT(seen.get_header_value("User-Agent"), testing::StartsWith("Wattlark/"));
    EXPECT_EQ(seen.body, body);
    EXPECT_THAT(answer.states,
                testing::ElementsAre(HttpState::ResolvingHost, HttpState::Connecting,
                                     HttpState::RequestSent, HttpState::ReceivingResponse,
                                     HttpState::ResponseReceived, HttpState::ResponseCompleted));
  }
  for (const std::string status : {"200", "400", "401", "599"}) {
    requests = 0;
    const Answer answer = Send("http://user:p@ss@" + server.Place("/" + status), "POST", "status=x",
                               "Content-Type: text/plain");
    EXPECT_EQ(requests, 1) << status;  // with credentials at once
    EXPECT_EQ(seen.get_header_value("Authorization"), "Basic dXNlcjpwQHNz");
    EXPECT_EQ(answer.code, 0) << status;
    EXPECT_EQ(answer.body, "body of /" + status);
    EXPECT_EQ(answer.info, status == "200" ? "" : "The server answers with status " + status);
  }
}

TEST_F(QtHttpClientTest, BoundsTheResponse) {
  const AnyServer server([](const httplib::Request& request, httplib::Response& r) {
    r.set_content(std::string(std::stoul(request.path.substr(1)), 'x'), "text/plain");
  });
  EXPECT_EQ(Send(server.URL("/" + std::to_string(LongestResponse))).body.size(), LongestResponse);
  QTimer more;
  const RawServer endless([&](QTcpSocket& socket) {
    socket.write("HTTP/1.1 200 OK\r\n\r\n");
    QObject::connect(&more, &QTimer::timeout, &socket,
                     [&socket] { socket.write(QByteArray(qsizetype{256} << 10, 'x')); });
    more.start(0);
  });
  EXPECT_EQ(Send(endless.URL()).info, "The response is too long");
}

TEST_F(QtHttpClientTest, TellsACutResponseFromAWholeOne) {
  for (const char* response :
       {"HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf", "HTTP/1.1 200 OK\r\nContent-", "",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nhalf\r\n",
        "not HTTP at all\r\n\r\n"}) {
    RawServer server([&](QTcpSocket& socket) {
      socket.write(response);
      socket.disconnectFromHost();
    });
    const Answer answer = Send(server.URL(), "POST", "x=y");
    EXPECT_NE(answer.code, 0) << response;
    EXPECT_NE(answer.info, "") << response;
    // The server may have acted on it: once is enough.
    EXPECT_EQ(server.connections, 1) << response;
  }
}

TEST_F(QtHttpClientTest, TellsOfPlacesThatCannotBeReached) {
  const std::string closed = RawServer([](QTcpSocket&) {}).URL();
  EXPECT_EQ(Send(closed).info, "Connection refused");
  EXPECT_EQ(Send("ftp://127.0.0.1/").info, "The address is not valid");
}

TEST_F(QtHttpClientTest, FollowsRedirectsOnlyWhereTheyAreHarmless) {
  std::atomic<int> reached = 0;
  const auto arrive = [&](const httplib::Request& request, httplib::Response& response) {
    ++reached;
    response.set_content(request.method + request.body, "text/plain");
  };
  const AnyServer other(arrive);
  std::string target;
  const AnyServer server([&](const httplib::Request& request, httplib::Response& response) {
    if (request.path == "/there") return arrive(request, response);
    response.set_redirect(target, std::stoi(request.path.substr(1)));
  });
  const std::string elsewhere = other.URL("/there");
  // The last of a row: as which operation it arrives; empty when it is not followed.
  const std::array<std::string, 6> cases[] = {
      {"308", "/there", "POST", "", "Authorization: x", "POST"},
      {"307", elsewhere, "GET", "", "", "GET"},
      // A body goes to one place only.
      {"302", "/there", "POST", "x=y", "Content-Type: text/plain", "GET"},
      // Another server must not get what this one was trusted with.
      {"307", elsewhere, "GET", "", "Authorization: x", ""},
      {"307", elsewhere, "POST", "", "", ""},
      {"307", "file:///etc/passwd", "GET", "", "", ""},
      {"307", "/307", "GET", "", "", ""}};
  for (const auto& [status, to, operation, body, headers, arrives] : cases) {
    target = to;
    reached = 0;
    const Answer answer = Send(server.URL("/" + status), operation, body, headers);
    SCOPED_TRACE(status + ' ' + to + ' ' + operation + ' ' + headers);
    EXPECT_EQ(answer.code == 0, !arrives.empty());
    EXPECT_EQ(reached, arrives.empty() ? 0 : 1);
    EXPECT_EQ(answer.body, arrives);
  }
  EXPECT_EQ(Send(server.URL("/307")).info, "The server redirects in circles");
  // A body of its own is sent once, and credentials in the address count as a header does.
  target = "/there";
  EXPECT_NE(Send(server.URL("/307"), "POST", "x=y", "Content-Type: text/plain").code, 0);
  target = elsewhere;
  reached = 0;
  EXPECT_NE(Send("http://user:pass@" + server.Place("/307")).code, 0);
  EXPECT_EQ(reached, 0);
}

TEST_F(QtHttpClientTest, ChecksCertificates) {
  const TemporaryFolder folder;
  const Certificate certificate(folder.Path());
  std::atomic<int> requests = 0;
  const AnyServer server(
      [&](const httplib::Request&, httplib::Response& response) {
        ++requests;
        response.set_content("safe", "text/plain");
      },
      std::make_unique<httplib::SSLServer>(certificate.file.c_str(), certificate.keyFile.c_str()));
  const Answer refused = Send("https://user:secret@" + server.Place("/"));
  EXPECT_THAT(refused.info,
              testing::StartsWith("No secure connection to the server could be made: "));
  EXPECT_THAT(refused.info, testing::Not(testing::HasSubstr("secret")));
  EXPECT_EQ(requests, 0);

  const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
  QSslConfiguration trusting = before;
  ASSERT_TRUE(trusting.addCaCertificates(QString::fromStdString(certificate.file)));
  QSslConfiguration::setDefaultConfiguration(trusting);
  const Answer answer = Send("https://" + server.Place("/"));
  EXPECT_EQ(answer.body, "safe") << answer.info;
  EXPECT_THAT(answer.states, testing::Contains(HttpState::Connected));
  // The same certificate under another name is refused.
  const std::string port = server.Place("").substr(server.Place("").find(':'));
  EXPECT_NE(Send("https://localhost" + port + "/").code, 0);
  QSslConfiguration::setDefaultConfiguration(before);
}

TEST_F(QtHttpClientTest, RunsOneRequestAtATime) {
  const RawServer server([](QTcpSocket&) {});
  std::vector<HttpState> states;
  QtHttpClient client;
  client.onState = [&](HttpState state) { states.push_back(state); };
  client.Execute(server.URL(), "GET", "", "");
  EXPECT_THROW(client.Execute(server.URL(), "GET", "", ""), std::runtime_error);
  client.Cancel();
  EXPECT_THAT(states, testing::ElementsAre(HttpState::Error));
  EXPECT_NE(client.ResponseCode(), 0);
  // What was still to be told of the first one does not reach the second.
  RawServer quick(
      [](QTcpSocket& socket) { socket.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok"); });
  client.Execute(quick.URL(), "GET", "", "");
  ASSERT_TRUE(WaitUntil([&] { return states.back() == HttpState::ResponseCompleted; }));
  EXPECT_EQ(std::count(states.begin(), states.end(), HttpState::Error), 1);
  EXPECT_EQ(client.GetChunk(10), "ok");
}

TEST(QtEventPump, EndsAWaitWhenTheApplicationIsToldToQuitAndGoesOnWhenThatWasRefused) {
  const RawServer server([](QTcpSocket&) {});
  for (const int status : {0, 3}) {
    QtHttpClient client(std::chrono::seconds(10));
    QtEventPump pump;
    WebRequestRunner runner(client, pump, "", [](const std::string&) {});
    QTimer::singleShot(50, [&] {
      if (status == 0) return QCoreApplication::quit();
      QCoreApplication::exit(status);
      pump.NoteExit();
    });
    QTimer::singleShot(0, [&] {
      EXPECT_THROW(runner.ExecuteAndWait({server.URL(), "GET"}), PublishStopped);
      // The next destination of the same tick must not wait either.
      EXPECT_THROW(runner.ExecuteAndWait({server.URL(), "GET"}), PublishStopped);
    });
    EXPECT_EQ(QCoreApplication::exec(), status);
  }
  QtEventPump pump;
  pump.NoteExit();
  QTimer::singleShot(0, [] {});
  EXPECT_TRUE(pump.ProcessEvents());
}

// Though the answer goes on and on, slowly.
TEST(QtEventPump, TakesNoProcessorTimeUntilARequestEndsAtItsLimit) {
  const auto processorTime = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  };
  QTimer drip;
  const RawServer server([&](QTcpSocket& socket) {
    socket.write("HTTP/1.1 200 OK\r\n\r\n");
    QObject::connect(&drip, &QTimer::timeout, &socket, [&socket] { socket.write("x"); });
    drip.start(20);
  });
  QtHttpClient client(std::chrono::milliseconds(1000));
  QtEventPump pump;
  WebRequestRunner runner(client, pump, "", [](const std::string&) {});
  const auto before = processorTime();
  EXPECT_EQ(runner.ExecuteAndWait({server.URL(), "GET"}).ResponseCode, HttpTimedOut);
  EXPECT_LT(processorTime() - before, std::chrono::milliseconds(200)) << "of 1 s";
  EXPECT_EQ(client.ResponseInfo(), "No complete answer within 1 s");
  EXPECT_TRUE(WaitUntil([&] { return server.disconnections == 1; }));
}

}  // namespace
}  // namespace wattlark
