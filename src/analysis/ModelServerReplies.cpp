#include "analysis/ModelServerReplies.h"

#include <QtCore/QJsonDocument>

#include "description/ModelQuestion.h"

namespace quillmere {
namespace {

using Kind = ModelError::Kind;
using Unavailability = AnalysisError::Unavailability;

bool says(const QString& text, const char* words) {
  return text.contains(QLatin1String(words), Qt::CaseInsensitive);
}

QString errorType(const QJsonObject& reply) {
  return reply[QLatin1String("error")][QLatin1String("type")].toString();
}

/// A server that fails inside speaks of contexts too, which are no sizes: "context deadline exceeded".
bool saysTooLong(const QJsonObject& reply, int status) {
  const QString text = ModelServerReplies::errorText(reply);
  return errorType(reply) == QLatin1String("exceed_context_size_error") || (status == 400 && says(text, "context")) ||
         says(text, "context size") || says(text, "context length") || says(text, "context window") ||
         says(text, "too long");
}

bool saysBlind(const QJsonObject& reply) {
  const QString text = ModelServerReplies::errorText(reply);
  return says(text, "image input") || says(text, "mmproj") || says(text, "vision") || says(text, "multimodal") ||
         says(text, "does not support");
}

}  // namespace

QJsonObject ModelServerReplies::object(const HttpReply& reply) {
  return QJsonDocument::fromJson(reply.body).object();
}

QString ModelServerReplies::errorText(const QJsonObject& reply) {
  const QJsonValue error = reply[QLatin1String("error")];
  return error.isString() ? error.toString() : error[QLatin1String("message")].toString();
}

bool ModelServerReplies::isLoading(const HttpReply& reply) {
  if (reply.status != 503) return false;
  const QJsonObject body = object(reply);
  return errorType(body) == QLatin1String("unavailable_error") || says(errorText(body), "loading");
}

bool ModelServerReplies::isClosed(const HttpReply& reply) {
  return reply.status == 401 || reply.status == 403;
}

bool ModelServerReplies::isSilent(HttpFailure failure) {
  return failure == HttpFailure::unreachable || failure == HttpFailure::timedOut || failure == HttpFailure::cancelled;
}

ModelFailure ModelServerReplies::failure(const HttpReply& reply, Date now) {
  const QJsonObject body = object(reply);
  if (isClosed(reply)) return AnalysisError::unavailable(Unavailability::appleIntelligenceNotEnabled);
  if (isLoading(reply)) return ModelError{Kind::modelNotUsable};
  switch (reply.status) {
    case 404:
      return ModelError{Kind::modelNotUsable};  // removed since it was found
    case 413:
      return ModelError{Kind::contextSizeExceeded};
    case 429:
    case 503:
      return ModelError{Kind::rateLimited, reply.retryAfter(now)};
    case 400:
    case 500:
      // Which of the two numbers an error has differs between servers and their versions; the words tell.
      if (saysBlind(body)) return ModelError{Kind::unsupportedCapability};
      if (saysTooLong(body, reply.status)) return ModelError{Kind::contextSizeExceeded};
      return ModelError{Kind::other};
    default:
      return ModelError{reply.isSuccess() ? Kind::unreadableAnswer : Kind::other};
  }
}

ModelFailure ModelServerReplies::failure(HttpFailure failure) {
  switch (failure) {
    case HttpFailure::cancelled:
      return AnalysisCancelled();
    case HttpFailure::unreachable:
      return AnalysisError::unavailable(Unavailability::deviceNotEligible);
    case HttpFailure::lost:
    case HttpFailure::timedOut:
      return ModelError{Kind::other};
    case HttpFailure::malformed:
    case HttpFailure::tooLarge:
      return ModelError{Kind::unreadableAnswer};
  }
  return ModelError{Kind::other};
}

ModelResponse ModelServerReplies::fields(const QString& generated) {
  if (const auto fields = ModelQuestion::answerFields(generated.toUtf8())) return *fields;
  return ModelFailure(ModelError{Kind::unreadableAnswer});
}

QString ModelServerReplies::schemaInWords(const QJsonObject& schema) {
  return QStringLiteral("\n\nAnswer with a JSON object of this schema:\n") +
         QString::fromUtf8(QJsonDocument(schema).toJson(QJsonDocument::Compact));
}

}  // namespace quillmere
