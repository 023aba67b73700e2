#include <QtCore/QChar>
#include <cstdint>
#include <cstdlib>

#include "records/ScreenshotNaming.h"

using namespace quillmere;

/// Whatever comes in, a cleaned name is short, is text, names no other folder and hides nothing.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto stem = sanitizedFileStem(QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size)));
  if (!stem) return 0;
  const QByteArray bytes = stem->toUtf8();
  if (bytes.isEmpty() || bytes.size() > 160 || QString::fromUtf8(bytes) != *stem) std::abort();
  for (const QChar end : {stem->front(), stem->back()}) {
    if (end == QLatin1Char('.') || end == QLatin1Char(' ')) std::abort();
  }
  for (const char32_t c : stem->toUcs4()) {
    const bool turnsText = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0x200E || c == 0x200F;
    const bool isForbidden = c < 0x10000 && QStringView(u"/\\:?*\"<>|—“”").contains(QChar(static_cast<char16_t>(c)));
    if (turnsText || isForbidden || QChar::category(c) == QChar::Other_Control) std::abort();
  }
  return 0;
}
