#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "platform/linux/capture/ScreenCaptureAttributes.h"

using namespace quillmere;

/// Any bytes are read as the value of each attribute; a rectangle is of finite numbers.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string value(reinterpret_cast<const char*>(data), size);
  ScreenCaptureValues::isScreenCapture(value);
  ScreenCaptureValues::captureKind(value);
  if (const auto rect = ScreenCaptureValues::globalRect(value)) {
    for (const double number : {rect->x(), rect->y(), rect->width(), rect->height()}) {
      if (!std::isfinite(number)) std::abort();
    }
  }
  return 0;
}
