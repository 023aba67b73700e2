#pragma once

#include "records/ScreenshotItem.h"

namespace quillmere {

/// The status that stands in a row: a file that cannot be reached comes before what was decided about it.
QString screenshotStatus(const ScreenshotItem& item, bool isUnavailable);
/// The names of their symbols.
QString statusSymbol(ScreenshotItem::State state);
QString statusSymbol(const ScreenshotItem& item, bool isUnavailable);

}  // namespace quillmere
