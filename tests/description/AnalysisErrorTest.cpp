#include "description/AnalysisError.h"

#include <gtest/gtest.h>

#include "support/Printing.h"

namespace quillmere::testing {
namespace {

using Kind = AnalysisError::Kind;
using Unavailability = AnalysisError::Unavailability;

struct Row {
  AnalysisError error;
  bool isRetryable;
  AnalysisFailureCode code;
  const char* note;
};

TEST(AnalysisError, EachHasItsCodeItsNoteAndWhetherItMayBeTriedAgain) {
  const Row rows[] = {
      {AnalysisError::unavailable(Unavailability::appleIntelligenceNotEnabled), true,
       AnalysisFailureCode::appleIntelligenceNotEnabled,
       "Descriptions need a model server on this computer, and it has no model that can see pictures. You can rename "
       "the "
       "screenshot yourself."},
      {AnalysisError::unavailable(Unavailability::modelNotReady), true, AnalysisFailureCode::modelNotReady,
       "The on-device model isn’t ready yet. It may still be downloading. You can rename the screenshot yourself."},
      {AnalysisError::unavailable(Unavailability::deviceNotEligible), false, AnalysisFailureCode::deviceNotEligible,
       "No model server was found on this computer, so there’s no description. You can rename the screenshot "
       "yourself."},
      {AnalysisError::busy({}), true, AnalysisFailureCode::busy,
       "The on-device model was busy, so no description was created. You can rename the screenshot yourself."},
      {AnalysisError::other(true), true, AnalysisFailureCode::other,
       "A description couldn’t be created for this screenshot. You can rename it yourself."},
      {AnalysisError::other(false), false, AnalysisFailureCode::other,
       "A description couldn’t be created for this screenshot. You can rename it yourself."},
      {{.kind = Kind::contentBlocked},
       false,
       AnalysisFailureCode::contentBlocked,
       "The on-device model refused to describe this screenshot. You can rename it yourself."},
      {{.kind = Kind::tooMuchContent},
       false,
       AnalysisFailureCode::tooMuchContent,
       "This screenshot has too much content to describe on device. You can rename it yourself."},
      {{.kind = Kind::unsupportedLanguage},
       false,
       AnalysisFailureCode::unsupportedLanguage,
       "The on-device model doesn’t support the language in this screenshot. You can rename it yourself."},
      {{.kind = Kind::invalidResponse},
       true,
       AnalysisFailureCode::invalidResponse,
       "The on-device model didn’t return a usable description. You can rename the screenshot yourself."},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.error.isRetryable(), row.isRetryable) << row.note;
    EXPECT_EQ(row.error.code(), row.code) << row.note;
    EXPECT_EQ(row.error.description().toStdString(), row.note);
    EXPECT_EQ(analysisNote(row.code).toStdString(), row.note) << "after a restart the sentence is the same";
  }
}

}  // namespace
}  // namespace quillmere::testing
