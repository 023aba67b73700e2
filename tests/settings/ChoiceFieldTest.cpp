#include "settings/ChoiceField.h"

#include <gtest/gtest.h>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>

namespace quillmere {
namespace {

TEST(ChoiceFieldTest, TheWheelTurnsItOnlyWithTheKeyboard) {
  QWidget window;
  ChoiceField field(QStringLiteral("Choice"), &window);
  field.addItems({QStringLiteral("One"), QStringLiteral("Two")});
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  const auto turnWheel = [&] {
    const QPointF place(field.rect().center());
    QWheelEvent turn(place, field.mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                     false);
    QCoreApplication::sendEvent(&field, &turn);
  };
  EXPECT_EQ(field.accessibleName(), QStringLiteral("Choice"));
  field.clearFocus();
  turnWheel();
  EXPECT_EQ(field.currentIndex(), 0);
  field.setFocus();
  turnWheel();
  EXPECT_EQ(field.currentIndex(), 1);
}

}  // namespace
}  // namespace quillmere
