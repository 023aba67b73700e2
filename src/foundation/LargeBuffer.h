#pragma once

#include <sys/mman.h>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace quillmere {

/// Memory for tens of megabytes, without any value. In large pages, the kernel hands it out many times as fast. False
/// where there is not so much; what nobody writes to takes none.
class LargeBuffer {
 public:
  explicit LargeBuffer(size_t bytes) {
    constexpr size_t kLargePage = size_t{2} << 20;
    const bool isLarge = bytes >= 2 * kLargePage;
    const size_t unit = isLarge ? kLargePage : 64;
    const size_t rounded = (bytes + unit - 1) / unit * unit;
    bytes_.reset(static_cast<uint8_t*>(std::aligned_alloc(unit, rounded)));
    if (bytes_ && isLarge) ::madvise(bytes_.get(), rounded, MADV_HUGEPAGE);
  }
  explicit operator bool() const { return bytes_ != nullptr; }
  uint8_t* data() const { return bytes_.get(); }
  uint8_t* release() { return bytes_.release(); }

 private:
  struct Free {
    void operator()(uint8_t* bytes) const { std::free(bytes); }
  };
  std::unique_ptr<uint8_t, Free> bytes_;
};

}  // namespace quillmere
