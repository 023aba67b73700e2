#include "shell/MenuBarExtra.h"

#include <gtest/gtest.h>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

#include "support/Printing.h"

namespace quillmere {
namespace {

/// The menu that the tray shows; without a tray it is a window like any other.
QMenu* trayMenu() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* menu = qobject_cast<QMenu*>(widget)) return menu;
  }
  return nullptr;
}

TEST(MenuBarExtra, ItsMenuHasTheseActionsInThisOrder) {
  std::string done;
  const MenuBarExtra extra(
      {[&] { done += "inbox "; }, [&] { done += "review "; }, [&] { done += "settings "; }, [&] { done += "quit "; }});
  const QMenu* menu = trayMenu();
  ASSERT_TRUE(menu);
  QStringList texts;
  for (QAction* action : menu->actions()) {
    texts += action->isSeparator() ? QStringLiteral("-") : action->text();
    action->trigger();
  }
  EXPECT_EQ(texts.join(QLatin1Char('|')), QStringLiteral("Open Quillmere|Review Screenshot|-|Settings|Quit Quillmere"));
  EXPECT_EQ(done, "inbox review settings quit ");
}

TEST(MenuBarExtra, ItsMenuGoesWithIt) {
  { const MenuBarExtra extra({}); }
  EXPECT_FALSE(trayMenu());
}

}  // namespace
}  // namespace quillmere
