#pragma once

#include <QtCore/QString>
#include <memory>

struct UCollator;

namespace quillmere {

/// How letters are compared where a person seeks a text in another: by the order that ICU knows for a locale, and by
/// its first level alone. So case, accents, width and the two kana are all one, "ß" is "ss" and "æ" is "ae", while what
/// the locale holds for letters of their own stays apart: "ä" and "a" in Swedish, "ı" and "i" in Turkish. Punctuation
/// and blanks count like letters in every locale (Thai, left alone, would pass over them), digits are compared one by
/// one, and composed and decomposed characters are the same. Any thread may use it.
using SearchCollator = std::shared_ptr<const UCollator>;

/// For a locale by ICU's name, such as "de_AT" or "de@collation=phonebook"; the root's order for one that ICU doesn't
/// know. Null where ICU has no data at all.
SearchCollator searchCollator(const QString& locale);

/// The locale by which the person has texts compared.
QString searchLocale();

}  // namespace quillmere
