#pragma once

#include <QtCore/QString>
#include <QtGui/QFont>

namespace quillmere {

/// The beginning of a text that fits into so many lines of so many points, an ellipsis at its end; the text itself when
/// all of it does. Lines break between words, and within a word that is longer than a line.
QString elidedLines(const QString& text, const QFont& font, int width, int lines);

}  // namespace quillmere
