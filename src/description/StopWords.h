#pragma once

#include <QtCore/QString>

namespace quillmere {

/// Whether a lowercase word means little in a file name, or is so common that its near misspellings must not be turned
/// into something else.
bool isStopWord(const QString& word);

}  // namespace quillmere
