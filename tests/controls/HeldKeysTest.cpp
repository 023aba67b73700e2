#include "controls/HeldKeys.h"

#include <gtest/gtest.h>
#include <qpa/qwindowsysteminterface.h>
#include <QtGui/QShortcut>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>
#include <QtWidgets/QWidget>
#include <set>

namespace quillmere {
namespace {

/// Counts the keys that arrive.
class Pad final : public QWidget {
 public:
  using QWidget::QWidget;
  std::map<int, int> presses;

 protected:
  void keyPressEvent(QKeyEvent* event) override { ++presses[event->key()]; }
};

class HeldKeysTest : public ::testing::Test {
 protected:
  HeldKeysTest() {
    auto* rows = new QVBoxLayout(&window);
    rows->addWidget(pad);
    rows->addWidget(field);
    pad->setFocusPolicy(Qt::StrongFocus);
    show(window);
    pad->setFocus();
  }
  static void show(QWidget& shown) {
    shown.show();
    shown.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&shown));
  }
  /// As X11 repeats a key once the server tells real releases only: nothing marks it.
  static void hold(QWidget& shown, Qt::Key key, int repeats) {
    for (int i = 0; i < repeats; ++i) {
      QTest::keyPress(shown.windowHandle(), key);
      QTest::qWait(1);
    }
  }
  static void giveKeyboardToAnotherProgram() {
    QWindowSystemInterface::handleWindowActivated(nullptr);
    QCoreApplication::processEvents();
    ASSERT_EQ(QGuiApplication::focusWindow(), nullptr);
  }
  void hold(Qt::Key key, int repeats = 5) { hold(window, key, repeats); }
  void release(Qt::Key key) { QTest::keyRelease(window.windowHandle(), key); }

  std::set<quint32> down;
  HeldKeys keys{[this] { return down; }};
  QWidget window;
  Pad* pad = new Pad(&window);
  QLineEdit* field = new QLineEdit(&window);
};

TEST_F(HeldKeysTest, AKeyThatDecidesArrivesOnceUntilItIsReleased) {
  for (const Qt::Key key :
       {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_Space, Qt::Key_Delete, Qt::Key_Backspace}) {
    hold(key);
    EXPECT_EQ(pad->presses[key], 1) << key;
    release(key);
    hold(key);
    EXPECT_EQ(pad->presses[key], 2) << key;
    release(key);
  }
}

TEST_F(HeldKeysTest, OtherKeysRepeat) {
  hold(Qt::Key_Down);
  EXPECT_EQ(pad->presses[Qt::Key_Down], 5);
  hold(Qt::Key_A);
  EXPECT_EQ(pad->presses[Qt::Key_A], 5);
}

TEST_F(HeldKeysTest, AMarkedRepeatIsOneAlsoAsTheFirstThatIsSeen) {
  QKeyEvent marked(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, {}, true);
  QCoreApplication::sendEvent(window.windowHandle(), &marked);
  EXPECT_EQ(pad->presses[Qt::Key_Return], 0);
}

TEST_F(HeldKeysTest, InATextSpaceAndDeleteRepeatAndReturnDoesNot) {
  field->setFocus();
  int returns = 0;
  QObject::connect(field, &QLineEdit::returnPressed, [&] { ++returns; });
  hold(Qt::Key_Space);
  EXPECT_EQ(field->text(), QStringLiteral("     "));
  release(Qt::Key_Space);
  hold(Qt::Key_Backspace, 3);
  EXPECT_EQ(field->text(), QStringLiteral("  "));
  hold(Qt::Key_Return);
  EXPECT_EQ(returns, 1);
}

TEST_F(HeldKeysTest, AShortcutIsNotRepeatedEither) {
  int deletions = 0;
  QShortcut shortcut(Qt::Key_Delete, &window, [&] { ++deletions; });
  hold(Qt::Key_Delete);
  EXPECT_EQ(deletions, 1);
  EXPECT_EQ(pad->presses[Qt::Key_Delete], 0) << "taken by the shortcut";
  release(Qt::Key_Delete);
  hold(Qt::Key_Delete);
  EXPECT_EQ(deletions, 2);
}

TEST_F(HeldKeysTest, AKeyIsHeldAcrossWindows) {
  Pad other;
  hold(Qt::Key_Return);
  down = {Qt::Key_Return};
  show(other);
  hold(other, Qt::Key_Return, 3);
  EXPECT_EQ(other.presses[Qt::Key_Return], 0);
}

TEST_F(HeldKeysTest, AReleaseWhileAnotherProgramHadTheKeyboardIsFoundOut) {
  Pad other;
  hold(Qt::Key_Return);
  giveKeyboardToAnotherProgram();
  show(other);
  hold(other, Qt::Key_Return, 3);
  EXPECT_EQ(other.presses[Qt::Key_Return], 1);
}

TEST_F(HeldKeysTest, AReleaseThatNoWindowWasToldOfIsFoundOut) {
  Pad other;
  hold(Qt::Key_Return);
  show(other);
  hold(other, Qt::Key_Return, 3);
  EXPECT_EQ(other.presses[Qt::Key_Return], 1);
}

TEST_F(HeldKeysTest, AKeyThatIsDownBeforeItsWindowKnowsOfTheKeyboardCounts) {
  Pad other;
  QShortcut shortcut(Qt::Key_Escape, &other);
  int escapes = 0;
  QObject::connect(&shortcut, &QShortcut::activated, [&] { ++escapes; });
  hold(Qt::Key_Space);
  release(Qt::Key_Space);
  down = {Qt::Key_Return, Qt::Key_Escape};
  show(other);
  hold(other, Qt::Key_Escape, 3);
  EXPECT_EQ(escapes, 1);
  hold(other, Qt::Key_Return, 3);
  EXPECT_EQ(other.presses[Qt::Key_Return], 1);
}

TEST_F(HeldKeysTest, AKeyThatWasPressedForAnotherProgramDecidesNothing) {
  Pad other;
  giveKeyboardToAnotherProgram();
  down = {Qt::Key_Return};
  show(other);
  hold(other, Qt::Key_Return, 3);
  EXPECT_EQ(other.presses[Qt::Key_Return], 0);
  QTest::keyRelease(other.windowHandle(), Qt::Key_Return);
  hold(other, Qt::Key_Return, 1);
  EXPECT_EQ(other.presses[Qt::Key_Return], 1) << "until it is pressed anew";
}

}  // namespace
}  // namespace quillmere
