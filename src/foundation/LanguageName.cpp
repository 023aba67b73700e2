#include "foundation/LanguageName.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>
#include <string_view>

namespace quillmere {

QString languageNameInEnglish(const QString& identifier) {
  const icu::Locale locale(identifier.toLatin1().constData());
  // A code has two or three letters; shorter are the locale of programs, which is nobody's language, and mere signs.
  if (locale.isBogus() || std::string_view(locale.getLanguage()).size() < 2) return {};
  icu::UnicodeString name;
  locale.getDisplayName(icu::Locale::getEnglish(), name);
  return QString::fromUtf16(name.getBuffer(), name.length());
}

}  // namespace quillmere
