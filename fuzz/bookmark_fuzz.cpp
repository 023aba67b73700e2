#include <cstdint>
#include <cstdlib>

#include "platform/linux/files/Bookmark.h"

using namespace quillmere;

/// Whatever is read is an absolute path, and reads back as the same after it was written.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const auto bookmark = Bookmark::decode(bytes);
  if (!bookmark) return 0;
  if (bookmark->url.path().front() != '/') std::abort();
  const auto again = Bookmark::decode(bookmark->encoded());
  if (!again || again->url != bookmark->url || again->file != bookmark->file) std::abort();
  return 0;
}
