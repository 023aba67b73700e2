#include "editor/PixelField.h"

#include <gtest/gtest.h>
#include <QtCore/QLocale>
#include <QtTest/QTest>

#include "support/Printing.h"

namespace quillmere {
namespace {

class PixelFieldTest : public ::testing::Test {
 protected:
  ~PixelFieldTest() override { QLocale::setDefault(QLocale::c()); }
  PixelField field{QStringLiteral("X"), nullptr};
};

TEST_F(PixelFieldTest, OnlyWholeNumbersAreNumbers) {
  const std::pair<const char*, std::optional<qint64>> rows[] = {
      {"12", 12}, {" 7 ", 7}, {"-3", -3}, {"", std::nullopt}, {"1.5", std::nullopt}, {"a", std::nullopt}};
  for (const auto& [typed, number] : rows) {
    field.setText(QString::fromUtf8(typed));
    EXPECT_EQ(field.number(), number) << typed;
  }
}

TEST_F(PixelFieldTest, TheDigitsOfTheLanguageAreNumbersToo) {
  QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
  field.setText(QString::fromUtf8("١٢"));
  EXPECT_EQ(field.number(), 12);
  field.setText(QStringLiteral("12"));
  EXPECT_EQ(field.number(), 12);
}

TEST_F(PixelFieldTest, ItsNameIsItsLabelAndItHasRoomForFiveDigits) {
  EXPECT_EQ(field.accessibleName(), QStringLiteral("X"));
  EXPECT_GT(field.sizeHint().width(), field.fontMetrics().horizontalAdvance(QStringLiteral("99999")));
}

TEST_F(PixelFieldTest, ReturnCommitsAndReachesNobodyElse) {
  class Around final : public QWidget {
   public:
    int keys = 0;

   protected:
    void keyPressEvent(QKeyEvent*) override { ++keys; }
  } around;
  PixelField inside(QStringLiteral("Y"), &around);
  int commits = 0;
  int steps = 0;
  inside.onCommit = [&](PixelField::Commit how) { commits += how == PixelField::Commit::byReturn ? 1 : 100; };
  inside.onStep = [&](int by) { steps += by; };
  around.show();
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Up, Qt::Key_Down}) QTest::keyClick(&inside, key);
  EXPECT_EQ(commits, 2);
  EXPECT_EQ(around.keys, 0);
  QTest::keyClick(&inside, Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(steps, 10);
}

TEST_F(PixelFieldTest, ArrowKeysTellWhenTheyAreHeld) {
  QStringList told;
  field.onHold = [&](bool isHeld) { told << (isHeld ? QStringLiteral("held") : QStringLiteral("let go")); };
  field.onStep = [&](int by) { told << QString::number(by); };
  field.onCommit = [&](PixelField::Commit) { told << QStringLiteral("left"); };
  const auto send = [&](QEvent::Type type, Qt::Key key, bool isRepeat) {
    QKeyEvent event(type, key, {}, {}, isRepeat);
    QCoreApplication::sendEvent(&field, &event);
  };
  send(QEvent::KeyPress, Qt::Key_Up, false);
  send(QEvent::KeyRelease, Qt::Key_Up, true);
  send(QEvent::KeyPress, Qt::Key_Up, true);
  send(QEvent::KeyPress, Qt::Key_Down, false);
  send(QEvent::KeyRelease, Qt::Key_Up, false);
  send(QEvent::KeyPress, Qt::Key_Left, false);
  send(QEvent::KeyRelease, Qt::Key_Left, false);
  send(QEvent::KeyRelease, Qt::Key_Down, false);
  EXPECT_EQ(told.join(QStringLiteral(", ")), QStringLiteral("held, 1, 1, -1, let go"));
  told.clear();
  send(QEvent::KeyPress, Qt::Key_Up, false);
  QFocusEvent leaving(QEvent::FocusOut, Qt::TabFocusReason);
  QCoreApplication::sendEvent(&field, &leaving);
  send(QEvent::KeyRelease, Qt::Key_Up, false);
  EXPECT_EQ(told.join(QStringLiteral(", ")), QStringLiteral("held, 1, let go, left"));
}

}  // namespace
}  // namespace quillmere
