#pragma once

#include <QtCore/QStringView>
#include <vector>

namespace quillmere {

/// Where the characters of a text end, as a person sees characters: the extended grapheme clusters of Unicode Standard
/// Annex #29, in UTF-16 units, ascending; the last is the text's length. Never inside a surrogate pair.
std::vector<qsizetype> graphemeEnds(QStringView text);

}  // namespace quillmere
