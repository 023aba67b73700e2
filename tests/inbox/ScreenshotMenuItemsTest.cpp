#include "inbox/ScreenshotMenuItems.h"

#include <QtGui/QAction>
#include <QtWidgets/QMenu>

#include "inbox/InboxFixture.h"

namespace quillmere {
namespace {

class ScreenshotMenuItemsTest : public testing::InboxFixture {
 protected:
  void make(const std::vector<UUID>& ids, ScreenshotMenuItems::Keys keys = ScreenshotMenuItems::Keys::active) {
    sharer = std::make_unique<InboxSharing>(*presentation);
    menu = std::make_unique<QMenu>();
    items = new ScreenshotMenuItems(
        *menu, [this, ids] { return ScreenshotActionsMenu(ids, *model, *presentation); }, *sharer, keys);
  }
  void TearDown() override {
    menu.reset();
    InboxFixture::TearDown();
  }
  QAction* item(const QString& text, const QMenu* of = nullptr) const {
    for (QAction* action : (of ? of : menu.get())->actions()) {
      if (action->text() == text && action->isVisible()) return action;
    }
    return nullptr;
  }

  std::unique_ptr<InboxSharing> sharer;
  std::unique_ptr<QMenu> menu;
  ScreenshotMenuItems* items = nullptr;
};

TEST_F(ScreenshotMenuItemsTest, TheItemsAreTheCommandsInTheirOrder) {
  make({arrive("1.png")});
  QStringList texts;
  for (const QAction* action : menu->actions()) {
    if (!action->isSeparator() && action->isVisible()) texts << action->text();
  }
  QStringList commands;
  for (const auto& action : ScreenshotActionsMenu({}, *model, *presentation).actions()) commands << action.title;
  EXPECT_EQ(texts, commands);
}

TEST_F(ScreenshotMenuItemsTest, AnItemDoesItsCommandOnWhatIsThereThen) {
  const UUID one = arrive("1.png");
  make({one});
  item(QStringLiteral("Keep"))->trigger();
  EXPECT_EQ(InboxFixture::item(one).state, ScreenshotItem::State::permanent);
  items->refresh();
  EXPECT_FALSE(item(QStringLiteral("Keep"))->isEnabled());
}

TEST_F(ScreenshotMenuItemsTest, DeleteImmediatelyComesWithItsSetting) {
  make({arrive("1.png")});
  EXPECT_FALSE(item(QStringLiteral("Delete Immediately…")));
  model->setShowsDeleteImmediately(true);
  items->refresh();
  EXPECT_TRUE(item(QStringLiteral("Delete Immediately…")));
}

TEST_F(ScreenshotMenuItemsTest, TheDurationsAreASubmenu) {
  const UUID one = arrive("1.png");
  make({one});
  const QMenu* durations = item(QStringLiteral("Mark Temporary"))->menu();
  ASSERT_EQ(durations->actions().size(), static_cast<qsizetype>(kTemporaryDurations.size()));
  item(menuText(TemporaryDuration::oneHour), durations)->trigger();
  EXPECT_EQ(InboxFixture::item(one).state, ScreenshotItem::State::temporary);
  EXPECT_EQ(*model->settings().lastTemporaryDuration, TemporaryDuration::oneHour);
}

TEST_F(ScreenshotMenuItemsTest, TheProgramsAreThereWhenTheMenuOpensAndTakeAllThatCanBeRead) {
  const UUID one = arrive("1.png");
  const UUID evicted = arriveEvicted("2.png");
  const UUID three = arrive("3.jpg");
  make({one, evicted, three});
  const QMenu* targets = item(QStringLiteral("Share"))->menu();
  EXPECT_FALSE(targets->actions().front()->isEnabled()) << "nothing to choose before they are known";
  Q_EMIT menu->aboutToShow();
  EXPECT_EQ(sharing.askedTypes, (QStringList{QStringLiteral("image/png"), QStringLiteral("image/jpeg")}));
  QAction* paint = item(QStringLiteral("Paint && Draw"), targets);
  ASSERT_TRUE(paint);
  Q_EMIT menu->triggered(paint);
  Q_EMIT item(QStringLiteral("Share"))->menu()->triggered(paint);
  EXPECT_EQ(sharing.target, QStringLiteral("paint"));
  EXPECT_EQ(sharing.sent, (std::vector<FileURL>{InboxFixture::item(one).url, InboxFixture::item(three).url}));
}

TEST_F(ScreenshotMenuItemsTest, AProgramThatDoesNotOpenIsTold) {
  make({arrive("1.png")});
  sharing.takes = false;
  Q_EMIT menu->aboutToShow();
  const QMenu* targets = item(QStringLiteral("Share"))->menu();
  Q_EMIT item(QStringLiteral("Share"))->menu()->triggered(targets->actions().front());
  EXPECT_EQ(errorTitle(), QStringLiteral("Couldn’t Share Screenshot"));
}

TEST_F(ScreenshotMenuItemsTest, KeysThatAreOnlyShownNeverFire) {
  const UUID one = arrive("1.png");
  make({one});
  const QAction* active = item(QStringLiteral("Move to Trash"));
  EXPECT_EQ(active->shortcutContext(), Qt::WindowShortcut);
  EXPECT_EQ(active->shortcuts(), (QList<QKeySequence>{Qt::CTRL | Qt::Key_Backspace, Qt::Key_Delete}));
  EXPECT_FALSE(active->autoRepeat()) << "a held key is one press";
  make({one}, ScreenshotMenuItems::Keys::shown);
  EXPECT_EQ(item(QStringLiteral("Move to Trash"))->shortcutContext(), Qt::WidgetShortcut);
}

}  // namespace
}  // namespace quillmere
