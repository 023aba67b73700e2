#include "controls/TargetMenu.h"

#include <gtest/gtest.h>

#include <QtGui/QAction>
#include <QtGui/QIcon>
#include <QtWidgets/QMenu>

namespace quillmere {
namespace {

TEST(TargetMenu, EachTargetIsAnItemWithItsIdAndGroupsAreApart) {
  QMenu menu;
  addTargets(menu, {{QStringLiteral("mail"), QStringLiteral("Mail"), {}},
                    {QStringLiteral("paint"), QStringLiteral("Paint"), {}, true},
                    {QStringLiteral("view"), QStringLiteral("View"), {}}});
  QStringList items;
  for (const QAction* action : menu.actions()) {
    items << (action->isSeparator() ? QStringLiteral("-") : action->data().toString());
  }
  EXPECT_EQ(items, (QStringList{QStringLiteral("mail"), QStringLiteral("-"), QStringLiteral("paint"),
                                QStringLiteral("view")}));
}

TEST(TargetMenu, TheFirstGroupHasNoLineAboveIt) {
  QMenu menu;
  addTargets(menu, {{QStringLiteral("mail"), QStringLiteral("Mail"), {}, true}});
  EXPECT_EQ(menu.actions().size(), 1);
}

TEST(TargetMenu, ANameIsShownAsItIsAndNeverTooWide) {
  QMenu menu;
  addTargets(menu, {{QStringLiteral("1"), QStringLiteral("Paint & Draw\tCtrl+Q\nnow"), {}},
                    {QStringLiteral("2"), QString(500, QLatin1Char('m')), {}}});
  EXPECT_EQ(menu.actions().front()->text(), QStringLiteral("Paint && Draw Ctrl+Q now"));
  EXPECT_LT(menu.actions().back()->text().size(), 100);
}

}  // namespace
}  // namespace quillmere
