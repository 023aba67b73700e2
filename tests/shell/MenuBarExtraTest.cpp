#include "shell/MenuBarExtra.h"

#include <gtest/gtest.h>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

#include "fakes/FakeTray.h"
#include "fakes/ModelFixture.h"

namespace quillmere {
namespace {

class MenuBarExtraTest : public testing::ModelFixture {
 protected:
  void SetUp() override {
    launchWatching();
    extra = std::make_unique<MenuBarExtra>(
        *model, updates, tray,
        MenuBarExtra::Actions{[this] { done += "inbox "; }, [this] { done += "about "; },
                              [this] { done += "settings "; }, [this] { done += "quit "; }});
    updates.checkForUpdatesAction = [this] { done += "updates "; };
  }
  void show() {
    tray.set(true);
    extra->setShown(true);
  }
  QAction* item(const QString& text) const {
    for (QAction* action : extra->menu()->actions()) {
      if (action->text() == text) return action;
    }
    return nullptr;
  }

  testing::FakeTray tray;
  SoftwareUpdateModel updates;
  std::unique_ptr<MenuBarExtra> extra;
  std::string done;
};

TEST_F(MenuBarExtraTest, ItsMenuHasTheseActionsInThisOrder) {
  show();
  updates.setCanCheckForUpdates(true);
  arrive("1.png");
  QStringList texts;
  for (QAction* action : extra->menu()->actions()) {
    texts += action->isSeparator() ? QStringLiteral("-") : action->text();
    action->trigger();
  }
  EXPECT_EQ(texts.join(QLatin1Char('|')),
            QStringLiteral("Open Quillmere|Review Screenshot|-|About Quillmere|Settings|Check for Updates…|-|"
                           "Quit Quillmere"));
  EXPECT_EQ(done, "inbox about settings updates quit ");
  EXPECT_EQ(presenter.focuses, 1);
}

TEST_F(MenuBarExtraTest, UpdatesAreDimmedWhileTheyCannotBeChecked) {
  show();
  QAction* check = item(QStringLiteral("Check for Updates…"));
  EXPECT_FALSE(check->isEnabled());
  updates.setCanCheckForUpdates(true);
  EXPECT_TRUE(check->isEnabled());
  updates.setCanCheckForUpdates(false);
  EXPECT_FALSE(check->isEnabled());
}

TEST_F(MenuBarExtraTest, NothingIsMadeBeforeThereIsATray) {
  EXPECT_FALSE(extra->hasTray());
  extra->setShown(true);
  EXPECT_FALSE(extra->menu());
  tray.set(true);
  EXPECT_TRUE(extra->hasTray());
  EXPECT_TRUE(extra->menu());
}

TEST_F(MenuBarExtraTest, ATrayThatGoesAndComesBackGetsTheIconAnew) {
  show();
  tray.set(false);
  EXPECT_FALSE(extra->menu());
  updates.setCanCheckForUpdates(true);
  tray.set(true);
  ASSERT_TRUE(extra->menu());
  EXPECT_TRUE(item(QStringLiteral("Check for Updates…"))->isEnabled());
}

TEST_F(MenuBarExtraTest, WithoutTheSettingThereIsNone) {
  tray.set(true);
  EXPECT_FALSE(extra->menu());
  extra->setShown(true);
  EXPECT_TRUE(extra->menu());
  extra->setShown(false);
  EXPECT_FALSE(extra->menu());
  EXPECT_TRUE(extra->hasTray()) << "it could be shown";
}

TEST_F(MenuBarExtraTest, ItsMenuMayGoWhileSomethingOfItGoesOn) {
  show();
  QAction* quit = item(QStringLiteral("Quit Quillmere"));
  QObject::connect(quit, &QAction::triggered, quit, [&] { tray.set(false); });
  bool isGone = false;
  QObject::connect(quit, &QObject::destroyed, quit, [&] { isGone = true; });
  quit->trigger();
  EXPECT_FALSE(isGone);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(isGone);
}

}  // namespace
}  // namespace quillmere
