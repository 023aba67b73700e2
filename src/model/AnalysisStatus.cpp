#include "model/AnalysisStatus.h"

#include "description/AnalysisError.h"
#include "foundation/Localized.h"

namespace quillmere {

AnalysisStatus analysisStatus(const ScreenshotItem& item, bool isAnalyzing, AnalysisAvailability availability) {
  if (isAnalyzing) return {localized("Analyzing screenshot…")};
  if (item.analysisFailure) {
    return {analysisNote(*item.analysisFailure), true, item.analysisRetryable.value_or(false)};
  }
  if (item.imageDescription) return {QString::fromUtf8(*item.imageDescription), false, false, true};
  switch (availability) {
    case AnalysisAvailability::enabled:
      return {localized("No description yet.")};
    case AnalysisAvailability::turnedOff:
      return {localized("Image analysis is off.")};
    case AnalysisAvailability::unavailable:
      return {localized(
          "Apple Intelligence isn’t available on this Mac, so there’s no description. Extract Text still works.")};
  }
  return {};
}

}  // namespace quillmere
