#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "controls/FittedPicture.h"
#include "foundation/Weak.h"
#include "reading/ThumbnailLoader.h"
#include "records/FileIdentity.h"

namespace quillmere {

/// A preview of a screenshot. It loads in the background, anew when the file, its size on the screen or its crop
/// change; until then the earlier picture of the same screenshot stays. What is evicted or cannot be read has a symbol
/// in its stead.
class ScreenshotThumbnail : public QWidget {
 public:
  struct Content {
    FileURL url;
    qreal maxPointSize = 0;  ///< the largest side wanted
    QString accessibilityLabel;
    std::optional<FileIdentity> identity;  ///< the record's, so that a replaced file is loaded anew
    bool hasImageData = true;              ///< false where it is known to be evicted: nothing is read
    qreal cornerRadius = 0;                ///< of the picture
    Qt::Alignment alignment = Qt::AlignCenter;
    std::optional<QRectF> crop;  ///< show only this part; in pixels of the full image
  };

  ScreenshotThumbnail(ThumbnailLoader& loader, QWidget* parent);
  ~ScreenshotThumbnail() override;

  void show(const Content& content);
  /// Lets go of the picture; nothing is shown.
  void clear();

  const std::optional<ThumbnailLoader::Outcome>& outcome() const { return outcome_; }
  /// What is shown now; null before the first picture.
  const QImage& image() const { return picture_.image(); }
  /// Where it is shown, in the widget's points; the whole widget while there is none.
  QRectF picturePlace() const;
  std::function<void()> onPictureChanged;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  /// What tells one load from another.
  struct LoadKey {
    FileURL url;
    int pixels = 0;
    std::optional<FileIdentity> identity;
    bool hasImageData = false;
    std::optional<QRectF> crop;
    bool operator==(const LoadKey& other) const;
  };

  LoadKey key() const;
  /// Starts a load if one is due. A widget that nobody sees loads nothing.
  void loadIfNeeded();
  static Task<> load(Weak<ScreenshotThumbnail> self, LoadKey key, qreal displayScale);
  void forget();
  void take(const ThumbnailLoader::Outcome& outcome, qreal displayScale);
  void setOutcome(const std::optional<ThumbnailLoader::Outcome>& outcome);
  bool isWithoutPicture() const;
  void paintWell(QPainter& painter);

  ThumbnailLoader& loader_;
  Content content_;
  std::optional<LoadKey> loaded_;  ///< or being loaded
  Task<> loading_;
  std::optional<ThumbnailLoader::Outcome> outcome_;
  FittedPicture picture_;
  Lifetime lifetime_;
};

}  // namespace quillmere
