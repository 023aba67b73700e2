#include "records/ScreenshotItem.h"

#include <gtest/gtest.h>

#include "support/Printing.h"
#include "support/Records.h"

namespace quillmere {
namespace {

TEST(ScreenshotItem, NewIsPendingAndKnowsNothingElse) {
  const ScreenshotItem item;
  EXPECT_EQ(item.state, ScreenshotItem::State::pending);
  EXPECT_FALSE(item.expiresAt || item.suggestedName || item.recognizedText || item.imageDescription ||
               item.analysisFailure || item.analysisRetryable || item.sourceItemID || item.fileBookmark ||
               item.fileIdentity || item.arrivedFromElsewhere || item.captureKind || item.knownWindows);
}

TEST(ScreenshotItem, IsEqualOnlyInEveryField) {
  const ScreenshotItem original = testing::fullItem();
  const std::vector<std::function<void(ScreenshotItem&)>> changes{
      [](auto& item) { item.id = testing::uuid(99); },
      [](auto& item) { item.url = FileURL::fromPath("/other.png"); },
      [](auto& item) { item.createdAt = {1}; },
      [](auto& item) { item.state = ScreenshotItem::State::permanent; },
      [](auto& item) { item.expiresAt.reset(); },
      [](auto& item) { item.suggestedName = ""; },
      [](auto& item) { item.recognizedText.reset(); },
      [](auto& item) { item.imageDescription = "Another"; },
      [](auto& item) { item.analysisFailure = AnalysisFailureCode::other; },
      [](auto& item) { item.analysisRetryable = false; },
      [](auto& item) { item.sourceItemID.reset(); },
      [](auto& item) { item.fileBookmark = QByteArray(); },
      [](auto& item) { item.fileIdentity->size = 1; },
      [](auto& item) { item.arrivedFromElsewhere.reset(); },
      [](auto& item) { item.captureKind = CaptureKind::window; },
      [](auto& item) { item.knownWindows = "display 20x10 0"; },
  };
  EXPECT_EQ(changes.size(), 16u) << "one for each field";
  for (size_t field = 0; field < changes.size(); ++field) {
    ScreenshotItem changed = original;
    EXPECT_EQ(changed, original);
    changes[field](changed);
    EXPECT_NE(changed, original) << "field " << field + 1;
  }
}

TEST(ScreenshotItem, StatesHaveTheirCodesAndTexts) {
  using State = ScreenshotItem::State;
  const std::vector<std::tuple<State, std::string_view, const char*>> rows{
      {State::pending, "pending", "Pending decision"},
      {State::temporary, "temporary", "Temporary"},
      {State::permanent, "permanent", "Saved"},
  };
  for (const auto& [state, code, text] : rows) {
    EXPECT_EQ(codedValue(state), code);
    EXPECT_EQ(itemState(code), state);
    EXPECT_EQ(statusText(state).toStdString(), text);
  }
  for (const char* unknown : {"", "Pending", "saved", "pending "}) EXPECT_EQ(itemState(unknown), std::nullopt);
}

TEST(ScreenshotItem, CaptureKindsHaveTheirCodesAndLabels) {
  const std::vector<std::tuple<CaptureKind, std::string_view, const char*>> rows{
      {CaptureKind::display, "display", "Entire screen"},
      {CaptureKind::window, "window", "Window"},
      {CaptureKind::selection, "selection", "Selected portion"},
  };
  for (const auto& [kind, code, text] : rows) {
    EXPECT_EQ(codedValue(kind), code);
    EXPECT_EQ(captureKind(code), kind);
    EXPECT_EQ(label(kind).toStdString(), text);
  }
  for (const char* unknown : {"", "Display", "screen"}) EXPECT_EQ(captureKind(unknown), std::nullopt);
}

TEST(ScreenshotItem, AnalysisFailuresAreCodedByTheirNames) {
  using Code = AnalysisFailureCode;
  const std::vector<std::pair<Code, std::string_view>> rows{
      {Code::appleIntelligenceNotEnabled, "appleIntelligenceNotEnabled"},
      {Code::modelNotReady, "modelNotReady"},
      {Code::deviceNotEligible, "deviceNotEligible"},
      {Code::contentBlocked, "contentBlocked"},
      {Code::busy, "busy"},
      {Code::tooMuchContent, "tooMuchContent"},
      {Code::unsupportedLanguage, "unsupportedLanguage"},
      {Code::invalidResponse, "invalidResponse"},
      {Code::other, "other"},
  };
  for (const auto& [code, text] : rows) {
    EXPECT_EQ(codedValue(code), text);
    EXPECT_EQ(analysisFailureCode(text), code);
  }
}

TEST(ScreenshotItem, AnUnknownAnalysisFailureIsOther) {
  for (const char* unknown : {"", "Busy", "somethingNewer"}) {
    EXPECT_EQ(analysisFailureCode(unknown), AnalysisFailureCode::other);
  }
}

}  // namespace
}  // namespace quillmere
