#include "records/ScreenshotList.h"

#include <gtest/gtest.h>
#include <random>

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

// --- Snapshots ---

std::vector<ScreenshotItem> itemsOf(const ScreenshotList::Snapshot& snapshot) {
  std::vector<ScreenshotItem> items;
  for (const ScreenshotItem* item : snapshot.newestFirst()) items.push_back(*item);
  return items;
}

ScreenshotList listOf(int count) {
  std::vector<ScreenshotItem> items;
  for (int i = count; i > 0; --i) items.push_back(bareItem(i));
  return ScreenshotList(std::move(items));
}

void rename(ScreenshotItem& item) {
  item.suggestedName = item.suggestedName.value_or("") + "+";
}

TEST(ScreenshotListSnapshot, StaysWhatItWas) {
  ScreenshotList list = listOf(600);
  const auto before = itemsOf(list);
  const auto snapshot = list.snapshot();
  list.update(0, rename);
  list.update(300, rename);
  list.update(300, rename);
  list.remove({uuid(7), uuid(299)});
  list.insertNewest(bareItem(1000));
  EXPECT_EQ(itemsOf(snapshot), before);
  EXPECT_EQ(snapshot.size(), 600u);
  EXPECT_EQ(list.size(), 599u);
}

TEST(ScreenshotListSnapshot, SharesTheRecordsThatDidNotChange) {
  ScreenshotList list = listOf(600);
  const auto first = list.snapshot();
  list.update(5, rename);
  list.insertNewest(bareItem(1000));
  const auto second = list.snapshot();
  const auto before = first.newestFirst();
  const auto after = second.newestFirst();
  for (size_t i = 0; i < before.size(); ++i) EXPECT_EQ(before[i] == after[i + 1], i != 5) << i;
}

TEST(ScreenshotListSnapshot, AReferenceTellsWhatTheRecordWasAsLongAsASnapshotHasIt) {
  ScreenshotList list = listOf(3);
  const auto snapshot = list.snapshot();
  const ScreenshotItem& before = list[1];
  list.update(1, rename);
  EXPECT_EQ(before, bareItem(2));
  EXPECT_NE(list[1], before);
}

TEST(ScreenshotListSnapshot, WithoutOneARecordIsChangedInItsPlace) {
  ScreenshotList list = listOf(3);
  const ScreenshotItem* record = &list[1];
  { const auto gone = list.snapshot(); }
  list.update(1, rename);
  EXPECT_EQ(&list[1], record);
}

TEST(ScreenshotListSnapshot, AnyChangesGiveTheListOfAPlainVector) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&](size_t limit) { return random() % std::max<size_t>(limit, 1); };
    ScreenshotList list = listOf(static_cast<int>(below(1500)));
    std::vector<ScreenshotItem> plain = itemsOf(list);
    int next = 5000;
    std::vector<std::pair<ScreenshotList::Snapshot, std::vector<ScreenshotItem>>> taken;
    for (int step = 0; step < 200; ++step) {
      const size_t index = below(plain.size());
      switch (below(4)) {
        case 0:
          list.insertNewest(bareItem(next));
          plain.insert(plain.begin(), bareItem(next++));
          break;
        case 1:
          if (plain.empty()) break;
          list.update(index, rename);
          rename(plain[index]);
          break;
        case 2: {
          UUIDSet gone;
          for (size_t count = below(300); count > 0 && !plain.empty(); --count)
            gone.insert(plain[below(plain.size())].id);
          list.remove(gone);
          std::erase_if(plain, [&](const ScreenshotItem& item) { return gone.contains(item.id); });
          break;
        }
        default:
          taken.emplace_back(list.snapshot(), plain);
          if (taken.size() > 3) taken.erase(taken.begin());
      }
      ASSERT_EQ(itemsOf(list), plain);
      if (plain.empty()) continue;
      const size_t seen = below(plain.size());
      ASSERT_EQ(list[seen], plain[seen]);
      ASSERT_EQ(list.indexOf(plain[seen].id), seen);
    }
    for (const auto& [snapshot, then] : taken) EXPECT_EQ(itemsOf(snapshot), then);
  }
}

}  // namespace
}  // namespace quillmere
