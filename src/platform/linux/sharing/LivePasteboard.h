#pragma once

#include "model/ScreenshotTransfer.h"

namespace quillmere {

/// The desktop's clipboard. What was copied is served by this process; when it ends, the desktop's clipboard manager
/// takes it over, where one runs.
class LivePasteboard final : public Pasteboard {
 public:
  void write(const ScreenshotPasteboardItem& item) override;
  void write(const QString& text) override;
};

}  // namespace quillmere
