#include "analysis/LlamaServer.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include "analysis/ModelServerReplies.h"
#include "foundation/Interruptible.h"

namespace quillmere {
namespace {

using Kind = ModelError::Kind;

constexpr Duration kLookTime = std::chrono::seconds(5);

HttpRequest get(const char* path) {
  return {.method = "GET", .path = path};
}

QJsonObject textPart(const QString& text) {
  return {{QStringLiteral("type"), QStringLiteral("text")}, {QStringLiteral("text"), text}};
}
QJsonObject picturePart(const ModelPicture& picture) {
  const QByteArray url = QByteArray("data:") + picture.type + ";base64," + picture.bytes.toBase64();
  return {{QStringLiteral("type"), QStringLiteral("image_url")},
          {QStringLiteral("image_url"), QJsonObject{{QStringLiteral("url"), QString::fromLatin1(url)}}}};
}

/// The program declines in words of its own.
bool isRefusal(const QJsonObject& message) {
  const QJsonValue refusal = message[QLatin1String("refusal")];
  return refusal.isString() &&
         (!refusal.toString().isEmpty() || message[QLatin1String("content")].toString().isEmpty());
}

}  // namespace

Task<ModelServerLook> LlamaServer::look(LocalHttpClient& client, LocalServerAddress address) const {
  auto askingHealth = interruptible(client.send(address, get("/health"), kLookTime));
  const HttpOutcome health = co_await askingHealth;
  if (!health) co_return NoModelServer{ModelServerReplies::isSilent(health.reason())};
  if (ModelServerReplies::isLoading(*health)) co_return LoadingModelServer();
  const bool isWell = ModelServerReplies::object(*health)[QLatin1String("status")] == QLatin1String("ok");
  if (!health->isSuccess() || !isWell) co_return NoModelServer();

  auto askingModels = interruptible(client.send(address, get("/v1/models"), kLookTime));
  const HttpOutcome models = co_await askingModels;
  if (!models) co_return NoModelServer();
  auto askingProperties = interruptible(client.send(address, get("/props"), kLookTime));
  const HttpOutcome properties = co_await askingProperties;
  if (!properties) co_return NoModelServer();
  if (ModelServerReplies::isClosed(*models) || ModelServerReplies::isClosed(*properties)) co_return BlindModelServer();
  if (ModelServerReplies::isLoading(*models) || ModelServerReplies::isLoading(*properties)) {
    co_return LoadingModelServer();
  }

  const QJsonValue modalities = ModelServerReplies::object(*properties)[QLatin1String("modalities")];
  const QJsonValue data = ModelServerReplies::object(*models)[QLatin1String("data")];
  if (!data.isArray()) co_return NoModelServer();
  const QString name = data[0][QLatin1String("id")].toString();
  if (name.isEmpty() || !modalities[QLatin1String("vision")].toBool()) co_return BlindModelServer();
  co_return FoundModel{this, name};
}

HttpRequest LlamaServer::question(const ModelRequest& request, const ModelPicture& picture,
                                  const QString& model) const {
  const QString system = request.instructions + ModelServerReplies::schemaInWords(request.schema);
  QJsonArray parts{textPart(request.question), picturePart(picture)};
  if (request.recognizedText) parts << textPart(*request.recognizedText);
  const QJsonArray messages{
      QJsonObject{{QStringLiteral("role"), QStringLiteral("system")}, {QStringLiteral("content"), system}},
      QJsonObject{{QStringLiteral("role"), QStringLiteral("user")}, {QStringLiteral("content"), parts}}};
  // In any other place the server overlooks the schema and lets the model write what it likes.
  const QJsonObject schema{{QStringLiteral("name"), QStringLiteral("screenshot")},
                           {QStringLiteral("strict"), true},
                           {QStringLiteral("schema"), request.schema}};
  const QJsonObject format{{QStringLiteral("type"), QStringLiteral("json_schema")},
                           {QStringLiteral("json_schema"), schema}};
  const QJsonObject body{{QStringLiteral("model"), model},
                         {QStringLiteral("stream"), false},
                         {QStringLiteral("messages"), messages},
                         {QStringLiteral("temperature"), request.temperature},
                         {QStringLiteral("max_tokens"), request.maximumResponseTokens},
                         {QStringLiteral("response_format"), format}};
  return {.method = "POST", .path = "/v1/chat/completions", .body = QJsonDocument(body).toJson(QJsonDocument::Compact)};
}

ModelResponse LlamaServer::answer(const HttpReply& reply, Date now) const {
  const QJsonObject body = ModelServerReplies::object(reply);
  if (!reply.isSuccess()) return ModelServerReplies::failure(reply, now);
  const QJsonValue choice = body[QLatin1String("choices")][0];
  const QString reason = choice[QLatin1String("finish_reason")].toString();
  if (reason == QLatin1String("content_filter")) return ModelFailure(ModelError{Kind::guardrailViolation});
  const QJsonObject message = choice[QLatin1String("message")].toObject();
  if (isRefusal(message)) return ModelFailure(ModelError{Kind::refusal});
  if (reason == QLatin1String("length")) return ModelFailure(ModelError{Kind::unreadableAnswer});
  return ModelServerReplies::fields(message[QLatin1String("content")].toString());
}

}  // namespace quillmere
