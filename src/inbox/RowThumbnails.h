#pragma once

#include <QtGui/QImage>
#include <deque>
#include <functional>

#include "foundation/Weak.h"
#include "reading/ThumbnailLoader.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// The pictures of the rows that were shown last. A long list is scrolled faster than pictures are read: the rows seen
/// last come first, and those that are long out of sight are not read at all.
class RowThumbnails {
 public:
  /// `pixels`: of a picture's larger side.
  RowThumbnails(ThumbnailLoader& loader, int pixels) : loader_(loader), pixels_(pixels) {}

  /// Null while it is on its way or cannot be had. Asked for each time that a row is painted.
  QImage image(const ScreenshotItem& item);
  /// Of a file whose data has come or gone; it is read anew when it is seen again.
  void forget(const UUID& id);
  size_t count() const { return recent_.size() + earlier_.size(); }
  /// The picture of a row is there.
  std::function<void(const UUID& id)> onLoaded;

 private:
  struct Picture {
    FileURL url;
    std::optional<FileIdentity> identity;
    QImage image;
  };
  struct Request {
    UUID id;
    FileURL url;
    ThumbnailLoader::Sharing sharing;
  };
  Picture* find(const ScreenshotItem& item);
  void loadNext();
  static Task<> load(Weak<RowThumbnails> self, Request request);

  ThumbnailLoader& loader_;
  const int pixels_;
  // Two generations: what was not asked for while one filled goes with the older.
  UUIDMap<Picture> recent_;
  UUIDMap<Picture> earlier_;
  std::deque<Request> waiting_;  ///< newest first
  int running_ = 0;
  Lifetime lifetime_;
};

}  // namespace quillmere
