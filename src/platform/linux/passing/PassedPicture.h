#pragma once

#include <QtGui/QImage>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/passing/ReaderMessages.h"
#include "platform/linux/passing/SealedMemory.h"

namespace quillmere {

/// A picture on its way between two processes. The texts in it stay behind.
class PassedPicture {
 public:
  explicit PassedPicture(const QImage& image);

  const ReaderMessages::PictureShape& shape() const { return shape_; }
  /// In the order of the memory; views into this.
  std::vector<std::string_view> parts() const;

  /// How many bytes a picture of that shape takes, without what stands behind it. None for a shape that no picture has,
  /// or that is larger than any that is read; 0 for none at all.
  static std::optional<uint64_t> bytesOf(const ReaderMessages::PictureShape& shape);
  /// The picture at the beginning of the memory, not copied: the memory stays as long as it does. Null where the shape
  /// does not fit the memory.
  static QImage in(const std::shared_ptr<const SealedMemory>& memory, const ReaderMessages::PictureShape& shape);

 private:
  QImage image_;
  QList<QRgb> colours_;
  QByteArray profile_;
  ReaderMessages::PictureShape shape_{};
};

}  // namespace quillmere
