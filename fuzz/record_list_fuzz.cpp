#include <cstdint>
#include <cstdlib>
#include <string>

#include "records/ScreenshotCoding.h"

using namespace quillmere;

/// Whatever is read can be written, and reads back as the same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string bytes(reinterpret_cast<const char*>(data), size);
  const auto list = decodeList(bytes);
  if (!list) return 0;
  std::string written(kListHead);
  for (const ScreenshotItem& item : list->items) {
    if (&item != list->items.data()) written.push_back(',');
    appendEncoded(written, item);
  }
  written += kListTail;
  const auto again = decodeList(written);
  if (!again || again->dropped != 0 || again->items != list->items) std::abort();
  return 0;
}
