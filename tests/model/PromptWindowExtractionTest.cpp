#include "model/PromptWindowExtraction.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using Extraction = PromptWindowExtraction;

TEST(PromptWindowExtraction, ThePartIsShownFromFindingItUntilItIsSaved) {
  const QRectF crop(1, 2, 3, 4);
  EXPECT_EQ(Extraction::shownPart(Extraction::Detecting{}), std::nullopt);
  EXPECT_EQ(Extraction::shownPart(Extraction::Extracted{crop}), crop);
  EXPECT_EQ(Extraction::shownPart(Extraction::Saving{crop}), crop);
}

TEST(PromptWindowExtraction, OnlyAnExtractedWindowLetsOneDecide) {
  EXPECT_TRUE(Extraction::isBusy(Extraction::Detecting{}));
  EXPECT_FALSE(Extraction::isBusy(Extraction::Extracted{}));
  EXPECT_TRUE(Extraction::isBusy(Extraction::Saving{}));
}

TEST(PromptWindowExtraction, EachNoticeSaysWhatHappened) {
  EXPECT_EQ(text(PromptPreviewNotice::textCopied), "Text copied");
  EXPECT_EQ(text(PromptPreviewNotice::noText), "No text found");
  EXPECT_EQ(text(PromptPreviewNotice::noWindow), "No window found");
  EXPECT_EQ(text(PromptPreviewNotice::alreadyWindow), "This is already a window");
}

}  // namespace
}  // namespace quillmere
