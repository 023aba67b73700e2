#include "records/ScreenshotList.h"

#include <gtest/gtest.h>

#include "support/Printing.h"
#include "support/Records.h"

namespace quillmere {
namespace {

using testing::bareItem;
using testing::uuid;

std::vector<ScreenshotItem> itemsOf(const ScreenshotList& list) {
  std::vector<ScreenshotItem> items;
  list.forEach([&](const ScreenshotItem& item) { items.push_back(item); });
  return items;
}

ScreenshotList threeItems() {
  return ScreenshotList({bareItem(3), bareItem(2), bareItem(1)});
}

TEST(ScreenshotList, KeepsTheOrderItWasGiven) {
  const ScreenshotList list = threeItems();
  EXPECT_EQ(list.size(), 3u);
  EXPECT_EQ(list[0], bareItem(3));
  EXPECT_EQ(list[2], bareItem(1));
  EXPECT_EQ(itemsOf(list), (std::vector{bareItem(3), bareItem(2), bareItem(1)}));
}

TEST(ScreenshotList, NewOneIsEmpty) {
  EXPECT_TRUE(ScreenshotList().empty());
  EXPECT_EQ(ScreenshotList().indexOf(uuid(1)), std::nullopt);
  EXPECT_EQ(ScreenshotList().find(uuid(1)), nullptr);
}

TEST(ScreenshotList, NewestArrivalStandsFirst) {
  ScreenshotList list = threeItems();
  list.insertNewest(bareItem(4));
  EXPECT_EQ(list[0], bareItem(4));
  EXPECT_EQ(list[1], bareItem(3));
}

TEST(ScreenshotList, FindsByIdentityAlsoAfterChanges) {
  ScreenshotList list = threeItems();
  EXPECT_EQ(list.indexOf(uuid(1)), 2u);
  list.insertNewest(bareItem(4));
  EXPECT_EQ(list.indexOf(uuid(4)), 0u);
  EXPECT_EQ(list.indexOf(uuid(1)), 3u);
  EXPECT_EQ(list.remove({uuid(2)}), (std::vector<size_t>{2}));
  EXPECT_EQ(list.indexOf(uuid(1)), 2u);
  EXPECT_EQ(list.indexOf(uuid(2)), std::nullopt);
  ASSERT_NE(list.find(uuid(3)), nullptr);
  EXPECT_EQ(*list.find(uuid(3)), bareItem(3));
}

TEST(ScreenshotList, OfTwoRecordsWithOneIdentityTheNewestIsFound) {
  ScreenshotItem newer = bareItem(1);
  newer.suggestedName = "newer";
  const ScreenshotList list({bareItem(2), newer, bareItem(1)});
  EXPECT_EQ(list.indexOf(uuid(1)), 1u);
}

TEST(ScreenshotList, RemovingTellsTheIndicesThatTheRecordsHad) {
  ScreenshotList list = threeItems();
  EXPECT_EQ(list.remove({uuid(1), uuid(3), uuid(77)}), (std::vector<size_t>{0, 2}));
  EXPECT_EQ(itemsOf(list), std::vector{bareItem(2)});
}

TEST(ScreenshotList, RemovingNothingTellsNothing) {
  ScreenshotList list = threeItems();
  EXPECT_TRUE(list.remove({}).empty());
  EXPECT_TRUE(list.remove({uuid(77)}).empty());
  EXPECT_EQ(list.size(), 3u);
}

TEST(ScreenshotList, UpdateTellsWhetherTheRecordBecameAnotherValue) {
  ScreenshotList list = threeItems();
  EXPECT_TRUE(list.update(1, [](ScreenshotItem& item) { item.suggestedName = "new"; }));
  EXPECT_EQ(list[1].suggestedName, "new");
  EXPECT_FALSE(list.update(1, [](ScreenshotItem& item) { item.suggestedName = "new"; }));
}

TEST(ScreenshotList, OnlyARecordThatChangedForgetsItsPlaceInTheFile) {
  ScreenshotList list = threeItems();
  for (size_t i = 0; i < 3; ++i) list.setRange(i, {static_cast<int64_t>(i) * 10 + 1, 9});
  list.update(0, [](ScreenshotItem& item) { item.state = ScreenshotItem::State::permanent; });
  list.update(1, [](ScreenshotItem& item) { item.state = ScreenshotItem::State::pending; });
  EXPECT_EQ(list.range(0).length, 0);
  EXPECT_EQ(list.range(1).length, 9);
  EXPECT_EQ(list.range(1).offset, 11);
}

TEST(ScreenshotList, PlacesStayWithTheirRecords) {
  ScreenshotList list = threeItems();
  for (size_t i = 0; i < 3; ++i) list.setRange(i, {static_cast<int64_t>(i) * 10 + 1, 9});
  list.insertNewest(bareItem(4));
  EXPECT_EQ(list.range(0).length, 0);
  EXPECT_EQ(list.range(3).offset, 21);
  list.remove({uuid(2)});
  EXPECT_EQ(list.range(2).offset, 21);
  list.forgetRanges();
  for (size_t i = 0; i < list.size(); ++i) EXPECT_EQ(list.range(i).length, 0);
}

}  // namespace
}  // namespace quillmere
