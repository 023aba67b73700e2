#include "update/library/UpdateDownload.h"

#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QSslCertificate>

#include "foundation/Weak.h"

namespace quillmere {
namespace {

constexpr int kOk = 200;
constexpr qint64 kReadAhead = qint64{256} * 1024;

QNetworkRequest requestFor(const QUrl& url, const QSslConfiguration& security, std::chrono::milliseconds silence) {
  QNetworkRequest request(url);
  request.setSslConfiguration(security);
  request.setTransferTimeout(static_cast<int>(silence.count()));
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
  request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
  request.setRawHeader("User-Agent", "Quillmere");  // and nothing of the person's machine
  request.setRawHeader("Accept-Encoding", "identity");
  return request;
}

bool isRedirect(int status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

UpdateFailure failureOf(const QNetworkReply& reply, qint64 received) {
  switch (reply.error()) {
    case QNetworkReply::SslHandshakeFailedError:
      return UpdateFailure::notTrusted;
    case QNetworkReply::OperationCanceledError:  // by the time limit: nobody else cancels and still listens
    case QNetworkReply::TimeoutError:
      return UpdateFailure::tooSlow;
    default:
      return received > 0 ? UpdateFailure::cutShort : UpdateFailure::notReached;
  }
}

}  // namespace

bool isSameServer(const QUrl& from, const QUrl& to) {
  constexpr int kHttps = 443;
  return to.scheme() == QLatin1String("https") && to.userInfo().isEmpty() && !to.host().isEmpty() &&
         to.host() == from.host() && to.port(kHttps) == from.port(kHttps);
}

/// One file, over all the places that its server sends us to.
class UpdateDownload::Live final : public Transfer {
 public:
  Live(UpdateDownload& owner, TransferRequest request) : owner_(owner), request_(std::move(request)) {
    limit_ = owner_.executor_.startDelay(request_.longest, [this](bool elapsed) {
      limit_.reset();
      if (elapsed) end(UpdateFailure::tooSlow);
    });
    watchPace();
    if (request_.url.scheme() == QLatin1String("https")) {
      ask(request_.url);
      return;
    }
    // In a later turn, as every other end.
    owner_.executor_.post([weak = lifetime_.weak(this)] {
      if (weak) weak->end(UpdateFailure::redirected);
    });
  }
  ~Live() override {
    request_.ended = nullptr;
    stop();
  }

 private:
  void ask(const QUrl& url) {
    QNetworkReply* reply = owner_.network_.get(requestFor(url, owner_.security_, owner_.patience_.silence));
    reply_.reset(reply);
    // What isn't taken stays with the server, so that a flood fills no memory.
    reply->setReadBufferSize(kReadAhead);
    // A page that comes with a refusal or a redirect isn't waited for.
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [this] { status() == kOk ? takeAll() : finish(); });
    QObject::connect(reply, &QNetworkReply::finished, reply, [this] { finish(); });
  }

  int status() const { return reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }

  void takeAll() {
    if (status() != kOk) return;
    const QByteArray bytes = reply_->readAll();
    received_ += bytes.size();
    receivedInPeriod_ += bytes.size();
    if (received_ > request_.mostBytes) return end(UpdateFailure::tooLarge);
    if (bytes.isEmpty()) return;
    const auto weak = lifetime_.weak(this);
    const bool isKept = request_.take(bytes);
    if (weak && !isKept) end(UpdateFailure::notStored);
  }

  void finish() {
    if (isRedirect(status())) return follow();
    const auto weak = lifetime_.weak(this);
    takeAll();
    if (!weak || !reply_) return;
    if (reply_->error() != QNetworkReply::NoError) return end(failureOf(*reply_, received_));
    end(status() == kOk ? std::nullopt : std::optional(UpdateFailure::notReached));
  }

  void follow() {
    const QUrl from = reply_->url();
    const QByteArray place = reply_->rawHeader("Location");
    const QUrl to = from.resolved(QUrl::fromEncoded(place, QUrl::StrictMode));
    if (place.isEmpty() || !to.isValid() || !isSameServer(from, to)) return end(UpdateFailure::redirected);
    if (++redirects_ > kMostRedirects) return end(UpdateFailure::redirected);
    ask(to);
  }

  void watchPace() {
    pace_ = owner_.executor_.startDelay(owner_.patience_.period, [this](bool elapsed) {
      pace_.reset();
      if (!elapsed) return;
      if (std::exchange(receivedInPeriod_, 0) < owner_.patience_.leastBytes) return end(UpdateFailure::tooSlow);
      watchPace();
    });
  }

  void stop() {
    for (auto* delay : {&limit_, &pace_}) {
      if (const auto id = std::exchange(*delay, std::nullopt)) owner_.executor_.cancelDelay(*id);
    }
    reply_.reset();
  }

  void end(std::optional<UpdateFailure> failure) {
    stop();
    if (const auto ended = std::exchange(request_.ended, nullptr)) ended(failure);
  }

  /// A reply that is destroyed in one of its own signals would go on in memory that is no longer its own.
  struct Abandon {
    void operator()(QNetworkReply* reply) const {
      reply->disconnect();
      reply->abort();
      reply->deleteLater();
    }
  };
  UpdateDownload& owner_;
  TransferRequest request_;
  std::unique_ptr<QNetworkReply, Abandon> reply_;
  std::optional<Executor::DelayID> limit_;
  std::optional<Executor::DelayID> pace_;
  qint64 received_ = 0;
  qint64 receivedInPeriod_ = 0;
  int redirects_ = 0;
  Lifetime lifetime_;
};

UpdateDownload::UpdateDownload(Executor& executor, const QString& authority, TransferPatience patience)
    : executor_(executor), patience_(patience), security_(QSslConfiguration::defaultConfiguration()) {
  security_.setProtocol(QSsl::TlsV1_2OrLater);
  security_.setPeerVerifyMode(QSslSocket::VerifyPeer);
  if (!authority.isEmpty()) security_.setCaCertificates(QSslCertificate::fromPath(authority));
  network_.setAutoDeleteReplies(false);
}

std::unique_ptr<Transfer> UpdateDownload::begin(TransferRequest request) {
  return std::make_unique<Live>(*this, std::move(request));
}

}  // namespace quillmere
