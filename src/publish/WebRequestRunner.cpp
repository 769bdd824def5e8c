#include "publish/WebRequestRunner.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "publish/PublishResult.h"

namespace wattlark {

namespace {

constexpr std::size_t kChunkSize = 1024;

const char* StateText(HttpState state) {
  switch (state) {
    case HttpState::ResolvingHost:
      return "Resolving host...";
    case HttpState::HostResolved:
      return "Host resolved";
    case HttpState::Connecting:
      return "Connecting...";
    case HttpState::Connected:
      return "Connected";
    case HttpState::Requesting:
      return "Requesting...";
    case HttpState::RequestSent:
      return "Request sent";
    case HttpState::ReceivingResponse:
      return "Receiving response...";
    case HttpState::ResponseReceived:
      return "Response received";
    case HttpState::Disconnecting:
      return "Disconnecting...";
    case HttpState::Disconnected:
      return "Disconnected";
    case HttpState::None:
    case HttpState::Error:
    case HttpState::ResponseCompleted:
      break;
  }
  return "";
}

}  // namespace

WebRequestRunner::WebRequestRunner(HttpClient& client, EventPump& pump, std::string prefix,
                                   std::function<void(const std::string&)> showText)
    : client_(client), pump_(pump), prefix_(std::move(prefix)), showText_(std::move(showText)) {
  client_.onState = [this](HttpState state) { OnState(state); };
}

WebRequestRunner::~WebRequestRunner() {
  client_.onState = nullptr;
}

WebRequestState WebRequestRunner::ExecuteAndWait(const WebRequest& request) {
  const bool wasDone = std::exchange(state_.Done, false);
  const std::string previousText = state_.ProgressText;
  if (request.progressText) state_.ProgressText = *request.progressText;
  try {
    client_.Execute(request.url, request.operation, request.body, request.headers);
  } catch (...) {
    // Another request may be under way: its state stays as it was.
    state_.Done = wasDone;
    state_.ProgressText = previousText;
    throw;
  }
  // On the heap: optimising, gcc 12 does not see that a wait ends only once nothing points here.
  const auto outcome = std::make_unique<Outcome>();
  outcome->state.Done = false;
  waiting_ = outcome.get();
  try {
    while (!outcome->state.Done) {
      if (!pump_.ProcessEvents() && !outcome->state.Done) throw PublishStopped();
    }
  } catch (...) {
    // An event that ends this request may come while it is cancelled, or never.
    if (waiting_ == outcome.get()) {
      waiting_ = nullptr;
      client_.Cancel();
      state_.Done = true;
    }
    throw;
  }
  if (outcome->isTooLong) {
    throw std::runtime_error("The response is longer than " +
                             std::to_string(LongestResponse / (1024 * 1024)) + " MiB");
  }
  return std::move(outcome->state);
}

void WebRequestRunner::OnState(HttpState state) {
  if (state == HttpState::Error || state == HttpState::ResponseCompleted) {
    EndRequest();
  } else if (state == HttpState::ReceivingResponse) {
    Show(state_.ProgressText.empty() ? StateText(state) : state_.ProgressText);
  } else if (!state_.Done) {
    Show(StateText(state));
  }
}

void WebRequestRunner::EndRequest() {
  state_.Done = true;
  const bool isWhole = CollectResponse();
  state_.ResponseCode = client_.ResponseCode();
  if (waiting_ != nullptr) {
    waiting_->state = state_;
    waiting_->isTooLong = !isWhole;
    waiting_ = nullptr;
  }
  Show(client_.ResponseInfo());
}

// False when the response goes on beyond the bound.
bool WebRequestRunner::CollectResponse() {
  state_.Response.clear();
  for (;;) {
    const std::string chunk = client_.GetChunk(kChunkSize);
    if (chunk.empty()) return true;
    state_.Response += chunk;
    if (state_.Response.size() > LongestResponse) {
      state_.Response = {};
      return false;
    }
  }
}

void WebRequestRunner::Show(const std::string& text) {
  if (!text.empty()) showText_(prefix_ + text);
}

}  // namespace wattlark
