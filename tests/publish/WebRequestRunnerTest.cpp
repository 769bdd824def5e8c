#include <gmock/gmock.h>

#include "publish/PublishResult.h"
#include "publish/WebRequestRunner.h"
#include "twins/ScriptedHttp.h"

namespace wattlark {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

struct WebRequestRunnerTest : testing::Test {
  WebRequestState Get(std::optional<std::string> progress = {}) {
    return runner.ExecuteAndWait({"http://host/path", "GET", "", "A: b", std::move(progress)});
  }

  /// Why a request is not carried out.
  std::string Refusal(std::optional<std::string> progress = {}) {
    try {
      return "none: " + Get(std::move(progress)).Response;
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }

  ScriptedHttp http;
  ScriptedPump pump{{&http}};
  std::vector<std::string> texts;
  WebRequestRunner runner{http, pump,
                          "Google: ", [this](const std::string& text) { texts.push_back(text); }};
};

TEST_F(WebRequestRunnerTest, ShowsEveryStateWithThePrefix) {
  http.answers = {
      {"answer",
       0,
       "OK",
       HttpState::ResponseCompleted,
       {HttpState::None, HttpState::ResolvingHost, HttpState::HostResolved, HttpState::Connecting,
        HttpState::Connected, HttpState::Requesting, HttpState::RequestSent,
        HttpState::ReceivingResponse, HttpState::ResponseReceived, HttpState::Disconnecting,
        HttpState::Disconnected}}};
  const WebRequestState state =
      runner.ExecuteAndWait({"http://host/path", "POST", "body", "A: b\r\nC: d", {}});
  EXPECT_THAT(http.requests, ElementsAre(ScriptedHttp::Request{"http://host/path", "POST", "body",
                                                               "A: b\r\nC: d"}));
  EXPECT_TRUE(state.Done);
  EXPECT_EQ(state.Response, "answer");
  EXPECT_EQ(runner.State().Response, "answer");
  EXPECT_THAT(texts, ElementsAre("Google: Resolving host...", "Google: Host resolved",
                                 "Google: Connecting...", "Google: Connected",
                                 "Google: Requesting...", "Google: Request sent",
                                 "Google: Receiving response...", "Google: Response received",
                                 "Google: Disconnecting...", "Google: Disconnected", "Google: OK"));
}

TEST_F(WebRequestRunnerTest, ShowsTheProgressTextWhileReceiving) {
  const std::vector<HttpState> receiving{HttpState::ReceivingResponse};
  http.answers = {{"", 0, "", HttpState::ResponseCompleted, receiving},
                  {"", 0, "", HttpState::ResponseCompleted, receiving}};
  Get("Posting data...");
  // A request without a text of its own keeps the one before.
  Get();
  EXPECT_THAT(texts, ElementsAre("Google: Posting data...", "Google: Posting data..."));
  texts.clear();
  // Once a request is done, receiving is all that is still shown.
  for (int state = 0; state <= 10; ++state) http.onState(static_cast<HttpState>(state));
  EXPECT_THAT(texts, ElementsAre("Google: Posting data..."));
}

TEST_F(WebRequestRunnerTest, JoinsChunksInOrder) {
  for (const std::size_t size : {0U, 1023U, 1024U, 1025U, 5000U}) {
    std::string body;
    for (std::size_t i = 0; i < size; ++i) body += static_cast<char>('a' + i % 26);
    http.answers = {{body}};
    EXPECT_EQ(Get().Response, body);
    EXPECT_THAT(http.chunkSizes, Each(1024U));
  }
  http.largestChunk = 7;
  http.answers = {{"twenty-one characters"}};
  EXPECT_EQ(Get().Response, "twenty-one characters");
}

TEST_F(WebRequestRunnerTest, KeepsWhatATransportErrorLeaves) {
  http.answers = {{"half a resp", 12007, "Host not found", HttpState::Error}};
  const WebRequestState state = Get();
  EXPECT_EQ(state.Response, "half a resp");
  EXPECT_EQ(state.ResponseCode, 12007);
  EXPECT_THAT(texts, ElementsAre("Google: Host not found"));
  // Nothing of it is left for the next request.
  const WebRequestState next = Get();
  EXPECT_EQ(next.Response, "");
  EXPECT_EQ(next.ResponseCode, 0);
}

TEST_F(WebRequestRunnerTest, RefusesAResponseWithoutEnd) {
  http.answers = {{std::string(LongestResponse, 'x')}, {std::string(LongestResponse + 1, 'x')}};
  EXPECT_EQ(Get().Response.size(), LongestResponse);
  EXPECT_EQ(Refusal(), "The response is longer than 4 MiB");
  EXPECT_THAT(runner.State().Response, IsEmpty());
  EXPECT_TRUE(runner.State().Done);
}

TEST_F(WebRequestRunnerTest, RefusesASecondRequestOfABusyClient) {
  http.answers = {{"first",
                   0,
                   "",
                   HttpState::ResponseCompleted,
                   {HttpState::Connecting, HttpState::ReceivingResponse}}};
  std::string refusal;
  pump.onRound = [&](int round) {
    if (round == 1) refusal = Refusal("Second...");
  };
  EXPECT_EQ(Get("First...").Response, "first");
  EXPECT_EQ(refusal, "Still executing the last request");
  // The refused one has changed nothing of what is shown.
  EXPECT_THAT(texts, ElementsAre("Google: Connecting...", "Google: First..."));
}

// A menu command that comes in the same round as the response, and posts through the same client.
TEST_F(WebRequestRunnerTest, GivesEveryRequestItsOwnResponse) {
  http.answers = {{"outer"}, {"inner"}};
  std::string inner;
  pump.onRound = [&](int round) {
    if (round != 1) return;
    http.Deliver();
    inner = Get().Response;
  };
  EXPECT_EQ(Get().Response, "outer");
  EXPECT_EQ(inner, "inner");
}

TEST_F(WebRequestRunnerTest, EndsTheWaitWhenTheProgramIsToldToExit) {
  http.answers = {{"", 0, "", HttpState::ResponseCompleted, {}, true}, {"later"}};
  pump.onRound = [&](int round) { pump.isEnding = round == 3; };
  EXPECT_THROW(Get(), PublishStopped);
  EXPECT_EQ(pump.rounds, 3);
  EXPECT_EQ(http.cancellations, 1);
  EXPECT_FALSE(http.IsBusy());
  EXPECT_TRUE(runner.State().Done);
  pump.isEnding = false;
  EXPECT_EQ(Get().Response, "later");
}

TEST_F(WebRequestRunnerTest, IsNotLeftWaitingByAnEventThatThrows) {
  http.answers = {{"", 0, "", HttpState::ResponseCompleted, {}, true}, {"in time"}};
  pump.onRound = [](int) { throw std::runtime_error("an event handler failed"); };
  EXPECT_THROW(Get(), std::runtime_error);
  EXPECT_FALSE(http.IsBusy());
  // A response that comes with the exit is taken.
  pump.onRound = [&](int) { pump.isEnding = true; };
  EXPECT_EQ(Get().Response, "in time");
  EXPECT_EQ(http.cancellations, 1);
}

TEST(RunPublisher, TellsWhatEndedARun) {
  const auto result = [](auto thrown) {
    return RunPublisher("Google", [&]() -> std::string { throw thrown; });
  };
  EXPECT_EQ(result(PublishError("Wattlark: Invalid")).text, "Wattlark: Invalid");
  EXPECT_EQ(result(std::runtime_error("still busy")).text, "Google: still busy");
  EXPECT_EQ(result(PublishStopped()).text, "");
  EXPECT_FALSE(result(PublishStopped()).success);
}

}  // namespace
}  // namespace wattlark
