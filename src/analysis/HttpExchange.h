#pragma once

#include <QtCore/QIODevice>
#include <functional>
#include <memory>
#include <optional>

#include "analysis/LocalHttpClient.h"
#include "foundation/Executor.h"

namespace quillmere {

/// One request and its answer over a connection of their own.
class HttpExchange : public std::enable_shared_from_this<HttpExchange> {
 public:
  using Finished = std::function<void(HttpOutcome)>;
  /// `finished` is called once, as soon as there is an outcome; never when this goes first.
  HttpExchange(Executor& executor, Finished finished);
  ~HttpExchange();
  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;

  /// It may be over when this returns: nobody listens at a local socket.
  void start(const LocalServerAddress& address, QByteArray bytes, Duration limit);
  void cancel() { finish(HttpFailure::cancelled); }
  /// Resumed after `finished`; goes with this if that comes first.
  void keep(std::shared_ptr<Continuation> waiter) { waiter_ = std::move(waiter); }

 private:
  template <typename Socket>
  Socket* open();
  void send();
  void read();
  void loseConnection();
  void finish(HttpOutcome outcome);
  void close();

  Executor& executor_;
  Finished finished_;  // empty once it is over
  std::shared_ptr<Continuation> waiter_;
  std::unique_ptr<QIODevice> socket_;
  std::function<void()> abort_;
  QByteArray bytes_;
  bool isConnected_ = false;
  HttpReplyParser parser_;
  std::optional<Executor::DelayID> limit_;
};

}  // namespace quillmere
