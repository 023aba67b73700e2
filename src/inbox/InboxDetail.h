#pragma once

#include <QtWidgets/QWidget>

#include "foundation/Weak.h"
#include "imaging/ThumbnailLoader.h"
#include "model/AppModel.h"

class QLabel;

namespace quillmere {

/// One screenshot, large, with its name and status.
class InboxDetail final : public QWidget {
 public:
  InboxDetail(ThumbnailLoader& thumbnails, QWidget* parent);
  void show(const ScreenshotItem& item, bool isUnavailable);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QRect pictureArea() const;
  static Task<> load(Weak<InboxDetail> self, FileURL url);

  ThumbnailLoader& thumbnails_;
  QLabel* name_;
  QLabel* status_;
  FileURL url_;
  std::optional<FileIdentity> identity_;
  QImage image_;
  Lifetime lifetime_;
};

}  // namespace quillmere
