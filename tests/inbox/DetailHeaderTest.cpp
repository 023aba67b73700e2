#include "inbox/DetailHeader.h"

#include <QtTest/QTest>

#include "inbox/DetailFixture.h"

namespace quillmere {
namespace {

class DetailHeaderTest : public testing::DetailFixture {
 protected:
  void show() {
    DetailState state;
    state.isUnavailable = model->unavailableItemIDs->contains(id);
    header.show(item(id), state);
  }
  DetailHeader header{*model, *presentation, nullptr};
};

TEST_F(DetailHeaderTest, APendingOneCanBeKeptMovedAndThrownAway) {
  show();
  EXPECT_EQ(button(header, "Move and Rename…")->toolTip(),
            QStringLiteral("Choose a new name and location, and keep the screenshot"));
  EXPECT_EQ(button(header, "Keep")->toolTip(), QStringLiteral("Keep this screenshot without a deletion timer"));
  QTest::mouseClick(button(header, "Keep"), Qt::LeftButton);
  EXPECT_EQ(stateOf(id), ScreenshotItem::State::permanent);
  show();
  EXPECT_FALSE(button(header, "Keep")) << "it is kept";
  EXPECT_TRUE(button(header, "Move and Rename…"));
}

TEST_F(DetailHeaderTest, AnUnavailableOneCanOnlyBeThrownAway) {
  makeUnavailable(id);
  show();
  EXPECT_FALSE(button(header, "Keep"));
  EXPECT_FALSE(button(header, "Move and Rename…"));
  EXPECT_TRUE(button(header, "Move to Trash")->isEnabled());
}

TEST_F(DetailHeaderTest, MoveToTrashAsksFirst) {
  show();
  EXPECT_EQ(button(header, "Move to Trash")->toolTip(), QStringLiteral("Move this screenshot to Trash"));
  QTest::mouseClick(button(header, "Move to Trash"), Qt::LeftButton);
  ASSERT_TRUE(*presentation->deletionCandidate);
  EXPECT_EQ((*presentation->deletionCandidate)->id, id);
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(DetailHeaderTest, WhereItDeletesItSaysSo) {
  model->setDeletesChosenImmediately(true);
  show();
  EXPECT_FALSE(button(header, "Move to Trash"));
  EXPECT_TRUE(button(header, "Delete"));
}

}  // namespace
}  // namespace quillmere
