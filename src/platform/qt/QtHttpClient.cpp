#include "platform/qt/QtHttpClient.h"

#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QSslError>
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/qt/WebAddress.h"

namespace wattlark {

namespace {

constexpr qint64 kReadAhead = qint64{256} * 1024;
constexpr int kMostRedirects = 10;

// Qt's own texts name the address, which may hold a key.
const char* ErrorText(QNetworkReply::NetworkError error) {
  switch (error) {
    case QNetworkReply::ConnectionRefusedError:
      return "Connection refused";
    case QNetworkReply::ContentReSendError:
      return "The server did not answer a request that is not sent twice";
    case QNetworkReply::RemoteHostClosedError:
      return "The server closed the connection before the end of its response";
    case QNetworkReply::HostNotFoundError:
      return "Host not found";
    case QNetworkReply::TimeoutError:
      return "The connection timed out";
    case QNetworkReply::SslHandshakeFailedError:
      return "No secure connection to the server could be made";
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError:
      return "The network is not available";
    default:
      return "The connection to the server failed";
  }
}

bool IsSameOrigin(const QUrl& one, const QUrl& other) {
  const auto port = [](const QUrl& url) { return url.port(url.scheme() == "https" ? 443 : 80); };
  return one.scheme() == other.scheme() && one.host() == other.host() && port(one) == port(other);
}

bool KeepsOperation(int redirectStatus) {
  return redirectStatus == 307 || redirectStatus == 308;
}

void SetHeaders(QNetworkRequest& request, const std::string& headers) {
  const QByteArray lines = QByteArray::fromStdString(headers);
  for (const QByteArray& line : lines.split('\n')) {
    const qsizetype colon = line.indexOf(':');
    if (colon <= 0) continue;
    request.setRawHeader(line.left(colon).trimmed(), line.mid(colon + 1).trimmed());
  }
}

QNetworkRequest MakeRequest(const WebAddress& address, const std::string& headers) {
  QNetworkRequest request(address.url);
  request.setRawHeader("User-Agent", "Wattlark/" WATTLARK_VERSION);
  // A body that unpacks to many times its size would get round the bound on responses.
  request.setRawHeader("Accept-Encoding", "identity");
  // A connection that is kept may end just when the next request goes out on it.
  request.setRawHeader("Connection", "close");
  SetHeaders(request, headers);
  if (!address.authorization.isEmpty()) {
    request.setRawHeader("Authorization", address.authorization);
  }
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                       QNetworkRequest::ManualRedirectPolicy);
  request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
  request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
  request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
  return request;
}

// A body that is sent once. Qt sends a request again whose connection ends unanswered, but the
// server may have acted on it: a status would be posted twice. It asks in the same way, and does
// not say so, on behalf of a redirect that keeps the operation.
class BodyForOnce final : public QIODevice {
 public:
  explicit BodyForOnce(QByteArray bytes) : bytes_(std::move(bytes)) { open(ReadOnly | Unbuffered); }
  qint64 size() const override { return bytes_.size(); }
  bool seek(qint64 offset) override { return offset == pos() && QIODevice::seek(offset); }

 protected:
  qint64 readData(char* data, qint64 length) override {
    const qint64 count = std::min(length, size() - pos());
    std::copy_n(bytes_.constData() + pos(), count, data);
    return count;
  }
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  const QByteArray bytes_;
};

}  // namespace

QtHttpClient::QtHttpClient(std::chrono::milliseconds limit) {
  timer_.setSingleShot(true);
  timer_.setInterval(limit);
  connect(&timer_, &QTimer::timeout, this, [this] {
    Fail(HttpTimedOut,
         "No complete answer within " + std::to_string(timer_.interval() / 1000) + " s");
  });
}

QtHttpClient::~QtHttpClient() {
  onState = nullptr;
  Cancel();
}

void QtHttpClient::Execute(const std::string& url, const std::string& operation,
                           const std::string& body, const std::string& headers) {
  if (busy_) throw std::runtime_error("Still executing the last request");
  busy_ = true;
  ++request_;
  body_.clear();
  given_ = 0;
  sslProblem_.clear();
  responseCode_ = 0;
  responseInfo_.clear();
  const std::optional<WebAddress> address = ParseWebAddress(url);
  if (!address) {
    Fail(BadAddress, "The address is not valid");
    return;
  }
  outgoing_ = MakeRequest(*address, headers);
  operation_ = operation;
  outgoingBody_ = QByteArray::fromStdString(body);
  mayLeaveHost_ = operation == "GET" && !outgoing_.hasRawHeader("Authorization");
  redirects_ = 0;
  timer_.start();
  Post(HttpState::ResolvingHost);
  Start();
}

void QtHttpClient::Start() {
  if (!manager_) manager_ = std::make_unique<QNetworkAccessManager>();
  if (operation_ == "GET") {
    reply_ = manager_->get(outgoing_);
  } else {
    auto* body = new BodyForOnce(outgoingBody_);
    reply_ = operation_ == "PUT" ? manager_->put(outgoing_, body) : manager_->post(outgoing_, body);
    body->setParent(reply_);
  }
  reply_->setReadBufferSize(kReadAhead);
  ConnectReply();
}

void QtHttpClient::ConnectReply() {
  connect(reply_, &QNetworkReply::socketStartedConnecting, this,
          [this] { Post(HttpState::Connecting); });
  connect(reply_, &QNetworkReply::encrypted, this, [this] { Post(HttpState::Connected); });
  connect(reply_, &QNetworkReply::requestSent, this, [this] { Post(HttpState::RequestSent); });
  connect(reply_, &QNetworkReply::metaDataChanged, this,
          [this] { Post(HttpState::ReceivingResponse); });
  connect(reply_, &QNetworkReply::readyRead, this, &QtHttpClient::TakeBody);
  connect(reply_, &QNetworkReply::finished, this, &QtHttpClient::OnFinished);
  connect(reply_, &QNetworkReply::sslErrors, this, [this](const QList<QSslError>& errors) {
    if (!errors.isEmpty()) sslProblem_ = errors.front().errorString().toStdString();
  });
}

void QtHttpClient::Redirect(int status, const QUrl& target) {
  const QUrl present = outgoing_.url();
  const bool isAllowed =
      IsSameOrigin(present, target) || (mayLeaveHost_ && present.scheme() == target.scheme());
  if (!isAllowed) {
    Fail(Redirected, "The server redirects to another place");
  } else if (++redirects_ > kMostRedirects) {
    Fail(Redirected, "The server redirects in circles");
  } else {
    ReleaseReply();
    body_.clear();
    if (!KeepsOperation(status)) operation_ = "GET";
    outgoing_.setUrl(target);
    Start();
  }
}

void QtHttpClient::TakeBody() {
  const QByteArray part = reply_->readAll();
  if (body_.size() + static_cast<std::size_t>(part.size()) > LongestResponse) {
    body_.clear();
    Fail(TooLong, "The response is too long");
    return;
  }
  body_.append(part.constData(), static_cast<std::size_t>(part.size()));
}

void QtHttpClient::OnFinished() {
  TakeBody();
  if (reply_ == nullptr) return;  // the response was too long
  const QNetworkReply::NetworkError error = reply_->error();
  const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  const QUrl target = reply_->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
  if (error == QNetworkReply::NoError && !target.isEmpty()) {
    Redirect(status, outgoing_.url().resolved(target));
    return;
  }
  // From 201 on Qt's errors say what the server answered, but for those of a bad connection.
  // Without an answer there is no status, or the one that Qt starts with.
  const bool isAnswer =
      status >= 200 &&
      (error == QNetworkReply::NoError ||
       (error >= QNetworkReply::ContentAccessDenied && error != QNetworkReply::ContentReSendError &&
        error != QNetworkReply::ProtocolFailure && error != QNetworkReply::ProtocolUnknownError));
  if (isAnswer) {
    if (status >= 300) responseInfo_ = "The server answers with status " + std::to_string(status);
    Post(HttpState::ResponseReceived);
  } else {
    const auto failure =
        error == QNetworkReply::NoError ? QNetworkReply::RemoteHostClosedError : error;
    const bool isTimeOut = failure == QNetworkReply::TimeoutError;
    responseCode_ = isTimeOut ? HttpTimedOut : long{failure};
    responseInfo_ = ErrorText(failure);
    if (!sslProblem_.empty()) responseInfo_ += ": " + sslProblem_;
  }
  PostEnd();
}

void QtHttpClient::Fail(long responseCode, const std::string& info) {
  responseCode_ = responseCode;
  responseInfo_ = info;
  PostEnd();
}

// Every event comes from the event loop, in the order in which it was posted.
void QtHttpClient::Post(HttpState state) {
  QMetaObject::invokeMethod(
      this,
      [this, state, request = request_] {
        if (request == request_ && busy_ && onState) onState(state);
      },
      Qt::QueuedConnection);
}

void QtHttpClient::PostEnd() {
  timer_.stop();
  ReleaseReply();
  QMetaObject::invokeMethod(
      this,
      [this, request = request_] {
        if (request == request_ && busy_) EndRequest();
      },
      Qt::QueuedConnection);
}

// The reply may be raising a signal: it goes once the event loop has come round.
void QtHttpClient::ReleaseReply() {
  if (reply_ == nullptr) return;
  QNetworkReply* reply = std::exchange(reply_, nullptr);
  reply->disconnect(this);
  reply->abort();
  reply->deleteLater();
}

void QtHttpClient::EndRequest() {
  busy_ = false;
  outgoing_ = {};
  outgoingBody_.clear();
  if (onState) onState(responseCode_ == 0 ? HttpState::ResponseCompleted : HttpState::Error);
}

std::string QtHttpClient::GetChunk(std::size_t size) {
  const std::string chunk = body_.substr(given_, size);
  given_ += chunk.size();
  return chunk;
}

void QtHttpClient::Cancel() {
  if (!busy_) return;
  Fail(Cancelled, "Cancelled");
  EndRequest();
}

}  // namespace wattlark
