#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <memory>
#include <string>

#include "platform/HttpClient.h"

class QNetworkAccessManager;

namespace wattlark {

/// Requests over HTTP 1.1 and HTTPS. Certificates are checked. Redirects stay on the scheme; one to
/// another host or port is followed only by a GET that shows nobody's authorization. A body is sent
/// once at most, however its connection ends and wherever it is redirected to. Nothing is kept
/// between requests: no cookies, no cache, no credentials, no connection.
class QtHttpClient final : public QObject, public HttpClient {
  Q_OBJECT

 public:
  /// `limit` ends every request that takes longer. Needs an application object.
  explicit QtHttpClient(std::chrono::milliseconds limit = std::chrono::seconds(60));
  ~QtHttpClient() override;

  void Execute(const std::string& url, const std::string& operation, const std::string& body,
               const std::string& headers) override;
  std::string GetChunk(std::size_t size) override;
  long ResponseCode() const override { return responseCode_; }
  std::string ResponseInfo() const override { return responseInfo_; }
  /// Raises its event at once.
  void Cancel() override;

 private:
  enum Failure : long { BadAddress = 1001, TooLong, Redirected, Cancelled };

  void Start();
  void ConnectReply();
  void Redirect(int status, const QUrl& target);
  void ReleaseReply();
  void TakeBody();
  void OnFinished();
  /// Ends the request from outside the reply: its own end is not waited for.
  void Fail(long responseCode, const std::string& info);
  void Post(HttpState state);
  void PostEnd();
  void EndRequest();

  std::unique_ptr<QNetworkAccessManager> manager_;  ///< from the first request on
  QTimer timer_;
  QNetworkReply* reply_ = nullptr;
  QNetworkRequest outgoing_;
  std::string operation_;
  QByteArray outgoingBody_;
  int redirects_ = 0;
  bool busy_ = false;
  bool mayLeaveHost_ = false;
  unsigned request_ = 0;  ///< events of earlier requests are dropped
  std::string body_;
  std::size_t given_ = 0;
  std::string sslProblem_;
  long responseCode_ = 0;
  std::string responseInfo_;
};

}  // namespace wattlark
