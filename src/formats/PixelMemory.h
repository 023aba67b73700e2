#pragma once

#include <cstddef>
#include <cstdint>

namespace quillmere {

/// Where a large picture is made by one who passes it on, so that it need not be copied.
class PixelMemory {
 public:
  virtual ~PixelMemory() = default;
  /// So many bytes without any value, aligned as rows of pixels are, which stay as long as this does. They are asked
  /// for once a picture. Null where there are none, and the picture is made elsewhere.
  virtual uint8_t* take(size_t bytes) = 0;
};

}  // namespace quillmere
