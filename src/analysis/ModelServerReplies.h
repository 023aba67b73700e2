#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>

#include "analysis/HttpReply.h"
#include "analysis/ModelServer.h"
#include "description/LanguageModel.h"

namespace quillmere {

/// What the replies of all model servers have in common.
namespace ModelServerReplies {

/// Empty where the body is no object.
QJsonObject object(const HttpReply& reply);
/// The words of an error, in either form: {"error": "text"} and {"error": {"message": "text"}}.
QString errorText(const QJsonObject& reply);
/// Whether the server says that its model is still being loaded.
bool isLoading(const HttpReply& reply);
/// Whether the server is there but does not let us in.
bool isClosed(const HttpReply& reply);

/// Whether it is no use to speak to that address in another way.
bool isSilent(HttpFailure failure);

/// What a reply that is no answer means.
ModelFailure failure(const HttpReply& reply, Date now);
/// What an exchange that brought no reply means.
ModelFailure failure(HttpFailure failure);

/// The text that a model generated, as fields.
ModelResponse fields(const QString& generated);

/// The schema as words: what the fields are for stands there only, and a server holds the model to the schema without
/// showing it.
QString schemaInWords(const QJsonObject& schema);

}  // namespace ModelServerReplies
}  // namespace quillmere
