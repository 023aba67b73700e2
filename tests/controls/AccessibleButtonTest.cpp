#include "controls/AccessibleButton.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtWidgets/QMenu>

#include "support/Printing.h"

namespace quillmere {
namespace {

class AccessibleButtonTest : public ::testing::Test {
 protected:
  AccessibleButtonTest() {
    QObject::connect(&button, &QPushButton::clicked, &button, [this] { ++presses; });
  }
  QAccessibleInterface& heard() { return *QAccessible::queryAccessibleInterface(&button); }
  QAccessibleActionInterface& actions() { return *heard().actionInterface(); }

  int presses = 0;
  QPushButton button{QStringLiteral("Temporary")};
};

TEST_F(AccessibleButtonTest, TellsItsKeyAndIsAButtonAsAnyOther) {
  EXPECT_EQ(heard().text(QAccessible::Accelerator), QString()) << "asked for before";
  button.setAccessibleDescription(QStringLiteral("In five minutes"));
  setAccessibleKey(button, Qt::Key_Return);
  EXPECT_EQ(heard().text(QAccessible::Accelerator), QStringLiteral("Return"));
  EXPECT_EQ(actions().keyBindingsForAction(QAccessibleActionInterface::pressAction()), QStringList(";;Return"));
  EXPECT_EQ(heard().role(), QAccessible::Button);
  EXPECT_EQ(heard().text(QAccessible::Name), QStringLiteral("Temporary"));
  EXPECT_EQ(heard().text(QAccessible::Description), QStringLiteral("In five minutes"));
  button.setAccessibleName(QStringLiteral("Dismiss"));
  EXPECT_EQ(heard().text(QAccessible::Name), QStringLiteral("Dismiss"));
}

TEST_F(AccessibleButtonTest, TheKeyIsToldAndNotGrabbed) {
  setAccessibleKey(button, Qt::Key_Escape);
  EXPECT_TRUE(button.shortcut().isEmpty());
  EXPECT_EQ(actions().keyBindingsForAction(QAccessibleActionInterface::pressAction()), QStringList(";;Escape"));
}

TEST_F(AccessibleButtonTest, CanBePressedWhileItIsEnabled) {
  setAccessibleKey(button, Qt::Key_Return);
  EXPECT_EQ(actions().actionNames().value(0), QAccessibleActionInterface::pressAction());
  actions().doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(presses, 1);
  button.setEnabled(false);
  EXPECT_TRUE(heard().state().disabled);
  EXPECT_TRUE(actions().actionNames().isEmpty());
}

TEST_F(AccessibleButtonTest, TellsWhetherItIsTheDefaultOneAndWhetherItIsDown) {
  setAccessibleKey(button, Qt::Key_Return);
  EXPECT_FALSE(heard().state().defaultButton);
  EXPECT_FALSE(heard().state().pressed);
  button.setDefault(true);
  button.setDown(true);
  EXPECT_TRUE(heard().state().defaultButton);
  EXPECT_TRUE(heard().state().pressed);
}

TEST_F(AccessibleButtonTest, AMenuOpensAfterTheReaderHasItsAnswer) {
  QMenu menu;
  menu.addAction(QStringLiteral("1 Minute"));
  button.setMenu(&menu);
  setAccessibleMenu(button);
  EXPECT_EQ(heard().role(), QAccessible::ButtonMenu);
  EXPECT_EQ(heard().text(QAccessible::Name), QStringLiteral("Temporary"));
  EXPECT_TRUE(heard().state().hasPopup);
  bool isAnswered = false;
  int opened = 0;
  QObject::connect(&menu, &QMenu::aboutToShow, &menu, [&] {
    EXPECT_TRUE(isAnswered);
    ++opened;
    QMetaObject::invokeMethod(&menu, &QWidget::close, Qt::QueuedConnection);
  });
  button.show();
  actions().doAction(QAccessibleActionInterface::showMenuAction());
  isAnswered = true;
  QCoreApplication::processEvents();
  EXPECT_EQ(opened, 1);
}

TEST_F(AccessibleButtonTest, OtherButtonsStayAsTheyAre) {
  QPushButton other(QStringLiteral("Other"));
  setAccessibleKey(button, Qt::Key_Return);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&other)->text(QAccessible::Accelerator), QString());
}

}  // namespace
}  // namespace quillmere
