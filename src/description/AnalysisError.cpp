#include "description/AnalysisError.h"

#include "foundation/Localized.h"

namespace quillmere {

bool AnalysisError::isRetryable() const {
  switch (kind) {
    case Kind::unavailable:
      return unavailability != Unavailability::deviceNotEligible;
    case Kind::busy:
    case Kind::invalidResponse:
      return true;
    case Kind::other:
      return isOtherRetryable;
    case Kind::contentBlocked:
    case Kind::tooMuchContent:
    case Kind::unsupportedLanguage:
      return false;
  }
  return false;
}

AnalysisFailureCode AnalysisError::code() const {
  switch (kind) {
    case Kind::unavailable:
      switch (unavailability) {
        case Unavailability::appleIntelligenceNotEnabled:
          return AnalysisFailureCode::appleIntelligenceNotEnabled;
        case Unavailability::modelNotReady:
          return AnalysisFailureCode::modelNotReady;
        case Unavailability::deviceNotEligible:
          return AnalysisFailureCode::deviceNotEligible;
      }
      break;
    case Kind::busy:
      return AnalysisFailureCode::busy;
    case Kind::other:
      return AnalysisFailureCode::other;
    case Kind::contentBlocked:
      return AnalysisFailureCode::contentBlocked;
    case Kind::tooMuchContent:
      return AnalysisFailureCode::tooMuchContent;
    case Kind::unsupportedLanguage:
      return AnalysisFailureCode::unsupportedLanguage;
    case Kind::invalidResponse:
      return AnalysisFailureCode::invalidResponse;
  }
  return AnalysisFailureCode::other;
}

QString AnalysisError::description() const {
  return analysisNote(code());
}

QString analysisNote(AnalysisFailureCode code) {
  switch (code) {
    case AnalysisFailureCode::appleIntelligenceNotEnabled:
      return localized(
          "Descriptions need Apple Intelligence, which is turned off in System Settings. You can rename the screenshot "
          "yourself.");
    case AnalysisFailureCode::modelNotReady:
      return localized(
          "The on-device model isn’t ready yet. It may still be downloading. You can rename the screenshot yourself.");
    case AnalysisFailureCode::deviceNotEligible:
      return localized("This Mac can’t create on-device descriptions. You can rename the screenshot yourself.");
    case AnalysisFailureCode::contentBlocked:
      return localized(
          "Apple’s on-device safety check stopped a description for this screenshot. You can rename it yourself.");
    case AnalysisFailureCode::busy:
      return localized(
          "The on-device model was busy, so no description was created. You can rename the screenshot yourself.");
    case AnalysisFailureCode::tooMuchContent:
      return localized("This screenshot has too much content to describe on device. You can rename it yourself.");
    case AnalysisFailureCode::unsupportedLanguage:
      return localized(
          "The on-device model doesn’t support the language in this screenshot. You can rename it yourself.");
    case AnalysisFailureCode::invalidResponse:
      return localized(
          "The on-device model didn’t return a usable description. You can rename the screenshot yourself.");
    case AnalysisFailureCode::other:
      return localized("A description couldn’t be created for this screenshot. You can rename it yourself.");
  }
  return {};
}

}  // namespace quillmere
