#include <gmock/gmock.h>
#include <malloc.h>

#include <array>
#include <chrono>
#include <optional>

#include "app/MonitorFixture.h"
#include "app/WebPublishers.h"
#include "platform/qt/QtEventPump.h"
#include "platform/qt/QtHttpClient.h"
#include "services/Services.h"

namespace wattlark {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Milliseconds = std::chrono::milliseconds;

/// A monitor with a driven clock that talks to services over real connections.
struct ServicesTest : MonitorTest {
  ServicesTest() {
    const auto point = [this](const char* name, const char* path) {
      Put("ServiceEndpoints", name, services.URL(path));
    };
    point("ClientLoginURL", Services::SignInPath);
    point("SpreadsheetsFeedURL", Services::SpreadsheetsPath);
    point("TwitterUpdateURL", Services::UpdatePath);
    point("PowerMeterFeedsURL", Services::MeasurementsPath);
    Put("Settings", "PachubeFeedURL", services.URL(Services::FeedPath));
    Put("Settings", "PachubeAPIKey", Services::FeedKey);
    Put("Settings", "PowerMeterAuthInfo",
        std::string("token=") + Services::DeviceToken + "&path=" + Services::DevicePath);
    for (const std::string service : {"Google", "Twitter"}) {
      Put("Settings", service + "Username", Services::UserName);
      Put("Settings", service + "Password", Services::Password);
    }
    PutMeter("Kitchen", 5);
    PutMeter("Living Room", 6);
    clock.now = At("2026-11-16T20:57:30");
  }
  /// Every request ends within `limit`.
  void Begin(Milliseconds limit = std::chrono::seconds(20)) {
    monitor.reset();  // it hears of its clients to its end
    for (auto& client : clients) client.emplace(limit);
    ports.emplace(WebPorts{*clients[0], *clients[1], *clients[2], *clients[3], pump,
                           [](DateTime local) { return local.PlusHours(5); }});
    web = &*ports;
    Start();
    monitor->Profile().Total().Statistics().SetDemandRecent(Hour, std::vector<double>(60, 1200));
    Arrive(Frame120W(5));
  }
  std::string Publish(PublishTarget target) { return monitor->PublishNow(target, true).text; }
  std::vector<std::string> Problems() const {
    std::vector<std::string> problems;
    for (const ServiceRequest& request : services.Requests()) {
      if (!request.problem.empty()) problems.push_back(request.target + ": " + request.problem);
    }
    return problems;
  }
  std::vector<std::string> Successes() const {
    std::vector<std::string> texts;
    for (const std::string& text : listener.infoTexts) {
      if (text.find("pdated ") != std::string::npos) texts.push_back(text);
    }
    return texts;
  }
  void TearDown() override { monitor.reset(); }

  Services services;
  QtEventPump pump;
  std::array<std::optional<QtHttpClient>, 4> clients;
  std::optional<WebPorts> ports;
};

TEST_F(ServicesTest, TakeEverySlotOfTheScheduleAndTheNextOneAfterAFailure) {
  for (const char* name : {"LogToPachube", "LogToGoogle", "LogToPowerMeter", "LogToTwitter"}) {
    Put("Settings", name, "True");
  }
  Put("Settings", "TwitterInterval", "1");
  Begin();
  services.Behave(Behaviour::Failure, "/api");
  while (clock.now < At("2026-11-16T21:05:00")) {
    if (clock.now == At("2026-11-16T21:01:00")) services.Behave(Behaviour::Right);
    Arrive(Frame120W(5));
    Tick();
  }
  EXPECT_THAT(Successes(), ElementsAre("Google Docs: Updated 11/16/2026 9:00:00 PM",
                                       "Google PowerMeter: Updated 11/16/2026 9:00:00 PM",
                                       "Twitter: Status updated 11/16/2026 9:00:00 PM",
                                       "Pachube: Updated 11/16/2026 9:05:00 PM",
                                       "Google Docs: Updated 11/16/2026 9:05:00 PM"));
  EXPECT_THAT(listener.errors, ElementsAre("Pachube: Error Returned >> Internal Error"));
  EXPECT_THAT(Problems(), IsEmpty());
  std::vector<std::string> targets;
  for (const ServiceRequest& request : services.Requests()) targets.push_back(request.target);
  const std::string feed = std::string(Services::FeedPath) + "?key=" + Services::FeedKey;
  EXPECT_THAT(targets, ElementsAre(feed, Services::SignInPath, Services::SpreadsheetsPath,
                                   Services::WorksheetsPath, Services::RowsPath,
                                   std::string(Services::MeasurementsPath) + Services::DevicePath +
                                       ".d1/durMeasurement",
                                   Services::UpdatePath, feed, Services::RowsPath));
}

struct Misbehaviour {
  const char* name;
  Behaviour behaviour;
  std::string quote;  ///< of an error that holds the response
};

struct MisbehavingServices : ServicesTest, testing::WithParamInterface<Misbehaviour> {};

TEST_P(MisbehavingServices, AreToldOfAndThenUsedAgain) {
  struct Case {
    PublishTarget target;
    const char* path;  ///< of the request that fails
    const char* error;
    bool quotes;
  };
  const Case cases[] = {
      {PublishTarget::Pachube, Services::FeedPath, "Pachube: Error Returned >> ", true},
      {PublishTarget::GoogleDocs, Services::SignInPath, "Google: Invalid response >> ", true},
      {PublishTarget::GoogleDocs, Services::SpreadsheetsPath,
       "Google: The document 'wattlark' could not be found", false},
      {PublishTarget::GoogleDocs, Services::WorksheetsPath,
       "Google: The worksheet 'Sheet1' does not exist in the document 'wattlark'.", false},
      {PublishTarget::GoogleDocs, Services::RowsPath, "Google: Invalid response >> ", true},
      {PublishTarget::PowerMeter, Services::MeasurementsPath, "Google: Error Returned - ", true},
      {PublishTarget::Twitter, Services::UpdatePath, "Twitter: Invalid or no response", false},
  };
  const bool stalls = GetParam().behaviour == Behaviour::Stalled;
  Begin(stalls ? Milliseconds(300) : Milliseconds(20000));
  for (const Case& c : cases) {
    services.Behave(GetParam().behaviour, c.path);
    const std::string error = c.error + (c.quotes ? GetParam().quote : "");
    EXPECT_EQ(Publish(c.target), error) << c.path;
    EXPECT_EQ(listener.errors.back(), error);
    EXPECT_TRUE(monitor->IsUpdateTimerEnabled());
  }
  EXPECT_EQ(listener.errors.size(), std::size(cases));
  // With patience: a busy machine may take its time over what is right.
  services.Behave(Behaviour::Right);
  Begin();
  for (const Case& c : cases) EXPECT_TRUE(monitor->PublishNow(c.target, true).success) << c.path;
  EXPECT_THAT(Problems(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, MisbehavingServices,
    testing::Values(Misbehaviour{"Stalled", Behaviour::Stalled, ""},
                    Misbehaviour{"Cut", Behaviour::Cut, "half"},
                    Misbehaviour{"Endless", Behaviour::Endless, ""},
                    Misbehaviour{"Megabyte", Behaviour::Megabyte, std::string(65536, 'x')},
                    Misbehaviour{"WrongContent", Behaviour::WrongContent, "<html>Welcome</html>"},
                    Misbehaviour{"Unauthorized", Behaviour::Unauthorized, "Unauthorized"},
                    Misbehaviour{"NotFound", Behaviour::NotFound, "Not Found"},
                    Misbehaviour{"Failure", Behaviour::Failure, "Internal Error"}),
    [](const auto& test) { return test.param.name; });

TEST_F(ServicesTest, MayTakeTheirTime) {
  Begin();
  services.Behave(Behaviour::Slow);
  EXPECT_TRUE(monitor->PublishNow(PublishTarget::Pachube, true).success);
}

TEST_F(ServicesTest, RefuseCredentialsThatAreWrong) {
  Put("Settings", "GooglePassword", "guess");
  Put("Settings", "TwitterPassword", "guess");
  Begin();
  EXPECT_EQ(Publish(PublishTarget::GoogleDocs), "Google: Bad username or password");
  EXPECT_EQ(Publish(PublishTarget::Twitter), "Twitter: Bad username or password");
  EXPECT_THAT(prompts.signIns, IsEmpty());
  // A dialog would ask; the file menu shows it until it is cancelled.
  EXPECT_FALSE(monitor->PublishNow(PublishTarget::Twitter, false).success);
  EXPECT_EQ(prompts.signIns.size(), 1U);
}

TEST_F(ServicesTest, ThatAreNotThereTakeNoMemory) {
  // A port that nobody listens at any more.
  std::string closed;
  {
    const Services gone;
    closed = gone.URL(Services::FeedPath);
  }
  Put("Settings", "PachubeFeedURL", closed);
  Begin();
  const auto fail = [&](int times) {
    for (int i = 0; i < times; ++i) {
      ASSERT_EQ(Publish(PublishTarget::Pachube), "Pachube: Error Returned >> ");
      listener.infoTexts.clear();
      listener.errors.clear();
      listener.timerChanges.clear();
    }
  };
  fail(1200);  // the error list is full
  const std::size_t before = mallinfo2().uordblks;
  fail(10000);
  const std::size_t after = mallinfo2().uordblks;
  EXPECT_LT(after, before + std::size_t{64} * 1024);
}

}  // namespace
}  // namespace wattlark
