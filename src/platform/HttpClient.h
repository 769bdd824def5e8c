#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace wattlark {

/// What an HTTP client reports of the request under way.
enum class HttpState {
  None = 0,
  ResolvingHost = 1,
  HostResolved = 2,
  Connecting = 3,
  Connected = 4,
  Requesting = 5,
  RequestSent = 6,
  ReceivingResponse = 7,
  ResponseReceived = 8,
  Disconnecting = 9,
  Disconnected = 10,
  Error = 11,
  ResponseCompleted = 12,
};

/// A response longer than this many bytes is an error: an endless one must end.
inline constexpr std::size_t LongestResponse = std::size_t{4} * 1024 * 1024;

/// Response code of a request that was not answered in time.
inline constexpr long HttpTimedOut = 35761;

/// One asynchronous HTTP client: one request at a time. Every request ends in `Error` or
/// `ResponseCompleted`, after 60 seconds at the latest. Events come on the one thread, while
/// pending events are processed, never from within `Execute`.
class HttpClient {
 public:
  virtual ~HttpClient() = default;
  /// Starts a request. `operation` is "GET", "POST" or "PUT"; `headers` are lines separated by CR
  /// LF; user name and password may stand in the URL's authority part, as they are, and are sent as
  /// HTTP basic credentials. Throws std::runtime_error while a request is under way.
  virtual void Execute(const std::string& url, const std::string& operation,
                       const std::string& body, const std::string& headers) = 0;
  /// The next bytes of the response body, at most `size`; empty when all has been read.
  virtual std::string GetChunk(std::size_t size) = 0;
  /// 0 unless the transport failed; valid after the request ended.
  virtual long ResponseCode() const = 0;
  /// A readable description of how the request ended, without URL, credentials or header lines;
  /// empty when there is nothing to say.
  virtual std::string ResponseInfo() const = 0;
  /// Ends a request that is under way in `Error`; nothing otherwise.
  virtual void Cancel() = 0;

  std::function<void(HttpState)> onState;
};

/// Lets pending events run while the program waits.
class EventPump {
 public:
  virtual ~EventPump() = default;
  /// Waits for events without using the processor, and runs them. False once the program is told to
  /// exit: the wait is to end.
  virtual bool ProcessEvents() = 0;
};

}  // namespace wattlark
