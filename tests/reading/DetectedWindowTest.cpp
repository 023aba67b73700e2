#include "reading/DetectedWindow.h"

#include <gtest/gtest.h>

namespace quillmere::ImageOperations {
namespace {

const QRectF kSmall(0, 0, 5, 2);
const QRectF kLarge(0, 0, 50, 40);

DetectedWindow window(const QRectF& frame) {
  DetectedWindow result;
  result.frame = frame;
  return result;
}
DetectedWindow enclosed(DetectedWindow one) {
  one.isEnclosed = true;
  return one;
}
DetectedWindow covered(DetectedWindow one) {
  one.isCovered = true;
  return one;
}
DetectedWindow withButtons(DetectedWindow one) {
  one.hasTitleBarButtons = true;
  return one;
}
DetectedWindow drawn(DetectedWindow one) {
  one.isFullyDrawn = true;
  return one;
}

/// Whichever comes first.
void expectBetter(const DetectedWindow& better, const DetectedWindow& other) {
  EXPECT_EQ(primaryWindow({better, other}), better);
  EXPECT_EQ(primaryWindow({other, better}), better);
}

TEST(PrimaryWindowTest, TheOneInFrontComesBeforeAll) {
  DetectedWindow front = enclosed(covered(window(kSmall)));
  front.isInFront = true;
  expectBetter(front, withButtons(drawn(window(kLarge))));
}

TEST(PrimaryWindowTest, ThereIsNoneOfNoneOrOfEnclosedOnes) {
  EXPECT_EQ(primaryWindow({}), std::nullopt);
  EXPECT_EQ(primaryWindow({enclosed(window(kLarge)), enclosed(window(kSmall))}), std::nullopt);
}

TEST(PrimaryWindowTest, AnEnclosedOneIsLeftOutWhateverItShows) {
  expectBetter(covered(window(kSmall)), enclosed(drawn(withButtons(window(kLarge)))));
}

TEST(PrimaryWindowTest, NotCoveredBeatsEverythingElse) {
  expectBetter(window(kSmall), covered(drawn(withButtons(window(kLarge)))));
}

TEST(PrimaryWindowTest, ButtonsBeatAFullOutlineAndSize) {
  expectBetter(withButtons(window(kSmall)), drawn(window(kLarge)));
  expectBetter(covered(withButtons(window(kSmall))), covered(drawn(window(kLarge))));
}

TEST(PrimaryWindowTest, AFullOutlineBeatsSize) {
  expectBetter(drawn(window(kSmall)), window(kLarge));
  expectBetter(drawn(withButtons(window(kSmall))), withButtons(window(kLarge)));
}

TEST(PrimaryWindowTest, OfEqualsTheLargerWinsAndThenTheFirst) {
  expectBetter(window(kLarge), window(kSmall));
  expectBetter(window(QRectF(0, 0, 20, 20)), window(QRectF(0, 0, 5, 79)));
  const DetectedWindow here = window(QRectF(0, 0, 40, 10));
  const DetectedWindow there = window(QRectF(9, 9, 20, 20));
  EXPECT_EQ(primaryWindow({here, there}), here);
  EXPECT_EQ(primaryWindow({there, here}), there);
}

TEST(PrimaryWindowTest, TheBestOfManyIsFoundWhereverItStands) {
  std::vector<DetectedWindow> windows{covered(window(kLarge)), window(kSmall), withButtons(window(kSmall)),
                                      enclosed(withButtons(window(kLarge)))};
  const DetectedWindow best = drawn(withButtons(window(kSmall)));
  for (size_t at = 0; at <= windows.size(); ++at) {
    auto some = windows;
    some.insert(some.begin() + static_cast<ptrdiff_t>(at), best);
    EXPECT_EQ(primaryWindow(some), best);
  }
}

}  // namespace
}  // namespace quillmere::ImageOperations
