#include "settings/ShortcutRecorder.h"

#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

#include "settings/SettingsFixture.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

using namespace std::chrono_literals;
using testing::runLoopUntil;
using Priority = AnnouncementPriority;

constexpr auto kStarted =
    "Recording shortcut. Type a key combination. Press Escape to cancel, or Delete or Backspace to clear.";

class ShortcutRecorderTest : public testing::SettingsFixture {
 protected:
  ShortcutRecorderTest() {
    // A key's scan code is its code and a hundred, but for A, whose code is nothing.
    for (quint32 code = 0; code < 128; ++code) hotKeys.keyboard.scanCodes[code + 100] = code;
    hotKeys.keyboard.named = {{15, {QStringLiteral("r")}}, {11, {QStringLiteral("b")}}};
    model->setHotKeyShortcut(HotKeyShortcut::standard());
    shown = std::make_unique<QWidget>();
    auto* column = new QVBoxLayout(shown.get());
    recorder = new ShortcutRecorder(*model, &systemEvents, shown.get());
    other = new QLineEdit(shown.get());
    column->addWidget(recorder);
    column->addWidget(other);
    recorder->refresh();
    shown->show();
    shown->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(shown.get()));
    field().setFocus();
    announcer.said.clear();
  }
  // No shortcut has them.
  static constexpr quint32 kShift = 1000;
  static constexpr quint32 kPrint = 1001;

  QPushButton& field() const { return button("Review screenshot"); }
  QPushButton& clear() const { return button("Clear Shortcut"); }

  static QKeyEvent keyEvent(QEvent::Type type, quint32 code, Qt::KeyboardModifiers held, bool isRepeat = false) {
    static const std::map<quint32, Qt::Key> kKeys{
        {48, Qt::Key_Tab},     {51, Qt::Key_Backspace}, {53, Qt::Key_Escape},
        {49, Qt::Key_Space},   {36, Qt::Key_Return},    {15, Qt::Key_R},
        {117, Qt::Key_Delete}, {kShift, Qt::Key_Shift}, {kPrint, Qt::Key_Print}};
    const auto known = kKeys.find(code);
    return {type, known == kKeys.end() ? Qt::Key_B : known->second, held, code + 100, 0, 0, QString(), isRepeat};
  }
  /// As the window system brings them to what has the keyboard. Whether nobody else saw the key.
  bool press(quint32 code, Qt::KeyboardModifiers held = {}) {
    QWidget* target = QApplication::focusWidget();
    QKeyEvent down = keyEvent(QEvent::KeyPress, code, held);
    Seen seen;
    QWidget* const to = target ? target : shown.get();
    to->installEventFilter(&seen);
    QCoreApplication::sendEvent(to, &down);
    to->removeEventFilter(&seen);
    return !seen.hasSeen;
  }
  void release(quint32 code, bool isRepeat = false) {
    QKeyEvent up = keyEvent(QEvent::KeyRelease, code, {}, isRepeat);
    QCoreApplication::sendEvent(QApplication::focusWidget(), &up);
  }
  bool type(quint32 code, Qt::KeyboardModifiers held = {}) {
    const bool isSwallowed = press(code, held);
    release(code);
    return isSwallowed;
  }
  void start() {
    field().click();
    ASSERT_TRUE(recorder->isRecording());
    announcer.said.clear();
  }
  std::vector<QString> said() const {
    std::vector<QString> texts;
    for (const auto& announcement : announcer.said) {
      EXPECT_EQ(announcement.priority, Priority::high);
      texts.push_back(announcement.text);
    }
    return texts;
  }
  std::optional<HotKeyShortcut> shortcut() const { return *model->settings().hotKeyShortcut; }

  struct Seen final : QObject {
    bool hasSeen = false;
    bool eventFilter(QObject*, QEvent* event) override {
      if (event->type() == QEvent::KeyPress) hasSeen = true;
      return false;
    }
  };
  ShortcutRecorder* recorder = nullptr;
  QLineEdit* other = nullptr;
};

TEST_F(ShortcutRecorderTest, ShowsTheShortcutNoneOrThatItRecords) {
  const QString hint =
      QStringLiteral(". Records a new shortcut. Press Escape to cancel, or Delete or Backspace to clear it.");
  EXPECT_EQ(field().text(), QStringLiteral("Ctrl+Shift+Super+B"));
  EXPECT_EQ(field().accessibleDescription(), QStringLiteral("Ctrl+Shift+Super+B") + hint);
  EXPECT_EQ(field().toolTip(), QStringLiteral("Click to record a new shortcut"));
  EXPECT_TRUE(isShown(clear()));
  EXPECT_EQ(clear().toolTip(), QStringLiteral("Clear shortcut"));
  start();
  EXPECT_EQ(field().text(), QStringLiteral("Type shortcut…"));
  EXPECT_EQ(field().accessibleDescription(), QStringLiteral("Recording") + hint);
  EXPECT_TRUE(field().toolTip().startsWith(QStringLiteral("Type a key combination.")));
  model->setHotKeyShortcut(std::nullopt);
  recorder->stop();
  EXPECT_EQ(field().text(), QStringLiteral("None"));
  EXPECT_EQ(field().accessibleDescription(), QStringLiteral("None") + hint);
  EXPECT_FALSE(isShown(clear()));
}

TEST_F(ShortcutRecorderTest, AClickSpaceOrReturnStartsIt) {
  QTest::mouseClick(&field(), Qt::LeftButton);
  EXPECT_TRUE(recorder->isRecording());
  EXPECT_TRUE(hotKeys.isSuspended) << "none is heard meanwhile";
  EXPECT_EQ(said(), (std::vector<QString>{QString::fromUtf8(kStarted)}));
  recorder->stop();
  EXPECT_FALSE(hotKeys.isSuspended);
  for (const quint32 key : {49U, 36U}) {
    type(key);
    EXPECT_TRUE(recorder->isRecording()) << key;
    recorder->stop();
  }
}

TEST_F(ShortcutRecorderTest, TheReturnThatStartedItIsNoKeyOfItWhileItIsHeld) {
  press(36);
  ASSERT_TRUE(recorder->isRecording());
  announcer.said.clear();
  press(36);
  EXPECT_TRUE(said().empty());
  release(36);
  EXPECT_TRUE(type(36));
  EXPECT_EQ(said(), (std::vector<QString>{QStringLiteral("Return can’t be used. Include Super, Ctrl, or Alt.")}));
}

TEST_F(ShortcutRecorderTest, ASecondToggleEndsTheFirst) {
  start();
  QTest::mouseClick(&field(), Qt::LeftButton);
  EXPECT_FALSE(recorder->isRecording());
  EXPECT_FALSE(hotKeys.isSuspended);
  EXPECT_EQ(shortcut(), HotKeyShortcut::standard());
}

TEST_F(ShortcutRecorderTest, AValidOneIsSet) {
  start();
  EXPECT_TRUE(type(15, Qt::MetaModifier | Qt::AltModifier));
  EXPECT_FALSE(recorder->isRecording());
  EXPECT_FALSE(hotKeys.isSuspended);
  const HotKeyShortcut wanted{15, HotKeyShortcut::command | HotKeyShortcut::option};
  EXPECT_EQ(shortcut(), wanted);
  ASSERT_EQ(hotKeys.registered.size(), 1U);
  EXPECT_EQ(hotKeys.registered.begin()->second.first, wanted);
  EXPECT_EQ(said(), (std::vector<QString>{QStringLiteral("Shortcut set to Alt+Super+R")}));
  EXPECT_EQ(field().text(), QStringLiteral("Alt+Super+R"));
}

TEST_F(ShortcutRecorderTest, ThePresentOneIsSetAgainAndDoesNotReview) {
  arrive("1.png");
  start();
  hotKeys.press(HotKeyShortcut::standard());
  EXPECT_TRUE(press(11, Qt::MetaModifier | Qt::ControlModifier | Qt::ShiftModifier));
  EXPECT_EQ(shortcut(), HotKeyShortcut::standard());
  EXPECT_EQ(said(), (std::vector<QString>{QStringLiteral("Shortcut set to Ctrl+Shift+Super+B")}));
  hotKeys.press(HotKeyShortcut::standard());
  EXPECT_EQ(presenter.focuses, 0) << "nor while it is still held";
  release(11);
  hotKeys.press(HotKeyShortcut::standard());
  EXPECT_EQ(presenter.focuses, 1);
}

TEST_F(ShortcutRecorderTest, EscapeLeavesTheOneThatWas) {
  start();
  EXPECT_TRUE(type(53));
  EXPECT_FALSE(recorder->isRecording());
  EXPECT_EQ(shortcut(), HotKeyShortcut::standard());
  EXPECT_EQ(said(), (std::vector<QString>{QStringLiteral("Shortcut recording canceled")}));
}

TEST_F(ShortcutRecorderTest, BothDeletesClear) {
  for (const quint32 key : {51U, 117U}) {
    model->setHotKeyShortcut(HotKeyShortcut::standard());
    start();
    EXPECT_TRUE(type(key));
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_EQ(shortcut(), std::nullopt);
    EXPECT_EQ(said(), (std::vector<QString>{QStringLiteral("Shortcut cleared")}));
  }
}

TEST_F(ShortcutRecorderTest, WhatCannotBeOneIsSaidUntilTheNextKey) {
  const QString reserved = QStringLiteral(
      "Super+Q can’t be used. Your desktop or most apps already use this shortcut. Choose a different shortcut.");
  hotKeys.keyboard.named[12] = {QStringLiteral("q")};
  start();
  EXPECT_TRUE(type(12, Qt::MetaModifier));
  EXPECT_TRUE(recorder->isRecording());
  EXPECT_TRUE(says(reserved));
  EXPECT_EQ(said(), (std::vector<QString>{reserved}));
  EXPECT_TRUE(type(51, Qt::AltModifier)) << "no clearing";
  EXPECT_FALSE(says(reserved));
  EXPECT_TRUE(
      says("Alt+Backspace can’t be used. Shortcuts with Alt alone belong to the menus of apps. Add Super or "
           "Ctrl."));
  EXPECT_TRUE(type(53, Qt::ShiftModifier)) << "no cancelling";
  EXPECT_TRUE(recorder->isRecording());
  EXPECT_EQ(shortcut(), HotKeyShortcut::standard());
  type(53);
  EXPECT_FALSE(says("Shift+Escape can’t be used. Include Super, Ctrl, or Alt.")) << "gone with the recording";
}

TEST_F(ShortcutRecorderTest, AKeyThatNoShortcutHasIsSaidToBeOne) {
  const QString text = QStringLiteral("This key can’t be used. Choose a different shortcut.");
  start();
  type(49);
  announcer.said.clear();
  EXPECT_TRUE(press(kShift, Qt::ShiftModifier));
  EXPECT_TRUE(said().empty()) << "more is to come";
  EXPECT_TRUE(press(kPrint, Qt::ShiftModifier));
  EXPECT_TRUE(press(kPrint, Qt::ShiftModifier)) << "it is held";
  EXPECT_TRUE(recorder->isRecording());
  EXPECT_TRUE(says(text));
  EXPECT_FALSE(says("Space can’t be used. Include Super, Ctrl, or Alt."));
  EXPECT_EQ(said(), (std::vector<QString>{text}));
}

TEST_F(ShortcutRecorderTest, TabMovesTheFocusAndTheRecordingGoesOn) {
  start();
  EXPECT_FALSE(press(48));
  release(48);
  EXPECT_FALSE(field().hasFocus());
  EXPECT_TRUE(recorder->isRecording());
  other->setFocus(Qt::TabFocusReason);
  EXPECT_FALSE(press(48, Qt::ShiftModifier));
  release(48);
  EXPECT_TRUE(recorder->isRecording());
  other->setFocus(Qt::TabFocusReason);
  EXPECT_TRUE(type(15, Qt::MetaModifier | Qt::ControlModifier)) << "from wherever the focus is";
  EXPECT_EQ(shortcut(), (HotKeyShortcut{15, HotKeyShortcut::command | HotKeyShortcut::control}));
  EXPECT_EQ(other->text(), QString());
}

TEST_F(ShortcutRecorderTest, AHeldKeyIsReadOnceAndPressesNothing) {
  start();
  EXPECT_TRUE(press(49));
  announcer.said.clear();
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(press(49));
  EXPECT_TRUE(said().empty());
  release(49);
  EXPECT_TRUE(recorder->isRecording());
}

TEST_F(ShortcutRecorderTest, TheKeyThatEndsItIsNobodysUntilItIsLetGo) {
  start();
  EXPECT_TRUE(press(53));
  EXPECT_FALSE(recorder->isRecording());
  EXPECT_TRUE(hotKeys.isSuspended) << "it may be that of the shortcut, and repeats";
  EXPECT_TRUE(press(53)) << "which would close the window";
  EXPECT_FALSE(type(15)) << "others are everybody's again";
  release(53);
  EXPECT_FALSE(hotKeys.isSuspended);
  EXPECT_FALSE(type(53));

  start();
  press(15, Qt::MetaModifier | Qt::ControlModifier);
  QEvent gone(QEvent::WindowDeactivate);
  QCoreApplication::sendEvent(shown.get(), &gone);
  EXPECT_FALSE(hotKeys.isSuspended) << "its release goes to another window";
  release(15);
  start();
  EXPECT_TRUE(recorder->isRecording());
}

TEST_F(ShortcutRecorderTest, TheReleaseOfARepeatIsNone) {
  start();
  press(53);
  release(53, true);
  EXPECT_TRUE(hotKeys.isSuspended) << "it is still held";
  EXPECT_TRUE(press(53));
  release(53);
  EXPECT_FALSE(hotKeys.isSuspended);
}

TEST_F(ShortcutRecorderTest, AReleaseThatGotLostIsNotWaitedForLong) {
  recorder->patience.release = 1ms;
  start();
  press(53);
  ASSERT_TRUE(hotKeys.isSuspended);
  EXPECT_TRUE(runLoopUntil([&] { return !hotKeys.isSuspended; }));
  EXPECT_FALSE(press(53)) << "it is everybody's";
}

TEST_F(ShortcutRecorderTest, EndsWhenNobodyTypes) {
  recorder->patience.key = 1ms;
  start();
  EXPECT_TRUE(runLoopUntil([&] { return !recorder->isRecording(); }));
  EXPECT_FALSE(hotKeys.isSuspended);
  EXPECT_EQ(shortcut(), HotKeyShortcut::standard());
  EXPECT_EQ(said(), (std::vector<QString>{QStringLiteral("Shortcut recording canceled")}));
}

TEST_F(ShortcutRecorderTest, EachKeyIsWaitedForAnewButNotWhatLiesOnOne) {
  for (const quint32 key : {49U, kShift, kPrint}) {
    recorder->patience.key = 1h;
    start();
    recorder->patience.key = 1ms;
    press(key);
    recorder->patience.key = 1h;
    press(key);
    EXPECT_TRUE(runLoopUntil([&] { return !recorder->isRecording(); })) << key;
  }
}

TEST_F(ShortcutRecorderTest, NothingIsAShortcutOfTheWindowMeanwhile) {
  start();
  QKeyEvent tried = keyEvent(QEvent::ShortcutOverride, 12, Qt::ControlModifier);
  tried.ignore();
  QCoreApplication::sendEvent(&field(), &tried);
  EXPECT_TRUE(tried.isAccepted());
}

TEST_F(ShortcutRecorderTest, EndsWithTheWindowThePageAndThePointerElsewhere) {
  const auto expectEnd = [&](const char* how, const std::function<void()>& happens) {
    field().setFocus();
    start();
    ASSERT_TRUE(hotKeys.isSuspended);
    happens();
    EXPECT_FALSE(recorder->isRecording()) << how;
    EXPECT_FALSE(hotKeys.isSuspended) << how;
    EXPECT_EQ(shortcut(), HotKeyShortcut::standard()) << how;
  };
  expectEnd("another window gets the keyboard", [&] {
    QEvent gone(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(shown.get(), &gone);
  });
  expectEnd("another page comes to the front", [&] {
    recorder->hide();
    recorder->show();
  });
  expectEnd("the pointer turns to another control", [&] { QTest::mouseClick(other, Qt::LeftButton); });
  expectEnd("the screen is locked", [&] { systemEvents.sessionDidResign(); });
  expectEnd("the screens are switched off", [&] { systemEvents.screensDidSleep(); });
  expectEnd("the window is closed", [&] {
    shown->close();
    shown->show();
  });
  start();
  shown.reset();
  EXPECT_FALSE(hotKeys.isSuspended) << "the window is gone";
}

TEST_F(ShortcutRecorderTest, TheClearButtonClearsAlsoWhileItRecords) {
  start();
  clear().click();
  EXPECT_FALSE(recorder->isRecording());
  EXPECT_EQ(shortcut(), std::nullopt);
  EXPECT_EQ(said(), (std::vector<QString>{QStringLiteral("Shortcut cleared")}));
  EXPECT_FALSE(hotKeys.isSuspended);
}

TEST_F(ShortcutRecorderTest, AFailureToHearTheOldOneAgainIsTold) {
  hotKeys.resumeRefusal = GlobalHotKeyError{GlobalHotKeyError::Kind::unavailable, std::nullopt, QStringLiteral("X")};
  start();
  type(53);
  EXPECT_EQ(*model->hotKeyError, QStringLiteral("X is already in use. Choose a different shortcut."));
}

}  // namespace
}  // namespace quillmere
