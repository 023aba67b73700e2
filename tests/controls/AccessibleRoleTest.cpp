#include "controls/AccessibleRole.h"

#include <gtest/gtest.h>
#include <QtWidgets/QLabel>

#include "support/Printing.h"

namespace quillmere {
namespace {

QAccessibleInterface& heard(QWidget& widget) {
  return *QAccessible::queryAccessibleInterface(&widget);
}
QString name(QWidget& widget) {
  return heard(widget).text(QAccessible::Name);
}

TEST(AccessibleRole, ALabelOfAnotherRoleKeepsItsTextAsItsName) {
  QLabel label(QStringLiteral("Screenshot Captured"));
  setAccessibleRole(label, QAccessible::Heading);
  EXPECT_EQ(heard(label).role(), QAccessible::Heading);
  EXPECT_EQ(name(label), QStringLiteral("Screenshot Captured"));
  label.setText(QStringLiteral("Another"));
  EXPECT_EQ(name(label), QStringLiteral("Another"));
  label.setAccessibleName(QStringLiteral("Spoken"));
  EXPECT_EQ(name(label), QStringLiteral("Spoken"));
}

TEST(AccessibleRole, OneThatWasAskedForAlreadyIsTakenBack) {
  QLabel label(QStringLiteral("Title"));
  EXPECT_EQ(heard(label).role(), QAccessible::StaticText);
  setAccessibleRole(label, QAccessible::Heading);
  EXPECT_EQ(heard(label).role(), QAccessible::Heading);
  setAccessibleRole(label, QAccessible::Graphic);
  EXPECT_EQ(heard(label).role(), QAccessible::Graphic);
}

TEST(AccessibleRole, WithoutARoleItIsPassedOver) {
  QWidget window;
  QLabel label(QStringLiteral(".png"), &window);
  label.setAccessibleName(QStringLiteral("Extension"));
  setAccessibleRole(label, QAccessible::NoRole);
  window.show();
  EXPECT_EQ(name(label), QString());
  EXPECT_TRUE(heard(label).state().invisible);
  setAccessibleRole(label, QAccessible::StaticText);
  EXPECT_EQ(name(label), QStringLiteral("Extension"));
  EXPECT_FALSE(heard(label).state().invisible);
}

TEST(AccessibleRole, OtherWidgetsKeepTheirs) {
  QLabel other(QStringLiteral("Other"));
  QLabel label(QStringLiteral("Title"));
  setAccessibleRole(label, QAccessible::Heading);
  EXPECT_EQ(heard(other).role(), QAccessible::StaticText);
}

}  // namespace
}  // namespace quillmere
