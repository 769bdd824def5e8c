#include "publish/PublishResult.h"
#include "publish/WebRequestRunner.h"
#include "publish/WebText.h"
#include "twins/Matchers.h"
#include "twins/ScriptedHttp.h"

namespace wattlark {
namespace {

struct WebRequestRunnerTest : testing::Test {
  WebRequestState Get(std::optional<std::string> progress = {}) {
    return runner.ExecuteAndWait({"http://host/path", "GET", "", "A: b", std::move(progress)});
  }

  ScriptedHttp http;
  ScriptedPump pump{{&http}};
  std::vector<std::string> texts;
  WebRequestRunner runner{http, pump,
                          "Google: ", [this](const std::string& text) { texts.push_back(text); }};
};

TEST_F(WebRequestRunnerTest, ShowsEveryStateWithThePrefixAndTheProgressTextWhileReceiving) {
  http.answers = {
      {.body = "answer",
       .info = "OK",
       .states = {HttpState::None, HttpState::ResolvingHost, HttpState::ReceivingResponse}}};
  const WebRequestState state =
      runner.ExecuteAndWait({"http://host/path", "POST", "body", "A: b\r\nC: d", {}});
  EXPECT_THAT(http.requests, ElementsAre(ScriptedHttp::Request{"http://host/path", "POST", "body",
                                                               "A: b\r\nC: d"}));
  EXPECT_TRUE(state.Done);
  EXPECT_EQ(state.Response, "answer");
  EXPECT_EQ(runner.State().Response, "answer");
  EXPECT_THAT(texts, ElementsAre("Google: Resolving host...", "Google: Receiving response...",
                                 "Google: OK"));
  texts.clear();
  http.answers = {{.states = {HttpState::ReceivingResponse}},
                  {.states = {HttpState::ReceivingResponse}}};
  Get("Posting data...");
  // A request without a text of its own keeps the one before.
  Get();
  EXPECT_THAT(texts, ElementsAre("Google: Posting data...", "Google: Posting data..."));
  texts.clear();
  // Once a request is done, receiving is all that is still shown.
  for (int late = 0; late <= 10; ++late) http.onState(static_cast<HttpState>(late));
  EXPECT_THAT(texts, ElementsAre("Google: Posting data..."));
}

TEST_F(WebRequestRunnerTest, JoinsChunksInOrderUpToABound) {
  std::string body(1025, 'a');
  body += "b";
  http.answers = {{body}};
  EXPECT_EQ(Get().Response, body);
  EXPECT_THAT(http.chunkSizes, Each(1024U));
  http.largestChunk = 7;
  http.answers = {{"twenty-one characters"}};
  EXPECT_EQ(Get().Response, "twenty-one characters");
  http.largestChunk = 1024;
  http.answers = {{std::string(LongestResponse, 'x')}, {std::string(LongestResponse + 1, 'x')}};
  EXPECT_EQ(Get().Response.size(), LongestResponse);
  EXPECT_THROW(Get(), std::runtime_error);
  EXPECT_TRUE(runner.State().Done);
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
  http.answers = {{.never = true}, {"later"}};
  pump.onRound = [&](int round) { pump.isEnding = round == 3; };
  EXPECT_THROW(Get(), PublishStopped);
  EXPECT_EQ(pump.rounds, 3);
  EXPECT_EQ(http.cancellations, 1);
  EXPECT_FALSE(http.IsBusy());
  EXPECT_TRUE(runner.State().Done);
  pump.isEnding = false;
  EXPECT_EQ(Get().Response, "later");
  // Nor is it left waiting by an event that throws.
  http.answers = {{.never = true}, {"in time"}};
  pump.onRound = [](int) { throw std::runtime_error("an event handler failed"); };
  EXPECT_THROW(Get(), std::runtime_error);
  EXPECT_FALSE(http.IsBusy());
  // A response that comes with the exit is taken.
  pump.onRound = [&](int) { pump.isEnding = true; };
  EXPECT_EQ(Get().Response, "in time");
}

TEST(QuoteResponse, ShowsControlCharactersAsBlanks) {
  using std::string_literals::operator""s;
  const std::pair<std::string, std::string> cases[] = {
      {"line 1\r\nline 2\n", "line 1\r\nline 2\n"},
      {"a\tb\0c\x1B[2Jd\x7F"s, "a b c [2Jd "},
      {"\xC2\x85\xC2\x9F\xC2\xA0|", "  \xC2\xA0|"},  // C1 controls, and a no-break space
      {"Zürich €\xC2", "Zürich €\xC2"}};
  for (const auto& [response, quote] : cases) EXPECT_EQ(QuoteResponse(response), quote);
  const std::string full(65536, 'x');
  EXPECT_EQ(QuoteResponse(full + "more"), full);
  EXPECT_EQ(QuoteResponse(full.substr(1) + "é"), full.substr(1));
  EXPECT_EQ(QuoteResponse(full.substr(3) + "€|").size(), 65536U);
  EXPECT_EQ(QuoteResponse(full.substr(2) + "€|"), full.substr(2));
  EXPECT_EQ(QuoteResponse(std::string(70000, '\x80')).size(), 65533U);
}

TEST(QuoteResponse, MasksSecrets) {
  EXPECT_EQ(QuoteResponse("key=secret&again=secret.", {"secret"}), "key=****&again=****.");
  EXPECT_EQ(QuoteResponse("token and key", {"key", "", "token"}), "**** and ****");
  EXPECT_EQ(QuoteResponse("5%25 or 5%", {"%"}), "5**** or 5****") << "the longer form first";
  EXPECT_EQ(QuoteResponse("a&b é, a&amp;b é, a%26b%20%C3%A9, a%26b+%c3%a9", {"a&b é"}),
            "****, ****, ****, ****");
  // Also one that the bound would cut in two.
  const std::string filler(65533, 'x');
  EXPECT_EQ(QuoteResponse(filler + "secret", {"secret"}), filler + "***");
}

TEST(EscapeXml, LeavesTheDocumentWhole) {
  EXPECT_EQ(EscapeXml("<a href='x' b=\"y\">&"),
            "&lt;a href=&apos;x&apos; b=&quot;y&quot;&gt;&amp;");
  EXPECT_EQ(EscapeXml("\x01\tü\x7F"), " \tü ");
}

}  // namespace
}  // namespace wattlark
