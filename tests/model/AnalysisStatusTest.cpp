#include "model/AnalysisStatus.h"

#include <gtest/gtest.h>

#include "description/AnalysisError.h"
#include "support/Printing.h"

namespace quillmere::testing {
namespace {

TEST(AnalysisStatus, IsOneLineInThisOrder) {
  using Availability = AnalysisAvailability;
  ScreenshotItem item;
  const auto textOf = [&](bool isAnalyzing, Availability availability) {
    return analysisStatus(item, isAnalyzing, availability).text.toStdString();
  };
  EXPECT_EQ(textOf(false, Availability::enabled), "No description yet.");
  EXPECT_EQ(textOf(false, Availability::turnedOff), "Image analysis is off.");
  EXPECT_EQ(textOf(false, Availability::unavailable),
            "No model is available on this computer, so there’s no description. Copy Text still works.");
  item.imageDescription = "A page.";
  EXPECT_EQ(analysisStatus(item, false, Availability::unavailable),
            (AnalysisStatus{QStringLiteral("A page."), false, false, true}));
  item.analysisFailure = AnalysisFailureCode::busy;
  item.analysisRetryable = true;
  EXPECT_EQ(analysisStatus(item, false, Availability::enabled),
            (AnalysisStatus{analysisNote(AnalysisFailureCode::busy), true, true}));
  item.analysisRetryable = false;
  EXPECT_FALSE(analysisStatus(item, false, Availability::enabled).offersAnalysis);
  EXPECT_EQ(textOf(true, Availability::turnedOff), "Analyzing screenshot…");
}

}  // namespace
}  // namespace quillmere::testing
