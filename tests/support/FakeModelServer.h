#pragma once

#include <gtest/gtest.h>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "analysis/LocalServerAddress.h"
#include "foundation/FileURL.h"

namespace quillmere::testing {

struct FakeRequest {
  QByteArray bytes;  ///< all of it, as it came
  QByteArray method;
  QByteArray path;
  QByteArray body;
  QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
};

/// What a server does with a request, in any form that is or is not HTTP.
struct FakeReply {
  enum class Then { closes, staysOpen };
  QByteArray bytes = {};
  Then then = Then::closes;
  qsizetype pieceSize = 0;  ///< sent in so many bytes at a time, one in each turn of the loop
};

inline FakeReply httpReply(int status, const QByteArray& body, const QByteArray& headers = {}) {
  return {.bytes = "HTTP/1.1 " + QByteArray::number(status) + " Said\r\nContent-Type: application/json\r\n" + headers +
                   "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body};
}
inline FakeReply jsonReply(int status, const QJsonObject& body, const QByteArray& headers = {}) {
  return httpReply(status, QJsonDocument(body).toJson(QJsonDocument::Compact), headers);
}

/// Listens at a free port of the loopback address or at a local socket, keeps what it is sent and answers by script.
class FakeModelServer : public QObject {
 public:
  using Script = std::function<FakeReply(const FakeRequest&)>;

  explicit FakeModelServer(const QHostAddress& host = QHostAddress::LocalHost) {
    auto server = std::make_unique<QTcpServer>();
    EXPECT_TRUE(server->listen(host));
    port_ = server->serverPort();
    connect(server.get(), &QTcpServer::newConnection, this,
            [this, listener = server.get()] { take(listener->nextPendingConnection()); });
    server_ = std::move(server);
  }
  explicit FakeModelServer(const FileURL& socket) : socket_(socket) {
    auto server = std::make_unique<QLocalServer>();
    EXPECT_TRUE(server->listen(socket.displayPath()));
    connect(server.get(), &QLocalServer::newConnection, this,
            [this, listener = server.get()] { take(listener->nextPendingConnection()); });
    server_ = std::move(server);
  }

  uint16_t port() const { return port_; }
  LocalServerAddress address() const {
    return socket_.isEmpty() ? LocalServerAddress::loopback(port_)
                             : *LocalServerAddress::parse(socket_.displayPath(), 0);
  }
  /// From now on nobody listens there. What is connected stays so.
  void stopListening() { server_.reset(); }

  /// To whoever connected last.
  void send(const QByteArray& bytes) {
    last_->write(bytes);
    flush(last_);
  }

  Script script;
  int connections = 0;
  int openConnections = 0;
  std::vector<FakeRequest> requests;

  std::vector<QByteArray> paths() const {
    std::vector<QByteArray> paths;
    for (const auto& request : requests) paths.push_back(request.path);
    return paths;
  }
  const FakeRequest* requestFor(const QByteArray& path) const {
    for (const auto& request : requests) {
      if (request.path == path) return &request;
    }
    return nullptr;
  }

 private:
  template <typename Socket>
  void take(Socket* socket) {
    ++connections;
    ++openConnections;
    last_ = socket;
    socket->setParent(this);
    connect(socket, &QIODevice::readyRead, this, [this, socket] { read(socket); });
    connect(socket, &Socket::disconnected, this, [this] { --openConnections; });
    read(socket);
  }

  void read(QIODevice* socket) {
    QByteArray& bytes = received_[socket];
    bytes += socket->readAll();
    const qsizetype headEnd = bytes.indexOf("\r\n\r\n");
    if (headEnd < 0) return;
    qsizetype length = 0;
    for (const QByteArray& line : bytes.left(headEnd).split('\n')) {
      if (line.startsWith("Content-Length: ")) length = line.mid(16).trimmed().toLongLong();
    }
    if (bytes.size() < headEnd + 4 + length) return;
    const QList<QByteArray> words = bytes.left(bytes.indexOf('\r')).split(' ');
    requests.push_back({bytes, words.value(0), words.value(1), bytes.mid(headEnd + 4)});
    bytes.clear();
    if (script) answer(socket, script(requests.back()));
  }

  void answer(QIODevice* socket, const FakeReply& reply) {
    const qsizetype count = reply.pieceSize > 0 ? reply.pieceSize : reply.bytes.size();
    socket->write(reply.bytes.left(count));
    flush(socket);
    FakeReply rest = reply;
    rest.bytes = reply.bytes.mid(count);
    if (!rest.bytes.isEmpty()) {
      QMetaObject::invokeMethod(
          socket, [this, socket, rest] { answer(socket, rest); }, Qt::QueuedConnection);
    } else if (reply.then == FakeReply::Then::closes) {
      close(socket);
    }
  }

  static void flush(QIODevice* device) {
    if (auto* tcp = qobject_cast<QTcpSocket*>(device)) tcp->flush();
    if (auto* local = qobject_cast<QLocalSocket*>(device)) local->flush();
  }
  static void close(QIODevice* device) {
    if (auto* tcp = qobject_cast<QTcpSocket*>(device)) tcp->disconnectFromHost();
    if (auto* local = qobject_cast<QLocalSocket*>(device)) local->disconnectFromServer();
  }

  FileURL socket_;
  uint16_t port_ = 0;
  std::unique_ptr<QObject> server_;
  QIODevice* last_ = nullptr;
  std::map<QIODevice*, QByteArray> received_;
};

/// Speaks as Ollama does.
struct FakeOllama {
  struct Model {
    QByteArray name;
    QStringList capabilities;
    QJsonObject extra = {};  ///< of its entry in the list
    QJsonObject shown = {};  ///< of what is told about it alone
  };
  std::vector<Model> models;
  FakeReply chat = said(R"({"description":"A login page","filename":"login page"})");

  static FakeReply said(const QString& content, const QString& reason = QStringLiteral("stop")) {
    const QJsonObject message{{QStringLiteral("role"), QStringLiteral("assistant")},
                              {QStringLiteral("content"), content}};
    return jsonReply(200, {{QStringLiteral("model"), QStringLiteral("sees:4b")},
                           {QStringLiteral("created_at"), QStringLiteral("2026-01-01T00:00:00Z")},
                           {QStringLiteral("message"), message},
                           {QStringLiteral("done"), true},
                           {QStringLiteral("done_reason"), reason},
                           {QStringLiteral("eval_count"), 40}});
  }
  static FakeReply said(const char* content) { return said(QString::fromUtf8(content)); }
  static FakeReply error(int status, const char* text, const QByteArray& headers = {}) {
    return jsonReply(status, {{QStringLiteral("error"), QString::fromUtf8(text)}}, headers);
  }

  FakeReply operator()(const FakeRequest& request) const {
    if (request.path == "/api/version") return jsonReply(200, {{QStringLiteral("version"), QStringLiteral("0.12.0")}});
    if (request.path == "/api/tags") return tags();
    if (request.path == "/api/show") return show(request.json()[QLatin1String("model")].toString().toUtf8());
    if (request.path == "/api/chat") return chat;
    return httpReply(404, "404 page not found");
  }
  FakeReply tags() const {
    QJsonArray list;
    for (const Model& model : models) {
      QJsonObject entry = model.extra;
      entry[QLatin1String("name")] = QString::fromUtf8(model.name);
      list << entry;
    }
    return jsonReply(200, {{QStringLiteral("models"), list}});
  }
  FakeReply show(const QByteArray& name) const {
    for (const Model& model : models) {
      if (model.name != name) continue;
      QJsonObject shown = model.shown;
      shown[QLatin1String("capabilities")] = QJsonArray::fromStringList(model.capabilities);
      return jsonReply(200, shown);
    }
    return error(404, ("model '" + name + "' not found").constData());
  }
};

/// Speaks as llama.cpp's server does.
struct FakeLlama {
  bool sees = true;
  FakeReply health = jsonReply(200, {{QStringLiteral("status"), QStringLiteral("ok")}});
  FakeReply chat = said(R"({"description":"A login page","filename":"login page"})");

  static FakeReply choice(const QJsonObject& message, const char* reason) {
    const QJsonObject choice{{QStringLiteral("index"), 0},
                             {QStringLiteral("message"), message},
                             {QStringLiteral("finish_reason"), QString::fromLatin1(reason)}};
    return jsonReply(200, {{QStringLiteral("object"), QStringLiteral("chat.completion")},
                           {QStringLiteral("choices"), QJsonArray{choice}}});
  }
  static FakeReply said(const char* content, const char* reason = "stop") {
    return choice({{QStringLiteral("role"), QStringLiteral("assistant")},
                   {QStringLiteral("content"), QString::fromUtf8(content)}},
                  reason);
  }
  static FakeReply error(int status, const char* type, const char* message, const QByteArray& headers = {}) {
    const QJsonObject error{{QStringLiteral("code"), status},
                            {QStringLiteral("message"), QString::fromUtf8(message)},
                            {QStringLiteral("type"), QString::fromUtf8(type)}};
    return jsonReply(status, {{QStringLiteral("error"), error}}, headers);
  }
  static FakeReply loading() { return error(503, "unavailable_error", "Loading model"); }

  FakeReply operator()(const FakeRequest& request) const {
    if (request.path == "/health") return health;
    if (request.path == "/v1/models") {
      const QJsonObject model{{QStringLiteral("id"), QStringLiteral("/models/sees.gguf")},
                              {QStringLiteral("object"), QStringLiteral("model")}};
      return jsonReply(
          200, {{QStringLiteral("object"), QStringLiteral("list")}, {QStringLiteral("data"), QJsonArray{model}}});
    }
    if (request.path == "/props") {
      const QJsonObject modalities{{QStringLiteral("vision"), sees}, {QStringLiteral("audio"), false}};
      return jsonReply(200, {{QStringLiteral("total_slots"), 1}, {QStringLiteral("modalities"), modalities}});
    }
    if (request.path == "/v1/chat/completions") return chat;
    return error(404, "not_found_error", "File Not Found");
  }
};

}  // namespace quillmere::testing
