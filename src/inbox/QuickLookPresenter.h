#pragma once

#include <QtGui/QImage>
#include <functional>
#include <memory>

#include "inbox/InboxPresentation.h"

class QWidget;

namespace quillmere {

class QuickLookWindow;

/// Opens Quick Look while the presentation asks for it, and has it follow what is selected.
class QuickLookPresenter {
 public:
  QuickLookPresenter(InboxPresentation& presentation, QWidget& inbox);
  ~QuickLookPresenter();

  /// Shows what the presentation and the selection say now.
  void follow();

  std::function<void(int step)> onStep;
  /// The picture of a record that is decoded already; null if none is.
  std::function<QImage(const ScreenshotItem& item)> picture;

 private:
  const ScreenshotItem* item() const;

  InboxPresentation& presentation_;
  QWidget& inbox_;
  std::unique_ptr<QuickLookWindow> window_;
  UUID id_;  ///< of the record that is shown, also under another name
};

}  // namespace quillmere
