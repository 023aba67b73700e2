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

void AppModel::setAllowed(const ForeignModelServer& server, bool isAllowed) {
  QStringList keys = settings_.foreignModelServers->split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  keys.removeAll(server.key);
  if (isAllowed) keys << server.key;
  const bool isChanged = settings_.foreignModelServers.change(keys.join(QLatin1Char('\n')));
  if (isChanged && *settings_.analyzeScreenshots) refreshModelAvailability();
}

bool AppModel::isAllowed(const ForeignModelServer& server) const {
  return settings_.foreignModelServers->split(QLatin1Char('\n')).contains(server.key);
}

void AppModel::setPopupAutoSaveEnabled(bool isOn) {
  if (settings_.popupAutoSaveEnabled.change(isOn)) restartCountdown();
}

void AppModel::setPopupAutoSaveSeconds(int seconds) {
  if (settings_.popupAutoSaveSeconds.change(seconds)) restartCountdown();
}

void AppModel::setPopupWaitsForPause(bool isOn) {
  settings_.popupWaitsForPause.change(isOn);
}

void AppModel::setPopupPauseSeconds(int seconds) {
  settings_.popupPauseSeconds.change(seconds);
}

void AppModel::setPopupGathersSeries(bool isOn) {
  settings_.popupGathersSeries.change(isOn);
}

void AppModel::setIncludesNonCaptureImages(bool includes) {
  settings_.includesNonCaptureImages.change(includes);
  dependencies_.monitor->setIncludesNonCaptureImages(includes);
}

}  // namespace quillmere
