#include "inbox/ScreenshotSelectionView.h"

#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>

#include "inbox/DetailFixture.h"

namespace quillmere {
namespace {

using State = ScreenshotItem::State;

class ScreenshotSelectionViewTest : public testing::DetailFixture {
 protected:
  ScreenshotSelectionViewTest() { second = arrive("2.png"); }
  void select(UUIDSet ids) {
    model->setSelectedItemIDs(std::move(ids));
    refresh();
  }
  void refresh() {
    view.update();
    QCoreApplication::sendPostedEvents(&view);
  }
  QStringList texts() const {
    QStringList texts;
    for (const auto* label : view.widget()->findChildren<QLabel*>()) {
      if (label->isVisibleTo(view.widget())) texts += label->text();
    }
    return texts;
  }
  QPushButton* button(const char* text) const { return DetailFixture::button(*view.widget(), text); }
  UUID second;
  ScreenshotSelectionView view{*model, *presentation, nullptr};
};

TEST_F(ScreenshotSelectionViewTest, SaysHowManyOfWhich) {
  model->keepBatch({second});
  select({id, second});
  EXPECT_EQ(texts(), (QStringList{QStringLiteral("2 Screenshots Selected"), QStringLiteral("1 waiting for a decision"),
                                  QStringLiteral("1 Saved")}));
}

TEST_F(ScreenshotSelectionViewTest, CountsOnceHoweverOftenItIsTold) {
  select({id, second});
  for (int i = 0; i < 100; ++i) view.update();
  model->removeRecords({second});
  EXPECT_EQ(texts().first(), QStringLiteral("2 Screenshots Selected")) << "not yet";
  QCoreApplication::sendPostedEvents(&view);
  EXPECT_EQ(texts().first(), QStringLiteral("1 Screenshot Selected"));
}

TEST_F(ScreenshotSelectionViewTest, KeepsAndMarksThoseThatCanBe) {
  model->keepBatch({second});
  select({id, second});
  EXPECT_EQ(button("Mark Temporary")->toolTip(),
            QStringLiteral("Keep these screenshots for a set time, then move them to Trash"));
  button("Mark Temporary")->menu()->actions().last()->trigger();
  EXPECT_EQ(stateOf(id), State::temporary);
  EXPECT_EQ(stateOf(second), State::permanent);
  refresh();
  EXPECT_FALSE(button("Mark Temporary")->isEnabled());
  QTest::mouseClick(button("Keep"), Qt::LeftButton);
  EXPECT_EQ(stateOf(id), State::permanent);
}

TEST_F(ScreenshotSelectionViewTest, MoveToTrashAsksAboutAll) {
  select({id, second});
  EXPECT_EQ(button("Move to Trash")->toolTip(), QStringLiteral("Move these screenshots to Trash"));
  QTest::mouseClick(button("Move to Trash"), Qt::LeftButton);
  ASSERT_TRUE(*presentation->batchDeletion);
  EXPECT_EQ((*presentation->batchDeletion)->items.size(), 2U);
  QCoreApplication::sendPostedEvents(&view);
  EXPECT_FALSE(button("Keep")->isEnabled()) << "it waits for the answer";
  presentation->cancelDeletion();
  QCoreApplication::sendPostedEvents(&view);
  EXPECT_TRUE(button("Keep")->isEnabled());
}

TEST_F(ScreenshotSelectionViewTest, FollowsTheReadingOfSeveral) {
  analyzer.holdsReadings = true;
  select({id, second});
  presentation->extractText({item(id), item(second)});
  QCoreApplication::sendPostedEvents(&view);
  EXPECT_EQ(texts().last(), QStringLiteral("Reading text in 2 screenshots…"));
}

}  // namespace
}  // namespace quillmere
