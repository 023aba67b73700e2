#include "analysis/LocalHttpClient.h"

#include <utility>

#include "analysis/HttpExchange.h"

namespace quillmere {

/// Waits for an exchange. The exchange, which the client owns, owns the waiting coroutine, and never the other way
/// round.
class LocalHttpClient::Sending {
 public:
  explicit Sending(LocalHttpClient& client) : client_(client) {}

  void start(const LocalServerAddress& address, const QByteArray& bytes, Duration limit) {
    const auto exchange =
        std::make_shared<HttpExchange>(client_.executor_, [this](HttpOutcome outcome) { finish(std::move(outcome)); });
    exchange_ = exchange;
    client_.running_.insert(exchange);
    exchange->start(address, bytes, limit);
  }

  bool await_ready() const { return outcome_.has_value(); }
  template <typename Promise>
  bool await_suspend(std::coroutine_handle<Promise> coroutine) {
    task_ = coroutine.promise().state.get();
    const auto exchange = exchange_.lock();
    if (task_->isCancelled) exchange->cancel();
    if (outcome_) return false;
    exchange->keep(std::make_shared<Continuation>(coroutine));
    task_->onCancel = [weak = exchange_] {
      if (const auto running = weak.lock()) running->cancel();
    };
    return true;
  }
  HttpOutcome await_resume() {
    if (task_) task_->onCancel = nullptr;
    return *std::move(outcome_);
  }

 private:
  void finish(HttpOutcome outcome) {
    outcome_ = std::move(outcome);
    client_.running_.erase(exchange_.lock());
  }

  LocalHttpClient& client_;
  std::weak_ptr<HttpExchange> exchange_;
  std::optional<HttpOutcome> outcome_;
  detail::TaskStateBase* task_ = nullptr;  // of the coroutine that this stands in
};

LocalHttpClient::LocalHttpClient(Executor& executor) : executor_(executor) {}
LocalHttpClient::~LocalHttpClient() = default;

Task<HttpOutcome> LocalHttpClient::send(LocalServerAddress address, HttpRequest request, Duration limit) {
  Sending sending(*this);
  sending.start(address, encodedRequest(request, address), limit);
  HttpOutcome outcome = co_await sending;
  co_return outcome;
}

QByteArray encodedRequest(const HttpRequest& request, const LocalServerAddress& address) {
  QByteArray bytes = request.method + " " + request.path + " HTTP/1.1\r\nHost: " + address.hostHeader() +
                     "\r\nAccept: application/json\r\nAccept-Encoding: identity\r\nConnection: close\r\n";
  if (!request.body.isEmpty()) {
    bytes += "Content-Type: application/json\r\nContent-Length: " + QByteArray::number(request.body.size()) + "\r\n";
  }
  return bytes + "\r\n" + request.body;
}

}  // namespace quillmere
