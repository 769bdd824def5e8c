#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/HttpClient.h"

namespace wattlark {

/// What is known of a web service's last request.
struct WebRequestState {
  bool Done = true;  ///< false while a request is outstanding
  std::string Response;
  long ResponseCode = 0;     ///< 0 unless the transport failed
  std::string ProgressText;  ///< shown while the response is being received
};

struct WebRequest {
  std::string url;
  std::string operation;  ///< "GET", "POST" or "PUT"
  std::string body = {};
  std::string headers = {};  ///< lines separated by CR LF
  /// Nothing keeps the service's previous text.
  std::optional<std::string> progressText = {};
};

/// Sends the requests of one web service, one after another, and waits for their responses while
/// pending events run. What the client reports meanwhile is shown with the service's prefix.
class WebRequestRunner {
 public:
  /// `prefix` is "Pachube: " for instance; `showText` must not throw. `client` and `pump` must
  /// outlive this object, which alone hears the client's events.
  WebRequestRunner(HttpClient& client, EventPump& pump, std::string prefix,
                   std::function<void(const std::string&)> showText);
  ~WebRequestRunner();
  WebRequestRunner(const WebRequestRunner&) = delete;
  WebRequestRunner& operator=(const WebRequestRunner&) = delete;

  /// Sends a request and waits until it has ended, well or in an error; the answer is this
  /// request's alone, whatever ran meanwhile. Throws what the client says while it is busy with
  /// another one, std::runtime_error for a response above `LongestResponse`, and PublishStopped,
  /// after having cancelled the request, once the program is told to exit.
  WebRequestState ExecuteAndWait(const WebRequest& request);
  const WebRequestState& State() const { return state_; }

 private:
  struct Outcome {
    WebRequestState state;
    bool isTooLong = false;
  };

  void OnState(HttpState state);
  void EndRequest();
  bool CollectResponse();
  void Show(const std::string& text);

  HttpClient& client_;
  EventPump& pump_;
  const std::string prefix_;
  const std::function<void(const std::string&)> showText_;
  WebRequestState state_;
  Outcome* waiting_ = nullptr;
};

}  // namespace wattlark
