#pragma once

#include <QtCore/QString>
#include <optional>

#include "foundation/Date.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// Why a screenshot has no description.
struct AnalysisError {
  enum class Kind {
    unavailable,  ///< there is no model now; `unavailability` says why
    busy,
    other,
    contentBlocked,
    tooMuchContent,
    unsupportedLanguage,
    invalidResponse,
  };
  enum class Unavailability { appleIntelligenceNotEnabled, modelNotReady, deviceNotEligible };

  Kind kind = Kind::other;
  Unavailability unavailability = Unavailability::modelNotReady;  ///< of `unavailable`
  std::optional<Date> retryAfter = std::nullopt;                  ///< of `busy`
  bool isOtherRetryable = true;                                   ///< of `other`

  static AnalysisError unavailable(Unavailability reason) {
    return {.kind = Kind::unavailable, .unavailability = reason};
  }
  static AnalysisError busy(std::optional<Date> retryAfter) { return {.kind = Kind::busy, .retryAfter = retryAfter}; }
  static AnalysisError other(bool isRetryable) { return {.kind = Kind::other, .isOtherRetryable = isRetryable}; }

  bool isRetryable() const;
  AnalysisFailureCode code() const;
  /// For the person, as the note of the screenshot.
  QString description() const;

  bool operator==(const AnalysisError&) const = default;
};

/// The note of a stored failure.
QString analysisNote(AnalysisFailureCode code);

}  // namespace quillmere
