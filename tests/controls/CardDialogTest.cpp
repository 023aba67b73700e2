#include "controls/CardDialog.h"

#include <QtGui/QAccessible>

#include "controls/DesktopLook.h"
#include "controls/PopupSurface.h"

namespace quillmere {
namespace {

class CardDialogTest : public testing::DesktopLook {};

TEST_F(CardDialogTest, HasItsTitleForListsAndReadersAlone) {
  CardDialog dialog(QStringLiteral("Recognized Text"), nullptr);
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Recognized Text"));
  EXPECT_EQ(dialog.accessibleName(), QStringLiteral("Recognized Text"));
  EXPECT_TRUE(dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
  EXPECT_TRUE(PopupSurface::isOne(dialog));
}

TEST_F(CardDialogTest, BesideItsCardTheWindowBelowIsSeenHoweverItIsOpened) {
  QWidget window;
  window.show();
  CardDialog dialog(QStringLiteral("Recognized Text"), &window);
  dialog.open();
  EXPECT_TRUE(dialog.testAttribute(Qt::WA_TranslucentBackground));
}

}  // namespace
}  // namespace quillmere
