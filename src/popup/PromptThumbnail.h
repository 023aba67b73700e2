#pragma once

#include <QtGui/QImage>
#include <QtWidgets/QWidget>

#include "foundation/Weak.h"
#include "imaging/ThumbnailLoader.h"
#include "records/FileIdentity.h"

namespace quillmere {

/// The preview on the card. It loads off the main thread; until a picture is there it shows its empty ground, and an
/// earlier picture of the same file stays until the next one comes.
class PromptThumbnail final : public QWidget {
 public:
  PromptThumbnail(ThumbnailLoader& loader, QWidget* parent);

  void show(const FileURL& url, const std::optional<FileIdentity>& identity, bool hasImageData);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  static Task<> load(Weak<PromptThumbnail> self, int load);

  ThumbnailLoader& loader_;
  FileURL url_;
  std::optional<FileIdentity> identity_;
  bool hasImageData_ = false;
  int loadCount_ = 0;
  QImage image_;
  Lifetime lifetime_;
};

}  // namespace quillmere
