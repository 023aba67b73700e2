#include "analysis/OllamaServer.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QStringList>

#include "analysis/ModelServerReplies.h"
#include "foundation/Interruptible.h"

namespace quillmere {
namespace {

using Kind = ModelError::Kind;

/// A look is a few kilobytes from memory; what takes longer is no server to wait for.
constexpr Duration kLookTime = std::chrono::seconds(5);
/// Somebody's collection may be long, and each is asked for on its own.
constexpr qsizetype kMostModels = 64;
/// The server's usual one is too small for a picture with its text; what does not fit it would drop without a word.
constexpr int kContext = 8192;

/// The server passes questions for such a model on to another machine.
bool runsOnAnotherMachine(const QJsonObject& model) {
  const QString name = model[QLatin1String("name")].toString();
  return !model[QLatin1String("remote_host")].toString().isEmpty() ||
         !model[QLatin1String("remote_model")].toString().isEmpty() || name.endsWith(QLatin1String("-cloud")) ||
         name.endsWith(QLatin1String(":cloud"));
}

QStringList modelNames(const QJsonObject& tags) {
  QStringList names;
  const QJsonArray list = tags[QLatin1String("models")].toArray();
  for (const auto& entry : list) {
    const QJsonObject model = entry.toObject();
    const QString name = model[QLatin1String("name")].toString();
    if (!name.isEmpty() && !runsOnAnotherMachine(model)) names << name;
  }
  return names.mid(0, kMostModels);
}

HttpRequest get(const char* path) {
  return {.method = "GET", .path = path};
}
HttpRequest post(const char* path, const QJsonObject& body) {
  return {.method = "POST", .path = path, .body = QJsonDocument(body).toJson(QJsonDocument::Compact)};
}

}  // namespace

Task<ModelServerLook> OllamaServer::look(LocalHttpClient& client, LocalServerAddress address) const {
  auto askingVersion = interruptible(client.send(address, get("/api/version"), kLookTime));
  const HttpOutcome version = co_await askingVersion;
  if (!version) co_return NoModelServer{ModelServerReplies::isSilent(version.reason())};
  if (ModelServerReplies::object(*version)[QLatin1String("version")].toString().isEmpty()) co_return NoModelServer();

  auto askingTags = interruptible(client.send(address, get("/api/tags"), kLookTime));
  const HttpOutcome tags = co_await askingTags;
  // Other programs have a version to tell as well.
  if (!tags || !ModelServerReplies::object(*tags)[QLatin1String("models")].isArray()) co_return NoModelServer();
  const QStringList names = modelNames(ModelServerReplies::object(*tags));
  for (const QString& name : names) {
    const QJsonObject body{{QStringLiteral("model"), name}};
    auto askingModel = interruptible(client.send(address, post("/api/show", body), kLookTime));
    const HttpOutcome shown = co_await askingModel;
    if (!shown) co_return NoModelServer();
    const QJsonObject model = ModelServerReplies::object(*shown);
    const bool sees = model[QLatin1String("capabilities")].toArray().contains(QStringLiteral("vision"));
    if (sees && !runsOnAnotherMachine(model)) co_return FoundModel{this, name};
  }
  co_return BlindModelServer();
}

HttpRequest OllamaServer::question(const ModelRequest& request, const ModelPicture& picture,
                                   const QString& model) const {
  // The picture has no place among the words in this protocol.
  QString words = request.question;
  if (request.recognizedText) words += QStringLiteral("\n\n") + *request.recognizedText;
  const QString system = request.instructions + ModelServerReplies::schemaInWords(request.schema);
  const QJsonArray messages{
      QJsonObject{{QStringLiteral("role"), QStringLiteral("system")}, {QStringLiteral("content"), system}},
      QJsonObject{{QStringLiteral("role"), QStringLiteral("user")},
                  {QStringLiteral("content"), words},
                  {QStringLiteral("images"), QJsonArray{QString::fromLatin1(picture.bytes.toBase64())}}}};
  const QJsonObject options{{QStringLiteral("temperature"), request.temperature},
                            {QStringLiteral("num_predict"), request.maximumResponseTokens},
                            {QStringLiteral("num_ctx"), kContext}};
  return post("/api/chat", {{QStringLiteral("model"), model},
                            {QStringLiteral("stream"), false},
                            {QStringLiteral("think"), false},
                            {QStringLiteral("messages"), messages},
                            {QStringLiteral("format"), request.schema},
                            {QStringLiteral("options"), options}});
}

ModelResponse OllamaServer::answer(const HttpReply& reply, Date now) const {
  if (!reply.isSuccess()) return ModelServerReplies::failure(reply, now);
  const QJsonObject body = ModelServerReplies::object(reply);
  // An error that came up after the reply had begun.
  if (body.contains(QLatin1String("error"))) {
    HttpReply late = reply;
    late.status = 500;
    return ModelServerReplies::failure(late, now);
  }
  const QString reason = body[QLatin1String("done_reason")].toString();
  if (reason == QLatin1String("load")) return ModelFailure(ModelError{Kind::modelNotUsable});
  const bool isWhole = body[QLatin1String("done")].toBool() && reason != QLatin1String("length");
  if (!isWhole) return ModelFailure(ModelError{Kind::unreadableAnswer});
  return ModelServerReplies::fields(body[QLatin1String("message")][QLatin1String("content")].toString());
}

}  // namespace quillmere
