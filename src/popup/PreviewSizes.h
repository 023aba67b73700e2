#pragma once

#include <QtCore/QSizeF>
#include <functional>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "foundation/Task.h"
#include "foundation/Weak.h"
#include "reading/ThumbnailLoader.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// The pixel sizes of screenshots, for the height of their previews. They are read from the files' headers in the
/// background, so that a file on a slow disk holds nothing up; until then they are unknown. An evicted file is never
/// read.
class PreviewSizes {
 public:
  /// The loader outlives this.
  explicit PreviewSizes(ThumbnailLoader& thumbnails) : thumbnails_(thumbnails) {}

  /// Unknown sizes are being looked for from now on.
  std::optional<QSizeF> size(const ScreenshotItem& item);
  /// Whether it is being looked for.
  bool isSought(const ScreenshotItem& item) const { return sought_.contains({item.url, item.fileIdentity}); }
  /// A look has ended; a size that had been unknown is known, or could not be read.
  std::function<void(bool isFound)> onLooked;

 private:
  /// By identity too, so that a replaced file of the same name is measured afresh.
  struct MeasuredImage {
    FileURL url;
    std::optional<FileIdentity> identity;
    bool operator==(const MeasuredImage&) const = default;
  };
  struct Hash {
    size_t operator()(const MeasuredImage& image) const { return std::hash<FileURL>{}(image.url); }
  };
  static Task<> find(Weak<PreviewSizes> self, MeasuredImage image);

  ThumbnailLoader& thumbnails_;
  std::unordered_map<MeasuredImage, QSizeF, Hash> sizes_;
  std::unordered_set<MeasuredImage, Hash> sought_;
  Lifetime lifetime_;
};

}  // namespace quillmere
