#include "analysis/HttpExchange.h"

#include <QtNetwork/QLocalSocket>
#include <QtNetwork/QNetworkProxy>
#include <QtNetwork/QTcpSocket>
#include <array>
#include <utility>

namespace quillmere {

HttpExchange::HttpExchange(Executor& executor, Finished finished)
    : executor_(executor), finished_(std::move(finished)) {}

HttpExchange::~HttpExchange() {
  close();
}

template <typename Socket>
Socket* HttpExchange::open() {
  auto opened = std::make_unique<Socket>();
  Socket* socket = opened.get();
  QObject::connect(socket, &Socket::connected, socket, [this] { send(); });
  QObject::connect(socket, &QIODevice::readyRead, socket, [this] { read(); });
  QObject::connect(socket, &Socket::disconnected, socket, [this] { loseConnection(); });
  QObject::connect(socket, &Socket::errorOccurred, socket, [this] { loseConnection(); });
  abort_ = [socket] { socket->abort(); };
  socket_ = std::move(opened);
  return socket;
}

void HttpExchange::start(const LocalServerAddress& address, QByteArray bytes, Duration limit) {
  bytes_ = std::move(bytes);
  limit_ = executor_.startDelay(limit, [this](bool elapsed) {
    limit_.reset();
    finish(elapsed ? HttpFailure::timedOut : HttpFailure::cancelled);
  });
  if (const auto* tcp = address.tcp()) {
    auto* socket = open<QTcpSocket>();
    // Whatever the environment or the desktop names as a proxy is another machine.
    socket->setProxy(QNetworkProxy::NoProxy);
    socket->connectToHost(tcp->host, tcp->port);
  } else {
    open<QLocalSocket>()->connectToServer(address.socket()->displayPath());
  }
}

void HttpExchange::send() {
  isConnected_ = true;
  socket_->write(std::exchange(bytes_, {}));
}

void HttpExchange::read() {
  using State = HttpReplyParser::State;
  const auto self = shared_from_this();  // finishing may let the last other owner go
  std::array<char, 16 * 1024> buffer;
  qint64 count = 0;
  while (finished_ && (count = socket_->read(buffer.data(), buffer.size())) > 0) {
    const State state = parser_.add(QByteArrayView(buffer.data(), count));
    if (state == State::whole) finish(parser_.reply());
    if (state == State::malformed) finish(HttpFailure::malformed);
    if (state == State::tooLarge) finish(HttpFailure::tooLarge);
  }
}

void HttpExchange::loseConnection() {
  if (!isConnected_) return finish(HttpFailure::unreachable);
  const auto self = shared_from_this();
  read();
  if (!finished_) return;
  if (parser_.end() == HttpReplyParser::State::whole) return finish(parser_.reply());
  finish(HttpFailure::lost);
}

void HttpExchange::finish(HttpOutcome outcome) {
  if (!finished_) return;
  const auto self = shared_from_this();
  close();
  std::exchange(finished_, nullptr)(std::move(outcome));
  if (const auto waiter = std::exchange(waiter_, nullptr)) waiter->resume();
}

void HttpExchange::close() {
  if (const auto limit = std::exchange(limit_, std::nullopt)) executor_.cancelDelay(*limit);
  if (!socket_) return;
  QObject::disconnect(socket_.get(), nullptr, socket_.get(), nullptr);
  std::exchange(abort_, nullptr)();
  // It may be the socket itself that is calling.
  executor_.post([gone = std::shared_ptr<QIODevice>(std::move(socket_))] {});
}

}  // namespace quillmere
