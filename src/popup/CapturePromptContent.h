#pragma once

#include <QtCore/QSize>
#include <functional>
#include <optional>

#include "model/AppModel.h"

namespace quillmere {

/// The preview and the rows below it, in points.
inline constexpr int kPreviewWidth = 408;
inline constexpr int kLeastThumbnailHeight = 96;

/// One state of the popup; two equal ones look the same.
struct CapturePromptContent {
  ScreenshotItem item;
  int queuedCount = 0;  ///< how many more wait behind it
  bool showThumbnail = true;
  int thumbnailHeight = 160;  ///< points; of the whole screenshot, also while a window of it is shown
  std::optional<ScopedError> error;
  int focusRequest = 0;
  int contentGeneration = 0;
  ScreenshotNaming naming = ScreenshotNaming::original;
  bool deletesChosen = false;  ///< Move to Trash deletes instead
  bool canReadImage = true;    ///< the file is reachable and its data is here
  bool isEvicted = false;      ///< its data is known not to be on this computer
  bool isAnalyzing = false;
  bool showsWholeDescription = false;  ///< also where it is long
  AnalysisAvailability availability = AnalysisAvailability::enabled;
  std::optional<QSizeF> screenshotPixelSize;
  std::optional<QSizeF> previewPixelSize;  ///< of what the preview shows
  std::optional<PromptWindowExtraction::Phase> windowExtraction;
  bool isDecided = false;    ///< and leaves as soon as that is saved, or in a moment
  bool isDiskSlow = false;   ///< what was decided before waits for it
  bool scrolls = false;      ///< the card does not fit
  bool reportsEdits = true;  ///< shown to a person, not only measured
  bool operator==(const CapturePromptContent&) const = default;

  /// What the preview shows of the picture, in its pixels; none for all of it.
  std::optional<QRectF> shownPart() const;
  /// Not while a window is being sought, nor while a decision is being carried out.
  bool canDecide() const { return !windowExtraction || !PromptWindowExtraction::isBusy(*windowExtraction); }
  /// A decision is being carried out.
  bool isSaving() const;

  /// For the head of the queue; none without one.
  static std::optional<CapturePromptContent> make(
      const AppModel& model, const std::function<std::optional<QSizeF>(const ScreenshotItem&)>& pixelSize);
  /// Of a preview 408 points wide: 160 for an unknown size, else 96 to 230.
  static int heightOfThumbnail(const std::optional<QSizeF>& pixels);
};

/// What becomes of a name that is missing or not accepted; none for one that is.
std::optional<QString> nameNote(const QString& nameText);
/// What stands over the name field.
QString nameCaption(const QString& nameText);

}  // namespace quillmere
