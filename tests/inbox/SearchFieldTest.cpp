#include "inbox/SearchField.h"

#include <gtest/gtest.h>

#include <QtGui/QAccessible>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QToolButton>

#include "foundation/Localized.h"

namespace quillmere {
namespace {

class SearchFieldTest : public ::testing::Test {
 protected:
  SearchFieldTest() {
    field.onLeave = [this] { ++left; };
    field.onFocus = [this] { ++focused; };
    field.show();
    field.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&field));
  }
  QAction* cross() const { return field.actions().back(); }

  SearchField field{nullptr};
  int left = 0;
  int focused = 0;
};

TEST_F(SearchFieldTest, ReturnAndDownGoOnToWhatWasFound) {
  QTest::keyClicks(&field, QStringLiteral("word"));
  QTest::keyClick(&field, Qt::Key_Return);
  QTest::keyClick(&field, Qt::Key_Down);
  EXPECT_EQ(left, 2);
  EXPECT_EQ(field.text(), QStringLiteral("word"));
}

TEST_F(SearchFieldTest, TheCrossEmptiesItAndIsThereWhileThereIsAText) {
  EXPECT_FALSE(cross()->isVisible());
  QTest::keyClicks(&field, QStringLiteral("word"));
  EXPECT_TRUE(cross()->isVisible());
  cross()->trigger();
  EXPECT_EQ(field.text(), QString());
  EXPECT_FALSE(cross()->isVisible());
}

TEST_F(SearchFieldTest, ScreenReadersPassOverTheGlassAndFindTheCross) {
  QTest::keyClicks(&field, QStringLiteral("word"));
  QStringList found;
  for (QToolButton* button : field.findChildren<QToolButton*>()) {
    const QAccessibleInterface* told = QAccessible::queryAccessibleInterface(button);
    if (!told->state().invisible) found << told->text(QAccessible::Name);
  }
  EXPECT_EQ(found, QStringList(localized("Clear Search")));
}

TEST_F(SearchFieldTest, TheKeyboardIsTold) {
  field.clearFocus();
  focused = 0;
  field.setFocus();
  EXPECT_EQ(focused, 1);
}

}  // namespace
}  // namespace quillmere
