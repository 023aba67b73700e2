#include "inbox/SelectionSummary.h"

#include <gtest/gtest.h>

#include "support/Printing.h"
#include "support/Records.h"

namespace quillmere {
namespace {

using State = ScreenshotItem::State;

ScreenshotItem item(int number, State state) {
  ScreenshotItem item;
  item.id = testing::uuid(number);
  item.state = state;
  return item;
}

TEST(SelectionSummary, CountsWhatCannotBeReachedAsThatAlone) {
  const ScreenshotList items({item(1, State::pending), item(2, State::temporary), item(3, State::permanent),
                              item(4, State::permanent), item(5, State::temporary), item(6, State::pending)});
  const UUIDSet selected{testing::uuid(1), testing::uuid(2), testing::uuid(3),
                         testing::uuid(4), testing::uuid(5), testing::uuid(99)};
  const auto summary = SelectionSummary::of(selected, items, {testing::uuid(5), testing::uuid(6)});
  EXPECT_EQ(summary, (SelectionSummary{1, 1, 2, 1}));
  EXPECT_EQ(summary.total(), 5) << "what is no record is not counted";
}

TEST(SelectionSummary, HasALineForWhatThereIs) {
  EXPECT_TRUE(SelectionSummary().lines().empty());
  const auto lines = SelectionSummary{3, 1, 2, 4}.lines();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0],
            (SelectionSummary::Line{QStringLiteral("circle.dashed"), QStringLiteral("3 waiting for a decision")}));
  EXPECT_EQ(lines[1].text, QStringLiteral("1 Temporary"));
  EXPECT_EQ(lines[2].text, QStringLiteral("2 Saved"));
  EXPECT_EQ(lines[3].text, QStringLiteral("4 unavailable"));
  EXPECT_EQ((SelectionSummary{0, 0, 2, 0}).lines().size(), 1U);
}

}  // namespace
}  // namespace quillmere
