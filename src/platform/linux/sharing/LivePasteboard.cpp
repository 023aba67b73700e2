#include "platform/linux/sharing/LivePasteboard.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include "controls/PictureMimeData.h"

namespace quillmere {

void LivePasteboard::write(const ScreenshotPasteboardItem& item) {
  QGuiApplication::clipboard()->setMimeData(new PictureMimeData(item.url, item.contentType, item.data));
}

void LivePasteboard::write(const QString& text) {
  QGuiApplication::clipboard()->setText(text);
}

}  // namespace quillmere
