#include "inbox/ScreenshotStatus.h"

#include "foundation/Localized.h"

namespace quillmere {

QString screenshotStatus(const ScreenshotItem& item, bool isUnavailable) {
  return isUnavailable ? localized("Unavailable") : statusText(item.state);
}

QString statusSymbol(const ScreenshotItem& item, bool isUnavailable) {
  return isUnavailable ? QStringLiteral("exclamationmark.triangle.fill") : statusSymbol(item.state);
}

QString statusSymbol(ScreenshotItem::State state) {
  switch (state) {
    case ScreenshotItem::State::pending:
      return QStringLiteral("circle.dashed");
    case ScreenshotItem::State::temporary:
      return QStringLiteral("clock");
    case ScreenshotItem::State::permanent:
      return QStringLiteral("checkmark.circle");
  }
  return {};
}

}  // namespace quillmere
