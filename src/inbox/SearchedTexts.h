#pragma once

#include <QtCore/QByteArray>
#include <array>

#include "foundation/TextSearch.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// What a search looks through in a record, as UTF-8: the file's name with its extension, the description, the text
/// read from the image, and what its kind of capture is called; empty where there is none. A hit lies within one of
/// them. The long ones share the record's memory.
using SearchedTexts = std::array<QByteArray, 4>;
SearchedTexts searchedTexts(const ScreenshotItem& item);

/// The slow way.
bool isIn(TextSearch& search, const SearchedTexts& texts);

}  // namespace quillmere
