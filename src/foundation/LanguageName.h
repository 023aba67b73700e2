#pragma once

#include <QtCore/QString>

namespace quillmere {

/// What a language is called in English, such as "Portuguese (Brazil)" for "pt-BR". Empty for what names no language.
QString languageNameInEnglish(const QString& identifier);

}  // namespace quillmere
