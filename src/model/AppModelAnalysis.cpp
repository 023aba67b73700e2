#include "model/AppModel.h"

namespace quillmere {

void AppModel::startAnalysis(const UUID& id) {
  analysis_.start({id});
}
void AppModel::cancelAnalysis(const UUID& id) {
  analysis_.cancel(id);
}
void AppModel::cancelAllAnalysis() {
  analysis_.cancelAll();
}

AnalysisAvailability AppModel::analysisAvailability() const {
  if (!*settings_.analyzeScreenshots) return AnalysisAvailability::turnedOff;
  return *intelligenceUnavailability ? AnalysisAvailability::unavailable : AnalysisAvailability::enabled;
}

Task<std::optional<QString>> AppModel::recognizedText(const UUID& id) {
  return analysis_.recognizedText(id);
}

/// Newest first, as they stand in the list.
void AppModel::startMissingAnalysis() {
  // What has been read lacks its description alone, and waits for a model: each start would else ask in vain for
  // thousands.
  const bool canDescribe = !*intelligenceUnavailability;
  std::vector<UUID> ids;
  items_.forEach([&](const ScreenshotItem& item) {
    if (AnalysisPipeline::needsAnalysis(item) && (canDescribe || !item.recognizedText)) ids.push_back(item.id);
  });
  analysis_.start(ids);
}

void AppModel::refreshModelAvailability() {
  analysis_.refreshAvailability([this] {
    if (*settings_.analyzeScreenshots) startMissingAnalysis();
  });
}

void AppModel::change(const UUID& id, const std::function<void(ScreenshotItem&)>& change) {
  if (const auto index = items_.indexOf(id)) updateItem(*index, change);
}

}  // namespace quillmere
