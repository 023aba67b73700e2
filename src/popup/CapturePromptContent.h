#pragma once

#include <QtCore/QSize>
#include <functional>
#include <optional>

#include "model/AppModel.h"

namespace quillmere {

/// One state of the popup; two equal ones look the same.
struct CapturePromptContent {
  ScreenshotItem item;
  int queuedCount = 0;  ///< how many more wait behind it
  bool showThumbnail = true;
  int thumbnailHeight = 160;  ///< points
  std::optional<ScopedError> error;
  int focusRequest = 0;
  int contentGeneration = 0;
  ScreenshotNaming naming = ScreenshotNaming::original;
  bool deletesChosen = false;  ///< Move to Trash deletes instead
  bool canReadImage = true;
  bool isAnalyzing = false;
  AnalysisAvailability availability = AnalysisAvailability::enabled;
  bool scrolls = false;
  bool operator==(const CapturePromptContent&) const = default;

  /// For the head of the queue; none without one.
  static std::optional<CapturePromptContent> make(
      const AppModel& model, const std::function<std::optional<QSize>(const ScreenshotItem&)>& pixelSize);
  /// Of a preview 408 points wide: 160 for an unknown size, else 96 to 230.
  static int heightOfThumbnail(const std::optional<QSize>& pixels);
};

/// What stands over the name field.
QString nameCaption(const QString& nameText);

}  // namespace quillmere
