#include "editor/CropHandles.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>

#include "support/Records.h"

namespace quillmere {

void PrintTo(const QRect& rect, std::ostream* out) {
  *out << rect.x() << ',' << rect.y() << ' ' << rect.width() << 'x' << rect.height();
}

namespace testing {
namespace {

constexpr QSize kImage(400, 300);
constexpr QRect kWindow(100, 80, 120, 90);

CropSelection selectionOf(const QRect& rect, const std::vector<QRect>& windows = {}) {
  std::vector<WindowCandidate> candidates;
  for (const QRect& window : windows) {
    const int number = static_cast<int>(candidates.size()) + 1;
    candidates.push_back({uuid(number), number, window, {}});
  }
  CropSelection selection(kImage, candidates);
  selection.setByHand(rect);
  return selection;
}

QRect dragged(std::optional<CropHandle> handle, const QRect& rect, QPointF start, QPointF current, qreal reach = 0,
              const std::vector<QRect>& windows = {kWindow}) {
  CropSelection selection = selectionOf(rect, windows);
  CropDrag(handle, start, selection).apply(selection, current, reach);
  return selection.selection();
}

// --- What is taken hold of ---

TEST(CropHandles, HandlesStandOnCornersAndInTheMiddleOfSides) {
  const QRectF rect(10, 20, 100, 60);
  EXPECT_EQ(CropHandles::place(rect, CropHandle::topLeft), QPointF(10, 20));
  EXPECT_EQ(CropHandles::place(rect, CropHandle::top), QPointF(60, 20));
  EXPECT_EQ(CropHandles::place(rect, CropHandle::right), QPointF(110, 50));
  EXPECT_EQ(CropHandles::place(rect, CropHandle::bottomLeft), QPointF(10, 80));
}

TEST(CropHandles, EachHandleIsTakenHoldOfWhereItStandsAndALittleBesideIt) {
  const QRectF rect(10, 20, 100, 60);
  for (const CropHandle handle : CropHandles::kAll) {
    const QPointF place = CropHandles::place(rect, handle);
    for (const QPointF beside : {QPointF(0, 0), QPointF(5, 5), QPointF(-5, 5), QPointF(5, -5), QPointF(-5, -5)}) {
      EXPECT_EQ(CropHandles::at(place + beside, rect, 6, false), handle) << static_cast<int>(handle);
    }
  }
}

TEST(CropHandles, ASideIsTakenHoldOfInAllItsLength) {
  const QRectF rect(10, 20, 100, 60);
  EXPECT_EQ(CropHandles::at({30, 21}, rect, 6, false), CropHandle::top);
  EXPECT_EQ(CropHandles::at({95, 83}, rect, 6, false), CropHandle::bottom);
  EXPECT_EQ(CropHandles::at({8, 70}, rect, 6, false), CropHandle::left);
}

TEST(CropHandles, TheInsideIsMovedUnlessItIsTheWholePicture) {
  const QRectF rect(10, 20, 100, 60);
  EXPECT_EQ(CropHandles::at({60, 50}, rect, 6, false), CropHandle::inside);
  EXPECT_EQ(CropHandles::at({60, 50}, rect, 6, true), std::nullopt);
  EXPECT_EQ(CropHandles::at({10, 50}, rect, 6, true), CropHandle::left) << "its sides can be moved in";
}

TEST(CropHandles, FartherAwayThereIsNothing) {
  const QRectF rect(10, 20, 100, 60);
  EXPECT_EQ(CropHandles::at({60, 13}, rect, 6, false), std::nullopt);
  EXPECT_EQ(CropHandles::at({117, 50}, rect, 6, false), std::nullopt);
  EXPECT_EQ(CropHandles::at({0, 0}, {}, 6, false), std::nullopt);
}

TEST(CropHandles, ATinySelectionCanBeMovedAndResized) {
  const QRectF rect(50, 50, 6, 3);
  EXPECT_EQ(CropHandles::at({53, 51.5}, rect, 6, false), CropHandle::inside);
  EXPECT_EQ(CropHandles::at({51, 51.5}, rect, 6, false), CropHandle::left);
  EXPECT_EQ(CropHandles::at({53, 58}, rect, 6, false), CropHandle::bottom);
  EXPECT_EQ(CropHandles::at({45, 45}, rect, 6, false), CropHandle::topLeft);
}

TEST(CropHandles, ThePointerTellsWhatItWouldDo) {
  EXPECT_EQ(CropHandles::cursor(std::nullopt), Qt::CrossCursor);
  EXPECT_EQ(CropHandles::cursor(CropHandle::inside), Qt::SizeAllCursor);
  EXPECT_EQ(CropHandles::cursor(CropHandle::topLeft), Qt::SizeFDiagCursor);
  EXPECT_EQ(CropHandles::cursor(CropHandle::bottomLeft), Qt::SizeBDiagCursor);
  EXPECT_EQ(CropHandles::cursor(CropHandle::bottom), Qt::SizeVerCursor);
  EXPECT_EQ(CropHandles::cursor(CropHandle::right), Qt::SizeHorCursor);
}

TEST(CropHandles, TheSmallestWindowIsTheOneUnderThePointer) {
  const CropSelection selection = selectionOf({}, {{0, 0, 300, 200}, {50, 50, 100, 100}, {200, 150, 200, 150}});
  const auto numberAt = [&](QPointF pixel) {
    const auto* window = CropHandles::windowAt(selection.candidates(), pixel);
    return window ? window->number : 0;
  };
  EXPECT_EQ(numberAt({10, 10}), 1);
  EXPECT_EQ(numberAt({50, 149.9}), 2);
  EXPECT_EQ(numberAt({49.9, 100}), 1);
  EXPECT_EQ(numberAt({250, 180}), 3);
  EXPECT_EQ(numberAt({350, 100}), 0);
  EXPECT_EQ(numberAt({-0.5, 10}), 0);
}

// --- Drawing ---

TEST(CropDrag, DrawsThePixelsBetweenTwoPoints) {
  EXPECT_EQ(dragged(std::nullopt, {}, {10.6, 20.2}, {30.1, 5.9}), QRect(10, 5, 21, 16));
}

TEST(CropDrag, OfNoLengthSelectsNothingEvenBesideALine) {
  EXPECT_EQ(dragged(std::nullopt, kWindow, {102, 83}, {102, 83}, 6), QRect());
  EXPECT_EQ(dragged(std::nullopt, kWindow, {-9, -4}, {-20, -30}, 6), QRect()) << "both are the picture's corner";
}

TEST(CropDrag, BothEndsOfWhatIsDrawnGoToLines) {
  EXPECT_EQ(dragged(std::nullopt, {}, {103, 76}, {216, 174}, 6), kWindow);
  EXPECT_EQ(dragged(std::nullopt, {}, {4, 3}, {395, 297}, 6), QRect(QPoint(), kImage));
  EXPECT_EQ(dragged(std::nullopt, {}, {103, 76}, {216, 174}, 0), QRect(103, 76, 113, 98));
}

TEST(CropDrag, BothEndsDoNotGoToTheSameLine) {
  EXPECT_EQ(dragged(std::nullopt, {}, {98, 20}, {103, 40}, 6), QRect(100, 20, 3, 20));
}

TEST(CropDrag, WithNothingSelectedEveryHandleDraws) {
  EXPECT_EQ(dragged(CropHandle::inside, {}, {10, 10}, {20, 30}), QRect(10, 10, 10, 20));
}

// --- Edges ---

TEST(CropDrag, AnEdgeGoesAsFarAsThePointer) {
  const QRect rect(50, 60, 100, 40);
  EXPECT_EQ(dragged(CropHandle::right, rect, {152, 70}, {172, 5}), QRect(50, 60, 120, 40));
  EXPECT_EQ(dragged(CropHandle::topLeft, rect, {50, 60}, {40, 75}), QRect(40, 75, 110, 25));
  EXPECT_EQ(dragged(CropHandle::bottom, rect, {60, 99}, {60, 500}), QRect(50, 60, 100, 240)) << "to the picture's edge";
}

TEST(CropDrag, AnEdgeDraggedPastItsOppositeChangesPlacesWithIt) {
  const QRect rect(50, 60, 100, 40);
  EXPECT_EQ(dragged(CropHandle::right, rect, {150, 70}, {30, 70}), QRect(30, 60, 20, 40));
  EXPECT_EQ(dragged(CropHandle::bottomRight, rect, {150, 100}, {-10, -10}), QRect(0, 0, 50, 60));
  EXPECT_EQ(dragged(CropHandle::topLeft, rect, {50, 60}, {170, 120}), QRect(150, 100, 20, 20));
}

TEST(CropDrag, ASideHasAtLeastOnePixel) {
  const QRect rect(50, 60, 100, 40);
  EXPECT_EQ(dragged(CropHandle::right, rect, {150, 70}, {50.4, 70}), QRect(50, 60, 1, 40));
  EXPECT_EQ(dragged(CropHandle::right, rect, {150, 70}, {49.6, 70}), QRect(49, 60, 1, 40));
  EXPECT_EQ(dragged(CropHandle::left, rect, {50, 70}, {150, 70}), QRect(149, 60, 1, 40));
  EXPECT_EQ(dragged(CropHandle::right, {0, 60, 5, 5}, {5, 60}, {-30, 60}), QRect(0, 60, 1, 5));
  EXPECT_EQ(dragged(CropHandle::top, {0, 290, 5, 10}, {2, 290}, {2, 400}), QRect(0, 299, 5, 1));
}

TEST(CropDrag, AnEdgeGoesToTheNearestLineWithinReach) {
  const QRect rect(50, 60, 30, 40);
  EXPECT_EQ(dragged(CropHandle::right, rect, {80, 70}, {96, 70}, 6), QRect(50, 60, 50, 40));
  EXPECT_EQ(dragged(CropHandle::right, rect, {80, 70}, {93, 70}, 6), QRect(50, 60, 43, 40));
  EXPECT_EQ(dragged(CropHandle::right, rect, {80, 70}, {96, 70}, 0), QRect(50, 60, 46, 40));
  EXPECT_EQ(dragged(CropHandle::right, rect, {80, 70}, {102, 70}, 9, {kWindow, {103, 0, 50, 50}}),
            QRect(50, 60, 53, 40));
  EXPECT_EQ(dragged(CropHandle::left, rect, {50, 70}, {5, 70}, 6), QRect(0, 60, 80, 40)) << "the picture's edge";
}

TEST(CropDrag, ALineOfWindowsIsNoneWhereItsOwnOppositeEdgeIs) {
  EXPECT_EQ(dragged(CropHandle::left, kWindow, {100, 100}, {217, 100}, 6), QRect(217, 80, 3, 90));
}

// --- Moving ---

TEST(CropDrag, MovingKeepsTheSizeAndStaysInThePicture) {
  const QRect rect(50, 60, 100, 40);
  EXPECT_EQ(dragged(CropHandle::inside, rect, {70, 70}, {80.4, 65}), QRect(60, 55, 100, 40));
  EXPECT_EQ(dragged(CropHandle::inside, rect, {70, 70}, {900, -900}), QRect(300, 0, 100, 40));
}

TEST(CropDrag, WhileMovingEitherEdgeGoesToALine) {
  const QRect rect(50, 200, 30, 20);
  EXPECT_EQ(dragged(CropHandle::inside, rect, {60, 210}, {107, 210}, 6), QRect(100, 200, 30, 20)) << "the left one";
  EXPECT_EQ(dragged(CropHandle::inside, rect, {60, 210}, {83, 210}, 6), QRect(70, 200, 30, 20)) << "the right one";
  EXPECT_EQ(dragged(CropHandle::inside, rect, {60, 210}, {83, 210}, 0), QRect(73, 200, 30, 20));
}

TEST(CropDrag, WhatIsDraggedIsAPersonsOwn) {
  CropSelection selection = selectionOf({}, {kWindow});
  selection.pick(selection.candidates().front().id);
  CropDrag(CropHandle::right, {220, 100}, selection).apply(selection, {260, 100}, 0);
  EXPECT_FALSE(selection.selectedCandidate());
}

TEST(CropDrag, TakesPlaceAtTheEdgeBesideThePointer) {
  CropSelection selection = selectionOf({50, 60, 100, 40});
  EXPECT_EQ(CropDrag(CropHandle::right, {150, 70}, selection).point(selection, {153, 70.6}), QPoint(150, 71));
  EXPECT_EQ(CropDrag(CropHandle::topLeft, {50, 60}, selection).point(selection, {49, 62}), QPoint(50, 60));
  EXPECT_EQ(CropDrag(std::nullopt, {50, 60}, selection).point(selection, {149, 99}), QPoint(150, 100));
}

// --- Whatever a person does ---

/// Of each kind, so that all together are more than 100,000.
constexpr int kDrags = 34'000;

class RandomDrags : public ::testing::Test {
 protected:
  RandomDrags() : seed_(std::random_device()()), random_(seed_) {}
  int number(int from, int to) { return std::uniform_int_distribution(from, to)(random_); }
  QPointF point() { return {number(-400, 4400) / 10.0, number(-300, 3300) / 10.0}; }
  QRect rect() {
    const int x = number(0, kImage.width() - 1);
    const int y = number(0, kImage.height() - 1);
    return {x, y, number(1, kImage.width() - x), number(1, kImage.height() - y)};
  }
  std::vector<QRect> rects() {
    std::vector<QRect> result(static_cast<size_t>(number(0, 4)));
    std::generate(result.begin(), result.end(), [this] { return rect(); });
    return result;
  }
  uint32_t seed_;
  std::mt19937 random_;
};

TEST_F(RandomDrags, LeaveASelectionInsideThePicture) {
  for (int i = 0; i < kDrags; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed_ << ", drag " << i);
    const auto handle = static_cast<CropHandle>(number(0, 8));
    const QRect from = rect();
    const QPointF start = point();
    const QPointF end = point();
    const qreal reach = number(0, 1) * number(0, 200) / 10.0;
    const QRect to = dragged(handle, from, start, end, reach, rects());
    ASSERT_FALSE(to.isEmpty());
    ASSERT_TRUE(QRect(QPoint(), kImage).contains(to));
    if (handle == CropHandle::inside) {
      ASSERT_EQ(to.size(), from.size());
    }
    const QPointF by = end - start;
    const auto isOwn = [&](int edge, int opposite) { return edge == opposite || std::abs(edge - opposite) == 1; };
    if (handle == CropHandle::left || handle == CropHandle::right) {
      ASSERT_EQ(to.top(), from.top());
      ASSERT_EQ(to.height(), from.height());
      const int fixed = handle == CropHandle::left ? from.right() + 1 : from.left();
      const bool keepsFixed = to.left() == fixed || to.right() + 1 == fixed;
      ASSERT_TRUE(keepsFixed);
      // Without a line nearby the edge is where the pointer has taken it.
      const qreal wanted =
          std::clamp<qreal>((handle == CropHandle::left ? from.left() : from.right() + 1) + by.x(), 0, kImage.width());
      const int edge = to.left() == fixed ? to.right() + 1 : to.left();
      if (!isOwn(edge, fixed)) {
        ASSERT_LE(std::abs(edge - wanted), std::max(reach, 0.5));
      }
    }
  }
}

TEST_F(RandomDrags, WithoutReachDrawAsTheSelectionItselfDoes) {
  for (int i = 0; i < kDrags; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed_ << ", drag " << i);
    const QPointF start = point();
    const QPointF end = number(0, 9) ? point() : start;
    CropSelection plain = selectionOf(rect());
    plain.drag(start, end);
    ASSERT_EQ(dragged(std::nullopt, rect(), start, end, 0, rects()), plain.selection());
  }
}

TEST_F(RandomDrags, WithReachGoNoFartherThanTheReach) {
  for (int i = 0; i < kDrags; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed_ << ", drag " << i);
    const QPointF start = point();
    const QPointF end = point();
    const qreal reach = number(1, 100) / 10.0;
    const QRect with = dragged(std::nullopt, rect(), start, end, reach, rects());
    const QRect without = dragged(std::nullopt, rect(), start, end, 0);
    if (without.isEmpty()) continue;
    ASSERT_FALSE(with.isEmpty());
    ASSERT_LE(std::abs(with.left() - without.left()), reach + 1);
    ASSERT_LE(std::abs(with.right() - without.right()), reach + 1);
    ASSERT_LE(std::abs(with.top() - without.top()), reach + 1);
    ASSERT_LE(std::abs(with.bottom() - without.bottom()), reach + 1);
  }
}

}  // namespace
}  // namespace testing
}  // namespace quillmere
