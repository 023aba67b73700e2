#include "platform/linux/panel/X11CardShape.h"

#include <gtest/gtest.h>
#include <algorithm>

#include "popup/CardShape.h"

namespace quillmere {
namespace {

/// Which pixels the lines cover, and how often.
class Covered {
 public:
  Covered(const QRect& card, qreal scale) : area_(X11CardShape::pixels(card, scale)) {
    for (const xcb_rectangle_t& line : X11CardShape::lines(card, scale)) {
      EXPECT_TRUE(area_.contains(QRect(line.x, line.y, line.width, line.height)));
      for (int y = line.y; y < line.y + line.height; ++y) rows_[y].push_back({line.x, line.x + line.width});
    }
  }
  /// The first and the last-but-one pixel of a line that is covered once; empty for one that isn't.
  std::optional<std::pair<int, int>> row(int y) const {
    const auto found = rows_.find(y);
    if (found == rows_.end()) return std::nullopt;
    EXPECT_EQ(found->second.size(), 1U) << "line " << y;
    return found->second.front();
  }
  QRect area() const { return area_; }

 private:
  QRect area_;
  std::map<int, std::vector<std::pair<int, int>>> rows_;
};

class X11CardShapeTest : public ::testing::TestWithParam<qreal> {};

TEST_P(X11CardShapeTest, EveryLineOfTheCardIsCoveredOnceAndSymmetrically) {
  for (const int height : {1, 2, 40, 66, 67, 421, 422, 423}) {
    const Covered covered(QRect(24, 24, 440, height), GetParam());
    const QRect area = covered.area();
    for (int y = area.top(); y <= area.bottom(); ++y) {
      const auto row = covered.row(y);
      ASSERT_TRUE(row) << height << ", line " << y;
      EXPECT_EQ(row->first - area.left(), area.right() + 1 - row->second) << "line " << y;
      EXPECT_EQ(row, covered.row(area.top() + area.bottom() - y)) << "line " << y;
    }
  }
}

TEST_P(X11CardShapeTest, APixelBelongsToTheCardWhenItsMiddleDoes) {
  const qreal scale = GetParam();
  const QRect card(24, 24, 440, 300);
  const Covered covered(card, scale);
  const QPainterPath path = CardShape::path(card);
  const int corner = static_cast<int>(CardShape::kCornerReach * scale) + 2;
  for (int y = covered.area().top(); y < covered.area().top() + corner; ++y) {
    const auto row = covered.row(y);
    for (int x = covered.area().left(); x < covered.area().left() + corner; ++x) {
      // The path is made of short straight lines.
      const QPointF middle((x + 0.5) / scale, (y + 0.5) / scale);
      const QPointF apart(0.05, 0);
      if (path.contains(middle - apart) != path.contains(middle + apart)) continue;
      ASSERT_EQ(x >= row->first, path.contains(middle)) << x << ", " << y;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Scales, X11CardShapeTest, testing::Values(1, 1.25, 1.5, 1.75, 2, 3));

TEST(X11CardPixelsTest, EachEdgeIsRoundedByItself) {
  EXPECT_EQ(X11CardShape::pixels(QRect(24, 24, 440, 421), 1), QRect(24, 24, 440, 421));
  EXPECT_EQ(X11CardShape::pixels(QRect(24, 24, 440, 421), 2), QRect(48, 48, 880, 842));
  EXPECT_EQ(X11CardShape::pixels(QRect(24, 24, 440, 421), 1.5), QRect(36, 36, 660, 632)) << "667.5 is the lower edge";
  EXPECT_EQ(X11CardShape::pixels(QRect(24, 24, 440, 422), 1.5), QRect(36, 36, 660, 633));
}

}  // namespace
}  // namespace quillmere
