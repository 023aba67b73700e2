#include "inbox/InboxSidebar.h"

#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>

#include "inbox/InboxFixture.h"
#include "inbox/SearchField.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

class InboxSidebarTest : public testing::InboxFixture {
 protected:
  void show() {
    sidebar = std::make_unique<InboxSidebar>(*presentation, nullptr);
    sidebar->list().onOpen = [] {};
    sidebar->resize(340, 500);
    sidebar->show();
    sidebar->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(sidebar.get()));
    sidebar->refresh(true);
  }
  void TearDown() override {
    sidebar.reset();
    InboxFixture::TearDown();
  }
  bool shows(const QString& text) const {
    for (const auto* label : sidebar->findChildren<QLabel*>()) {
      if (label->isVisible() && label->text() == text) return true;
    }
    return false;
  }
  void type(const QString& text) {
    sidebar->search().setFocus();
    QTest::keyClicks(&sidebar->search(), text);
    executor.drain();
  }

  std::unique_ptr<InboxSidebar> sidebar;
};

TEST_F(InboxSidebarTest, FindMovesTheKeyboardToTheSearchEachTime) {
  arrive("1.png");
  show();
  presentation->find();
  EXPECT_TRUE(sidebar->search().hasFocus());
  sidebar->list().setFocus();
  presentation->find();
  EXPECT_TRUE(sidebar->search().hasFocus());
}

TEST_F(InboxSidebarTest, WhatIsTypedIsTheFilterAndReturnGoesToTheFirstHit) {
  const UUID one = arrive("invoice.png");
  arrive("other.png");
  show();
  type(QStringLiteral("inv"));
  EXPECT_EQ(presentation->filter->text, QStringLiteral("inv"));
  EXPECT_TRUE(shows(QStringLiteral("1 screenshot")));
  QTest::keyClick(&sidebar->search(), Qt::Key_Return);
  EXPECT_TRUE(sidebar->list().hasFocus());
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{one});
}

TEST_F(InboxSidebarTest, ReturnBeforeTheSearchHasEndedGoesToWhatItFinds) {
  arrive("other.png");
  const UUID one = arrive("invoice.png");
  arrive("last.png");
  show();
  sidebar->search().setFocus();
  executor.holdBackground();
  QTest::keyClicks(&sidebar->search(), QStringLiteral("inv"));
  QTest::keyClick(&sidebar->search(), Qt::Key_Return);
  EXPECT_TRUE(model->selectedItemIDs->empty());
  while (executor.heldBackground() > 0) executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{one});
  EXPECT_TRUE(sidebar->list().hasFocus());
}

TEST_F(InboxSidebarTest, EscapeEndsTheSearchAndThenTheSelection) {
  const UUID one = arrive("invoice.png");
  arrive("other.png");
  show();
  type(QStringLiteral("inv"));
  model->setSelectedItemIDs({one});
  sidebar->escape();
  EXPECT_TRUE(presentation->filter->isOff());
  EXPECT_EQ(sidebar->search().text(), QString());
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{one});
  sidebar->escape();
  EXPECT_TRUE(model->selectedItemIDs->empty());
}

TEST_F(InboxSidebarTest, AFilterThatIsSetElsewhereStandsInTheField) {
  arrive("1.png");
  show();
  presentation->setFilter({QStringLiteral("word"), InboxFilter::Scope::all});
  EXPECT_EQ(sidebar->search().text(), QStringLiteral("word"));
  presentation->setFilter({});
  EXPECT_EQ(sidebar->search().text(), QString());
}

// --- Where no row is ---

TEST_F(InboxSidebarTest, AnEmptyModelLeavesTheSidebarEmpty) {
  show();
  EXPECT_TRUE(sidebar->list().isVisible());
  EXPECT_FALSE(shows(QStringLiteral("No Screenshots")));
  EXPECT_FALSE(shows(QStringLiteral("0 screenshots")));
}

TEST_F(InboxSidebarTest, ASearchWithoutAHitSaysSo) {
  arrive("1.png");
  show();
  type(QStringLiteral("nowhere"));
  EXPECT_FALSE(sidebar->list().isVisible());
  EXPECT_TRUE(shows(QStringLiteral("No Results for “nowhere”")));
  presentation->setFilter({});
  EXPECT_TRUE(sidebar->list().isVisible());
}

TEST_F(InboxSidebarTest, AStatusThatNoScreenshotHasSaysSo) {
  arrive("1.png");
  show();
  presentation->setFilter({QStringLiteral("  "), InboxFilter::Scope::saved});
  EXPECT_TRUE(shows(QStringLiteral("No Screenshots")));
  EXPECT_TRUE(shows(QStringLiteral("No screenshot has the status you’re filtering by.")));
}

// --- The count ---

TEST_F(InboxSidebarTest, TheCountIsOfTheRowsAndGoesWithASelection) {
  const UUID one = arrive("1.png");
  arrive("2.png");
  show();
  EXPECT_TRUE(shows(QStringLiteral("2 screenshots")));
  const QRect list = sidebar->list().geometry();
  model->setSelectedItemIDs({one});
  sidebar->refresh(true);
  EXPECT_FALSE(shows(QStringLiteral("2 screenshots")));
  EXPECT_EQ(sidebar->list().geometry(), list) << "nothing jumps";
}

TEST_F(InboxSidebarTest, TheFilterMenuHasTheStatusesAndTheChosenOneIsMarked) {
  arrive("1.png");
  show();
  QPushButton* button = nullptr;
  for (auto* each : sidebar->findChildren<QPushButton*>()) {
    if (each->accessibleName() == QStringLiteral("Filter")) button = each;
  }
  ASSERT_TRUE(button);
  EXPECT_EQ(button->toolTip(), QStringLiteral("Show only screenshots with one status"));
  QStringList titles;
  QMetaObject::invokeMethod(
      sidebar.get(),
      [&] {
        auto* menu = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu);
        for (QAction* action : menu->actions())
          titles << action->text() + (action->isChecked() ? QStringLiteral("*") : QString());
        menu->setActiveAction(menu->actions()[3]);
        QTest::keyClick(menu, Qt::Key_Return);
      },
      Qt::QueuedConnection);
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(titles.join(QLatin1Char('|')),
            QStringLiteral("All Screenshots*|Pending Screenshots|Temporary Screenshots|Saved Screenshots|"
                           "Unavailable Screenshots"));
  EXPECT_EQ(presentation->filter->scope, InboxFilter::Scope::saved);
}

}  // namespace
}  // namespace quillmere
