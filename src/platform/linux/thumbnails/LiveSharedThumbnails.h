#pragma once

#include <array>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "foundation/Date.h"
#include "reading/PictureReading.h"
#include "reading/SharedThumbnails.h"

namespace quillmere {

/// By freedesktop's Thumbnail Managing Standard, 0.9: PNG files, named by the MD5 sum of the picture's URI, in a folder
/// for each size. What stands there is other programs' and is read with suspicion.
class LiveSharedThumbnails final : public SharedThumbnails {
 public:
  /// `folder` is "thumbnails" in the person's cache; it is made when the first thumbnail is kept. `now` is asked on any
  /// thread.
  LiveSharedThumbnails(FileURL folder, std::shared_ptr<PictureReading> pictures, std::function<Date()> now)
      : folder_(std::move(folder)), pictures_(std::move(pictures)), now_(std::move(now)) {}

  std::optional<int> side(int pixels) const override;
  std::optional<QImage> find(const FileURL& url, int pixels) const override;
  void keep(const FileURL& url, const FileStatus& seen, const QImage& thumbnail) override;
  void forget(const FileURL& url) override;

 private:
  struct Size;
  struct Original;
  static const std::array<Size, 4> kSizes;
  static const Size* sizeOf(const QImage& thumbnail, QSize full);

  FileURL place(const Size& size, const std::string& uri) const;
  bool isInside(const FileURL& url) const;
  bool has(const Original& original, const Size& size) const;
  void makeFolders(const Size& size) const;

  const FileURL folder_;
  const std::shared_ptr<PictureReading> pictures_;
  const std::function<Date()> now_;
  std::mutex writing_;  ///< so that a file which leaves meanwhile is either seen to have left, or its thumbnail seen
};

}  // namespace quillmere
