#include "detection/WindowDetector.h"

#include <gtest/gtest.h>

#include "detection/PlainDetector.h"
#include "support/RandomPictures.h"

namespace quillmere::WindowDetector {
namespace {

std::vector<QRectF> nothing(const GrayImage&) {
  return {};
}
Findings findings(const plain::Gray& gray) {
  return find(pictures::grayImage(gray), &nothing);
}
std::vector<QRectF> frames(const plain::Gray& gray) {
  std::vector<QRectF> result;
  for (const Detection& one : findings(gray).windows) result.push_back(one.frame);
  return result;
}
Detection at(const plain::Gray& gray, const QRectF& frame) {
  for (const Detection& one : findings(gray).windows) {
    if (one.frame == frame) return one;
  }
  ADD_FAILURE() << "no window at " << frame.x() << ',' << frame.y();
  return {};
}

TEST(WindowDetectorTest, AWindowIsFoundWhereItsOutlineIs) {
  plain::Gray gray(400, 300, 220);
  pictures::outline(gray, QRectF(40, 30, 200, 150), 60);
  EXPECT_EQ(frames(gray), (std::vector<QRectF>{{40, 30, 200, 150}}));
  const auto detected = detect(pictures::image(gray));
  ASSERT_EQ(detected.size(), 1u);
  EXPECT_EQ(detected[0], (Detection{{40, 30, 200, 150}, false, true, false, false}));
}

TEST(WindowDetectorTest, NothingIsFoundInAPictureThatIsTooSmallOrPlain) {
  EXPECT_TRUE(detect(QImage()).empty());
  EXPECT_TRUE(detect(pictures::image(plain::Gray(8, 300, 100))).empty());
  EXPECT_TRUE(detect(pictures::image(plain::Gray(300, 8, 100))).empty());
  EXPECT_TRUE(detect(pictures::image(plain::Gray(9, 9, 100))).empty());
  for (const int64_t size : {9, 20, 300}) {
    // Below 25 every position is a line, but none is backed by an edge.
    EXPECT_TRUE(frames(plain::Gray(size, 300, 100)).empty());
    EXPECT_TRUE(frames(plain::Gray(300, size, 100)).empty());
  }
}

TEST(WindowDetectorTest, WithoutCandidatesTheOtherDetectorIsNotAsked) {
  int asked = 0;
  const auto count = [&](const GrayImage&) {
    ++asked;
    return std::vector<QRectF>();
  };
  const Findings found = find(pictures::grayImage(plain::Gray(300, 300, 100)), count);
  EXPECT_TRUE(found.windows.empty());
  EXPECT_EQ(found.threshold, std::nullopt);
  EXPECT_EQ(found.candidateCount, 0u);
  EXPECT_EQ(asked, 0);
}

TEST(WindowDetectorTest, FaintOutlinesAreSoughtOnlyWhereThereAreNoClearOnes) {
  plain::Gray faint(700, 300, 220);
  pictures::outline(faint, QRectF(400, 30, 200, 150), 211);
  EXPECT_EQ(findings(faint).threshold, 8);
  EXPECT_EQ(frames(faint), (std::vector<QRectF>{{400, 30, 200, 150}}));

  plain::Gray both = faint;
  pictures::outline(both, QRectF(40, 100, 150, 120), 203);
  EXPECT_EQ(findings(both).threshold, 16);
  EXPECT_EQ(frames(both), (std::vector<QRectF>{{40, 100, 150, 120}}));
  EXPECT_EQ(findings(both).candidateCount, 1u);

  plain::Gray tooFaint(700, 300, 220);
  pictures::outline(tooFaint, QRectF(400, 30, 200, 150), 212);
  EXPECT_TRUE(frames(tooFaint).empty());
  plain::Gray notQuiteClear(700, 300, 220);
  pictures::outline(notQuiteClear, QRectF(400, 30, 200, 150), 204);
  EXPECT_EQ(findings(notQuiteClear).threshold, 8);
}

TEST(WindowDetectorTest, AWeakCandidateIsEnoughToLeaveFaintOnesAlone) {
  plain::Gray gray(700, 300, 220);
  pictures::outline(gray, QRectF(400, 30, 200, 150), 205);
  pictures::outline(gray, QRectF(40, 100, 150, 120), 100);
  pictures::fill(gray, 60, 210, 90, 20, 220);
  EXPECT_EQ(findings(gray).threshold, 16);
  EXPECT_EQ(frames(gray), (std::vector<QRectF>{{40, 100, 150, 120}}));
  EXPECT_FALSE(at(gray, {40, 100, 150, 120}).isFullyDrawn);
}

TEST(WindowDetectorTest, WindowsComeLargestFirstAndEqualsInOrder) {
  plain::Gray gray(1000, 900, 220);
  pictures::outline(gray, QRectF(20, 20, 150, 150), 60);
  pictures::outline(gray, QRectF(330, 333, 200, 180), 60);
  pictures::outline(gray, QRectF(700, 700, 150, 150), 60);
  EXPECT_EQ(frames(gray), (std::vector<QRectF>{{330, 333, 200, 180}, {20, 20, 150, 150}, {700, 700, 150, 150}}));
}

TEST(WindowDetectorTest, ButtonsInTheCornerAreTold) {
  plain::Gray gray(400, 300, 220);
  pictures::outline(gray, QRectF(40, 30, 200, 150), 60);
  pictures::titleBarDots(gray, 50, 40, 10, 16, 100);
  EXPECT_TRUE(at(gray, {40, 30, 200, 150}).hasTitleBarButtons);
}

/// A window on top of another: its outline goes on through the other, whose lines stop at it.
plain::Gray twoWindows(const QRectF& below, const QRectF& above) {
  plain::Gray gray(600, 500, 220);
  for (const QRectF& frame : {below, above}) {
    pictures::fill(gray, static_cast<int64_t>(frame.x()) + 1, static_cast<int64_t>(frame.y()) + 1,
                   static_cast<int64_t>(frame.width()) - 1, static_cast<int64_t>(frame.height()) - 1, 210);
    pictures::outline(gray, frame, 60);
  }
  return gray;
}

TEST(WindowDetectorTest, AWindowUnderAnotherIsCovered) {
  const QRectF below(40, 40, 300, 250);
  const QRectF above(290, 240, 250, 200);
  const plain::Gray gray = twoWindows(below, above);
  EXPECT_TRUE(at(gray, below).isCovered);
  EXPECT_FALSE(at(gray, above).isCovered);
  EXPECT_FALSE(at(gray, below).isEnclosed);
  EXPECT_FALSE(at(twoWindows(above, below), below).isCovered);
}

TEST(WindowDetectorTest, AnOverlapOfAFewPixelsTellsNothing) {
  const QRectF below(40, 40, 300, 250);
  const QRectF above(322, 272, 200, 110);
  EXPECT_FALSE(at(twoWindows(below, above), below).isCovered);
}

TEST(WindowDetectorTest, AWindowInsideAnotherIsEnclosedAndNotCovered) {
  const QRectF outer(40, 40, 450, 400);
  const QRectF inner(150, 150, 200, 150);
  const plain::Gray gray = twoWindows(outer, inner);
  EXPECT_TRUE(at(gray, inner).isEnclosed);
  EXPECT_FALSE(at(gray, inner).isCovered);
  EXPECT_FALSE(at(gray, outer).isEnclosed);
  EXPECT_FALSE(at(gray, outer).isCovered);
}

TEST(WindowDetectorTest, AWindowThatReachesOutOnAnySideIsNotEnclosed) {
  // Two lines are at least 6 pixels apart, or one.
  const QRectF outer(40, 40, 400, 300);
  for (const QRectF& inner :
       {QRectF(206, 120, 240, 160), QRectF(34, 120, 240, 160), QRectF(120, 186, 200, 160), QRectF(120, 34, 200, 160)}) {
    plain::Gray gray(600, 500, 220);
    pictures::outline(gray, outer, 60);
    pictures::outline(gray, inner, 60);
    EXPECT_FALSE(at(gray, inner).isEnclosed) << inner.x() << ',' << inner.y();
    EXPECT_FALSE(at(gray, outer).isEnclosed);
  }
  for (const QRectF& inner :
       {QRectF(200, 120, 240, 160), QRectF(40, 120, 240, 160), QRectF(120, 180, 200, 160), QRectF(120, 40, 200, 160)}) {
    plain::Gray gray(600, 500, 220);
    pictures::outline(gray, outer, 60);
    pictures::outline(gray, inner, 60);
    EXPECT_TRUE(at(gray, inner).isEnclosed) << "with a side in common";
    EXPECT_FALSE(at(gray, outer).isEnclosed);
  }
}

TEST(WindowDetectorTest, TheCoveringOutlineLeadsByAQuarter) {
  const QRectF below(40, 40, 300, 250);
  const QRectF above(260, 210, 250, 200);
  // 72 points of two sides each. The upper window's corner has no edge of its own: 142. What is left of the lower one's
  // side at its corner is no long run.
  for (const int erased : {36, 37}) {
    plain::Gray gray(600, 500, 220);
    pictures::outline(gray, below, 60);
    pictures::outline(gray, above, 60);
    pictures::fill(gray, 339, 289 - erased, 1, erased, 220);
    EXPECT_EQ(at(gray, below).isCovered, erased == 37) << 143 - erased << " against 142 of 144";
    EXPECT_FALSE(at(gray, above).isCovered);
  }
}

/// Draws a line that has gaps.
void dash(plain::Gray& gray, bool isUpright, int64_t at, int64_t from, int64_t to, int64_t on, int64_t off) {
  for (int64_t along = from; along < to; ++along) {
    if ((along - from) % (on + off) < on) pictures::set(gray, isUpright ? at : along, isUpright ? along : at, 60);
  }
}

TEST(WindowDetectorTest, ThePictureIsUsedAtFullSizeWhateverItIs) {
  plain::Gray gray(2600, 1500, 220);
  pictures::outline(gray, QRectF(1001, 501, 801, 601), 60);
  EXPECT_EQ(frames(gray), (std::vector<QRectF>{{1001, 501, 801, 601}}));
}

TEST(WindowDetectorTest, DashedOutlinesAreDrawnButNotSolid) {
  const QRectF below(40, 40, 300, 250);
  // The covering window, 250 by 200 at (290, 240), has dashes below 16 where its outline crosses the other: no score is
  // ahead.
  plain::Gray gray(600, 500, 220);
  pictures::outline(gray, below, 60);
  dash(gray, true, 291, 241, 440, 11, 3);
  dash(gray, false, 241, 291, 540, 11, 3);
  dash(gray, true, 539, 241, 440, 11, 3);
  dash(gray, false, 439, 291, 540, 11, 3);
  EXPECT_FALSE(at(gray, below).isCovered);
}

void expectAlike(const plain::Gray& gray, const std::vector<QRectF>& seen) {
  const std::vector<plain::Detection> wanted = plain::detect(gray, seen);
  const auto all = find(pictures::grayImage(gray), [&](const GrayImage&) { return seen; }).windows;
  ASSERT_EQ(all.size(), wanted.size());
  for (size_t i = 0; i < all.size(); ++i) {
    EXPECT_TRUE(plain::isEqual(all[i].frame, wanted[i].frame)) << i;
    EXPECT_EQ(all[i].hasTitleBarButtons, wanted[i].hasTitleBarButtons) << i;
    EXPECT_EQ(all[i].isFullyDrawn, wanted[i].isFullyDrawn) << i;
    EXPECT_EQ(all[i].isCovered, wanted[i].isCovered) << i;
    EXPECT_EQ(all[i].isEnclosed, wanted[i].isEnclosed) << i;
  }
}

TEST(WindowDetectorTest, HundredsOfRandomScreensGiveWhatThePlainRulesGive) {
  int windows = 0;
  int buttons = 0;
  int open = 0;
  int covered = 0;
  int enclosed = 0;
  for (uint32_t seed = 1; seed <= 700; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    pictures::RandomPicture random(seed);
    const plain::Gray gray = random.screen();
    std::vector<QRectF> seen;
    for (const Detection& one : findings(gray).windows) {
      ++windows;
      buttons += one.hasTitleBarButtons ? 1 : 0;
      open += one.isFullyDrawn ? 0 : 1;
      covered += one.isCovered ? 1 : 0;
      enclosed += one.isEnclosed ? 1 : 0;
      if (random.upTo(1) == 0) {
        seen.push_back(one.frame.translated(random.between(-15, 15), random.between(-15, 15)));
      }
    }
    expectAlike(gray, seen);
  }
  // The pictures show what is to be compared.
  EXPECT_GT(windows, 700);
  EXPECT_GT(buttons, 100);
  EXPECT_GT(open, 200);
  EXPECT_GT(covered, 20);
  EXPECT_GT(enclosed, 100);
}

}  // namespace
}  // namespace quillmere::WindowDetector
