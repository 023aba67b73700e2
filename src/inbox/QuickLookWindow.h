#pragma once

#include <QtGui/QImage>
#include <QtWidgets/QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "foundation/Weak.h"
#include "inbox/QuickLookPlacement.h"
#include "reading/ThumbnailLoader.h"
#include "records/FileIdentity.h"

namespace quillmere {

class PictureCanvas;
class QuickLookFooter;

/// One screenshot, large, in a window of its own beside the Inbox. It opens with the picture that is there already, and
/// sharpens when all pixels have been read in the background; nothing of a file is read on the main thread. While
/// another is awaited whose size is not known yet, at most for a frame, the window stays as it is.
class QuickLookWindow final : public QWidget {
 public:
  struct Content {
    FileURL url;
    std::optional<FileIdentity> identity;  ///< the record's, so that a replaced file is read anew
    QString title;                         ///< the file's display name
    QImage preview;                        ///< what is decoded already; null if nothing
    bool hasImageData = true;              ///< false where the file is evicted: nothing is read
  };

  QuickLookWindow(ThumbnailLoader& thumbnails, Executor& executor, QWidget* parent);
  ~QuickLookWindow() override;

  /// Opens the window, or changes what it shows.
  void show(const Content& content);
  std::function<void(int step)> onStep;  ///< Down and Right: 1; Up and Left: -1
  /// When nothing of the picture is kept any more; the window is still in use, and must not go in it.
  std::function<void()> onClosed;
  std::function<void()> onOpenElsewhere;  ///< has a button where it is set before the window shows something

  /// The longest wait for a picture's size before something is shown: less than a frame at 60 Hz.
  static constexpr Duration kLongestWait = std::chrono::milliseconds(12);
  /// How long a screenshot that was stepped to stays before all of it is read.
  static constexpr Duration kRest = std::chrono::milliseconds(80);

 protected:
  /// Goes with the window that it belongs to.
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void addShortcuts();
  /// Starts to read what is to be shown.
  void load(Duration rest);
  static Task<> measure(Weak<QuickLookWindow> self, FileURL url);
  static Task<> waitForSize(Weak<QuickLookWindow> self);
  static Task<> readFully(Weak<QuickLookWindow> self, FileURL url, Duration rest);
  void stopLoading();
  void take(const ThumbnailLoader::Outcome& outcome);

  /// Shows what is known of the content by now.
  void arrange();
  void showPreview();
  void showFacts();
  /// Gives the window the picture's size, unless the person chose another.
  void place();
  QuickLookRoom room() const;

  ThumbnailLoader& thumbnails_;
  Executor& executor_;
  PictureCanvas* canvas_;
  QuickLookFooter* footer_;
  std::optional<Content> content_;   ///< what is to be shown
  std::optional<Content> arranged_;  ///< what is shown
  std::optional<QSize> pixelSize_;   ///< of the content, as far as it is known
  bool isSharp_ = false;             ///< all pixels are shown
  Task<> measuring_;
  Task<> waiting_;
  Task<> reading_;
  QPoint centre_;
  QRect placed_;                  ///< where the window was put last
  std::vector<QSize> sizes_;      ///< that it was given since it opened
  bool isSizedByPerson_ = false;  ///< or by the window manager
  Lifetime lifetime_;
};

}  // namespace quillmere
