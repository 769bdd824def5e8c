#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/HttpClient.h"

namespace wattlark {

/// How a scripted server treats one request.
struct ScriptedAnswer {
  std::string body = {};
  long responseCode = 0;
  std::string info = {};
  HttpState end = HttpState::ResponseCompleted;
  std::vector<HttpState> states = {};  ///< before the end
  bool never = false;                  ///< only a cancellation ends the request
};

/// Remembers every request and answers by script, one event for every `Deliver`. A request without
/// a script completes with an empty body.
class ScriptedHttp final : public HttpClient {
 public:
  struct Request {
    std::string url;
    std::string operation;
    std::string body;
    std::string headers;
    friend bool operator==(const Request&, const Request&) = default;
  };
  std::vector<Request> requests;
  std::deque<ScriptedAnswer> answers;
  std::vector<std::size_t> chunkSizes;  ///< asked for
  std::size_t largestChunk = std::string::npos;
  int cancellations = 0;

  void Execute(const std::string& url, const std::string& operation, const std::string& body,
               const std::string& headers) override {
    if (busy_) throw std::runtime_error("Still executing the last request");
    requests.push_back({url, operation, body, headers});
    busy_ = true;
    answer_ = {};
    if (!answers.empty()) {
      answer_ = answers.front();
      answers.pop_front();
    }
    given_ = 0;
    nextState_ = 0;
  }
  std::string GetChunk(std::size_t size) override {
    chunkSizes.push_back(size);
    const std::string chunk = answer_.body.substr(given_, std::min(size, largestChunk));
    given_ += chunk.size();
    return chunk;
  }
  long ResponseCode() const override { return answer_.responseCode; }
  std::string ResponseInfo() const override { return answer_.info; }
  void Cancel() override {
    ++cancellations;
    if (busy_) End(HttpState::Error);
  }

  /// The next event of the request under way, if any.
  void Deliver() {
    if (!busy_) return;
    if (nextState_ < answer_.states.size()) {
      if (onState) onState(answer_.states[nextState_++]);
    } else if (!answer_.never) {
      End(answer_.end);
    }
  }
  bool IsBusy() const { return busy_; }

 private:
  void End(HttpState state) {
    busy_ = false;
    if (onState) onState(state);
  }

  ScriptedAnswer answer_;
  std::size_t given_ = 0;
  std::size_t nextState_ = 0;
  bool busy_ = false;
};

inline void PrintTo(const ScriptedHttp::Request& request, std::ostream* out) {
  *out << request.operation << " " << request.url << "\n"
       << request.headers << "\n\n"
       << request.body;
}

/// Delivers the events of its clients, one each a round, after whatever `onRound` does. Gives up a
/// wait that takes too many rounds.
class ScriptedPump final : public EventPump {
 public:
  explicit ScriptedPump(std::vector<ScriptedHttp*> served) : clients(std::move(served)) {}

  std::vector<ScriptedHttp*> clients;
  std::function<void(int round)> onRound;  ///< rounds count from 1
  bool isEnding = false;
  int rounds = 0;

  bool ProcessEvents() override {
    if (isEnding) return false;
    if (++rounds > 10000) throw std::logic_error("a wait never ends");
    if (onRound) onRound(rounds);
    for (ScriptedHttp* client : clients) client->Deliver();
    return !isEnding;
  }
};

}  // namespace wattlark
