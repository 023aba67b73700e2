#include "editor/WindowCandidate.h"

#include <gtest/gtest.h>
#include <set>

#include "editor/CropsForTests.h"

namespace quillmere::testing {
namespace {

using ImageOperations::DetectedWindow;

DetectedWindow window(const QRectF& frame) {
  DetectedWindow window;
  window.frame = frame;
  window.shadow = shadow(1, 2, 3, 4);
  window.isFullyDrawn = true;
  return window;
}

/// The number of the one to begin with; 0 for none.
int primary(const std::vector<DetectedWindow>& windows) {
  const auto candidates = windowCandidates(windows);
  const WindowCandidate* first = primaryCandidate(candidates, windows);
  return first ? first->number : 0;
}

TEST(WindowCandidates, AreNumberedFromOneInTheirOrder) {
  const auto candidates =
      windowCandidates({window({10, 20, 300, 200}), window({0, 0, 40, 30}), window({5, 5, 20, 20})});
  ASSERT_EQ(candidates.size(), 3u);
  EXPECT_EQ(candidates[0].rect, QRect(10, 20, 300, 200));
  EXPECT_EQ(candidates[1].rect, QRect(0, 0, 40, 30));
  EXPECT_EQ(candidates[2].rect, QRect(5, 5, 20, 20));
  std::set<UUID> ids;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(candidates[static_cast<size_t>(i)].number, i + 1);
    EXPECT_EQ(candidates[static_cast<size_t>(i)].shadow, shadow(1, 2, 3, 4));
    EXPECT_FALSE(candidates[static_cast<size_t>(i)].id.isNull());
    ids.insert(candidates[static_cast<size_t>(i)].id);
  }
  EXPECT_EQ(ids.size(), 3u);
}

TEST(WindowCandidates, HaveNewIdsEachTime) {
  const std::vector<DetectedWindow> windows{window({10, 20, 300, 200})};
  EXPECT_NE(windowCandidates(windows)[0].id, windowCandidates(windows)[0].id);
}

TEST(WindowCandidates, AreNoneOfNoWindows) {
  EXPECT_TRUE(windowCandidates({}).empty());
  EXPECT_EQ(primary({}), 0);
}

TEST(PrimaryCandidate, NeedNotBeTheFirst) {
  DetectedWindow large = window({0, 0, 900, 700});
  large.isCovered = true;
  DetectedWindow within = window({20, 20, 300, 200});
  within.isEnclosed = true;
  DetectedWindow withButtons = window({400, 400, 100, 90});
  withButtons.hasTitleBarButtons = true;
  EXPECT_EQ(primary({large, within, window({500, 100, 200, 200}), withButtons}), 4);
}

TEST(PrimaryCandidate, OfWindowsThatAreAlikeIsTheEarliest) {
  EXPECT_EQ(primary({window({0, 0, 100, 100}), window({0, 0, 100, 100})}), 1);
  EXPECT_EQ(primary({window({0, 0, 100, 100}), window({50, 50, 100, 100})}), 1);
  EXPECT_EQ(primary({window({0, 0, 100, 100}), window({0, 0, 101, 100})}), 2);
}

TEST(PrimaryCandidate, IsNoneWhereAllLieInOthers) {
  DetectedWindow within = window({20, 20, 300, 200});
  within.isEnclosed = true;
  EXPECT_EQ(primary({within, within}), 0);
}

}  // namespace
}  // namespace quillmere::testing
