#include "inbox/SearchedTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Records.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;

TEST(SearchedTexts, AreTheNameTheDescriptionTheTextAndTheKind) {
  EXPECT_THAT(searchedTexts(fullItem(7)), ElementsAre("7.png", "A window", "Some text", "Selected portion"));
}

TEST(SearchedTexts, WhatIsNotThereIsEmpty) {
  EXPECT_THAT(searchedTexts(bareItem(7)), ElementsAre("7.png", "", "", ""));
}

TEST(SearchedTexts, ALongTextIsNotCopied) {
  const ScreenshotItem item = fullItem();
  EXPECT_EQ(searchedTexts(item)[2].constData(), item.recognizedText->constData());
}

TEST(SearchedTexts, AHitLiesWithinOneOfThem) {
  const auto holds = [](const char* sought) {
    TextSearch search(searchCollator(QStringLiteral("en")), QString::fromUtf8(sought));
    return isIn(search, searchedTexts(fullItem(7)));
  };
  for (const char* sought : {"7.PNG", "window", "me te", "Portion"}) EXPECT_TRUE(holds(sought)) << sought;
  for (const char* sought : {"pngA", "windowSome", "A name", "away"}) EXPECT_FALSE(holds(sought)) << sought;
}

}  // namespace
}  // namespace quillmere::testing
