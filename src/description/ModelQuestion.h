#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <optional>

#include "description/LanguageModel.h"

namespace quillmere {

/// The words that a model is asked with.
namespace ModelQuestion {

/// In the first of these languages, named by identifiers such as "de-DE", the answer is to be written.
QString instructions(const QStringList& preferredLanguages);
/// For the person's own languages.
const QString& instructions();

/// The part of the question that tells the text of the picture, as much of it as is sent.
QString recognizedTextPart(const QString& text);

/// Of an object with two texts. The description comes first: the name is made of it.
QJsonObject answerSchema();

/// `text` is none for the picture alone.
ModelRequest request(const FileURL& picture, const std::optional<QString>& text);

/// What stands in a model's answer of that schema; whatever else it holds is left. None where a field is missing or no
/// text.
std::optional<ModelAnswerFields> answerFields(const QByteArray& json);

}  // namespace ModelQuestion
}  // namespace quillmere
