#include "inbox/SearchedTexts.h"

#include <algorithm>

namespace quillmere {

SearchedTexts searchedTexts(const ScreenshotItem& item) {
  return {item.url.displayName().toUtf8(), item.imageDescription.value_or(QByteArray()),
          item.recognizedText.value_or(QByteArray()),
          item.captureKind ? label(*item.captureKind).toUtf8() : QByteArray()};
}

bool isIn(TextSearch& search, const SearchedTexts& texts) {
  return std::any_of(texts.begin(), texts.end(),
                     [&](const QByteArray& text) { return search.isIn(QString::fromUtf8(text)); });
}

}  // namespace quillmere
