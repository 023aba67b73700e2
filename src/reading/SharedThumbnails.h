#pragma once

#include <QtGui/QImage>
#include <optional>

#include "foundation/FileStatus.h"
#include "foundation/FileURL.h"

namespace quillmere {

/// Thumbnails that the programs of a desktop keep for one another, as files. Every call may wait for the disk, and is
/// made on other threads than the main one, several at a time.
class SharedThumbnails {
 public:
  virtual ~SharedThumbnails() = default;

  /// The side of the smallest thumbnails that have as many pixels; none where the desktop keeps none so large.
  virtual std::optional<int> side(int pixels) const = 0;
  /// A thumbnail of the file as it stands there now, in the colours it was kept in, with neither side above `pixels`
  /// and one of them as long, as far as the picture has so many. The file itself is not opened.
  virtual std::optional<QImage> find(const FileURL& url, int pixels) const = 0;
  /// Keeps a thumbnail of the upright picture in sRGB, of which one side is `side`, or of the whole picture where that
  /// is smaller; nothing else. `seen` is how the file was before it was read: one that is another now is left out, as
  /// is one that has a thumbnail already. What fails costs the thumbnail only.
  virtual void keep(const FileURL& url, const FileStatus& seen, const QImage& thumbnail) = 0;
  /// The file has left its place: removes those of it that this program kept.
  virtual void forget(const FileURL& url) = 0;
};

}  // namespace quillmere
