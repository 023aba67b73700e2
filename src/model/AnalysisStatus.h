#pragma once

#include <QtCore/QString>
#include <optional>

#include "records/ScreenshotItem.h"

namespace quillmere {

/// Whether descriptions can be made.
enum class AnalysisAvailability {
  enabled,
  turnedOff,    ///< by the person
  unavailable,  ///< there is no model now
};
/// Where a status stands; it changes nothing but its looks.
enum class AnalysisStatusSurface { inbox, popup };

/// The one line about a screenshot's analysis.
struct AnalysisStatus {
  QString text;
  bool isFailure = false;
  bool offersAnalysis = false;  ///< to try again
  bool isDescription = false;   ///< the model's words
  bool operator==(const AnalysisStatus&) const = default;
};
AnalysisStatus analysisStatus(const ScreenshotItem& item, bool isAnalyzing, AnalysisAvailability availability);

}  // namespace quillmere
