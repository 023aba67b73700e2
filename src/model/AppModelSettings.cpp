#include "model/AppModel.h"

namespace quillmere {

void AppModel::setShowPopupThumbnail(bool isOn) {
  settings_.showPopupThumbnail.change(isOn);
  // Nobody saves a window that they don't see; the toggle stands on the preview too.
  const auto& extraction = *extraction_.state;
  if (!isOn && extraction && !extraction_.isSaving(extraction->itemID)) extraction_.clear();
}

void AppModel::setAnalyzeScreenshots(bool isOn) {
  if (!settings_.analyzeScreenshots.change(isOn)) return;
  if (isOn) {
    refreshModelAvailability();
    startMissingAnalysis();
  } else {
    cancelAllAnalysis();
  }
}

void AppModel::setModelAddress(const QString& address) {
  if (settings_.modelAddress.change(address.trimmed()) && *settings_.analyzeScreenshots) refreshModelAvailability();
}

void AppModel::setPopupAutoSaveEnabled(bool isOn) {
  if (settings_.popupAutoSaveEnabled.change(isOn)) restartCountdown();
}

void AppModel::setPopupAutoSaveSeconds(int seconds) {
  if (settings_.popupAutoSaveSeconds.change(seconds)) restartCountdown();
}

void AppModel::setIncludesNonCaptureImages(bool includes) {
  settings_.includesNonCaptureImages.change(includes);
  dependencies_.monitor->setIncludesNonCaptureImages(includes);
}

}  // namespace quillmere
