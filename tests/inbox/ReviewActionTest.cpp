#include "inbox/ReviewAction.h"

#include <gtest/gtest.h>

#include "fakes/ModelFixture.h"

namespace quillmere {
namespace {

constexpr quint64 kModifiers = HotKeyShortcut::control | HotKeyShortcut::shift | HotKeyShortcut::command;

class ReviewActionTest : public testing::ModelFixture {
 protected:
  QString shown() const { return action->shortcut().toString(QKeySequence::PortableText); }
  void begin() {
    launchWatching();
    action = std::make_unique<ReviewAction>(*model, nullptr);
  }

  std::unique_ptr<ReviewAction> action;
};

TEST_F(ReviewActionTest, ItBeginsAReview) {
  begin();
  arrive("1.png");
  action->trigger();
  EXPECT_EQ(presenter.focuses, 1);
}

TEST_F(ReviewActionTest, TheShortcutsKeysStandBesideItAndFollow) {
  begin();
  EXPECT_EQ(shown(), QString());
  model->setHotKeyShortcut(HotKeyShortcut{11, kModifiers});
  EXPECT_EQ(action->shortcut(), QKeySequence(Qt::META | Qt::CTRL | Qt::SHIFT | Qt::Key_B));
  model->setHotKeyShortcut(HotKeyShortcut{15, kModifiers});
  EXPECT_EQ(action->shortcut(), QKeySequence(Qt::META | Qt::CTRL | Qt::SHIFT | Qt::Key_R));
  hotKeys.keyboard.named[15] = {QStringLiteral("p")};
  hotKeys.changed();
  EXPECT_EQ(action->shortcut(), QKeySequence(Qt::META | Qt::CTRL | Qt::SHIFT | Qt::Key_P)) << "another layout";
  model->setHotKeyShortcut(std::nullopt);
  EXPECT_TRUE(action->shortcut().isEmpty());
}

TEST_F(ReviewActionTest, TheWindowsOwnKeysDoNotStartIt) {
  begin();
  EXPECT_EQ(action->shortcutContext(), Qt::WidgetShortcut) << "of a menu, which never has the keyboard by itself";
}

TEST_F(ReviewActionTest, KeysThatAreNotHeardAreNotShown) {
  begin();
  hotKeys.refusal = GlobalHotKeyError{GlobalHotKeyError::Kind::unavailable};
  model->setHotKeyShortcut(HotKeyShortcut{11, kModifiers});
  EXPECT_TRUE(action->shortcut().isEmpty());
  hotKeys.refusal.reset();
  model->setHotKeyShortcut(HotKeyShortcut{11, kModifiers});
  EXPECT_FALSE(action->shortcut().isEmpty());
  hotKeys.reaches = HotKeyReach::nowhere;
  hotKeys.changed();
  EXPECT_TRUE(action->shortcut().isEmpty());
}

TEST_F(ReviewActionTest, WhereTheDesktopHasTheLastWordItsKeysAreShown) {
  begin();
  model->setHotKeyShortcut(HotKeyShortcut{11, kModifiers});
  hotKeys.chosen = QStringLiteral("Ctrl+Alt+S");
  hotKeys.changed();
  EXPECT_EQ(action->shortcut(), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_S));
  hotKeys.chosen = QStringLiteral("whatever the desktop calls it");
  hotKeys.changed();
  EXPECT_EQ(shown(), QString());
}

TEST(KeySequence, KeysWithoutALetterHaveQtsNames) {
  const testing::FakeKeyboardLayout layout;
  const auto key = [&](quint32 code) { return keySequence({code, HotKeyShortcut::control}, layout); };
  EXPECT_EQ(key(36), QKeySequence(Qt::CTRL | Qt::Key_Return));
  EXPECT_EQ(key(51), QKeySequence(Qt::CTRL | Qt::Key_Backspace));
  EXPECT_EQ(key(117), QKeySequence(Qt::CTRL | Qt::Key_Delete));
  EXPECT_EQ(key(123), QKeySequence(Qt::CTRL | Qt::Key_Left));
  EXPECT_EQ(key(126), QKeySequence(Qt::CTRL | Qt::Key_Up));
  EXPECT_EQ(key(96), QKeySequence(Qt::CTRL | Qt::Key_F5));
  EXPECT_EQ(keySequence({11, HotKeyShortcut::option}, layout), QKeySequence(Qt::ALT | Qt::Key_B));
  EXPECT_EQ(key(200), QKeySequence()) << "a key that nobody has named";
}

}  // namespace
}  // namespace quillmere
