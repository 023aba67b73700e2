#include "editor/CropNotes.h"

#include "foundation/Localized.h"

namespace quillmere {

QString CropNotes::detectionNote(const CropSituation& situation) {
  if (!situation.detection) {
    return localized(
        "Save the crop as a new screenshot, or replace the original. Drag on the image, use the arrow keys, or enter "
        "pixel bounds measured from the top-left corner.");
  }
  if (*situation.detection == WindowDetection::found) {
    return localized("These are estimated boundaries, not guaranteed windows. Check the preview and adjust the crop.");
  }
  if (situation.offersKeep) {
    return localized(
        "No window was detected, so nothing is selected. Drag on the image to choose an area, or keep the full "
        "screenshot.");
  }
  return localized(
      "No window was detected, so nothing is selected. Drag on the image to choose an area, or choose Select Whole "
      "Image to save a full-size copy.");
}

std::optional<QString> CropNotes::shadowNote(const CropSelection& selection) {
  const bool isEstimated =
      selection.appliedShadow() && selection.appliedShadow()->source == WindowShadowMargin::Source::estimated;
  if (!isEstimated) return std::nullopt;
  return localized(
      "The shadow couldn’t be told apart from what’s behind this window, so this is a typical shadow size rather than "
      "a measurement. Check the preview and adjust the bounds.");
}

std::optional<QString> CropNotes::shadowObstacle(const CropSelection& selection) {
  if (selection.canIncludeShadow()) return std::nullopt;
  return localized("No shadow was found around this window, so there is nothing to include.");
}

bool CropNotes::canSave(const CropSelection& selection, const CropSituation& situation) {
  return !selection.isEmpty() && !situation.isLoading && !situation.isWorking;
}

bool CropNotes::canReplace(const CropSelection& selection, const CropSituation& situation) {
  return canSave(selection, situation) && situation.isReplaceable;
}

std::optional<QString> CropNotes::replaceObstacle(const CropSituation& situation) {
  if (situation.isReplaceable) return std::nullopt;
  return localized(
      "Replace Original isn’t available: this screenshot’s file has moved, been renamed, or left the Inbox. Save the "
      "crop as a new screenshot instead.");
}

QString CropNotes::saveFailure(const QString& reason) {
  return localized("The new image couldn’t be saved.") + QLatin1Char(' ') + reason +
         localized(" Check that the screenshot folder is available, then try again.");
}

QString CropNotes::replaceFailure(const QString& reason) {
  return localized("The original couldn’t be replaced.") + QLatin1Char(' ') + reason +
         localized(
             " Nothing was changed. Check that the screenshot folder is available, then try again, or save the crop as "
             "a new screenshot.");
}

QString CropNotes::loadFailure() {
  return localized("Quillmere couldn’t open this screenshot.") + localized(" Close this window and try again.");
}

}  // namespace quillmere
