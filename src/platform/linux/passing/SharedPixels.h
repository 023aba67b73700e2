#pragma once

#include <QtGui/QImage>
#include <optional>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/linux/passing/Descriptor.h"

namespace quillmere {

/// Memory for one picture that another process will read. It is fetched from the kernel by a thread of its own, a
/// little ahead of who fills it.
class SharedPixels {
 public:
  /// Smaller ones are copied as fast.
  static constexpr size_t kLeast = size_t{4} << 20;

  SharedPixels() = default;
  SharedPixels(const SharedPixels&) = delete;
  SharedPixels& operator=(const SharedPixels&) = delete;
  ~SharedPixels();

  /// Once. Null for less than `kLeast`, and where there is not so much.
  uint8_t* take(size_t bytes);
  /// Whether the picture is there, at its beginning.
  bool hold(const QImage& image) const;

  /// The picture's bytes and `parts` behind it, sealed. Nobody may look at the picture here any more. None where that
  /// cannot be done.
  std::optional<Descriptor> sealed(size_t pictureBytes, const std::vector<std::string_view>& parts);

 private:
  void unmap();

  Descriptor memory_;
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
  std::thread fetching_;
};

}  // namespace quillmere
