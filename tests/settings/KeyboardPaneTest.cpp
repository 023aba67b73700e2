#include "settings/KeyboardPane.h"

#include "settings/SettingsFixture.h"

namespace quillmere {
namespace {

constexpr auto kBoth =
    "This shortcut includes Ctrl+Alt, which desktops and screen readers use for many shortcuts of their own. If it "
    "isn’t "
    "heard, choose another.";

class KeyboardPaneTest : public testing::SettingsFixture {
 protected:
  void show() { pane = &showPane(std::make_unique<KeyboardPane>(*model, services, nullptr)); }
  QPushButton& restore() const { return button("Restore Default"); }
  SettingsServices services;
  KeyboardPane* pane = nullptr;
};

TEST_F(KeyboardPaneTest, ALockedScreenEndsARecording) {
  services.events = &systemEvents;
  show();
  button("Review screenshot").click();
  ASSERT_TRUE(hotKeys.isSuspended);
  systemEvents.sessionDidResign();
  EXPECT_FALSE(hotKeys.isSuspended);
}

TEST_F(KeyboardPaneTest, AShortcutThatIsNotHeardEverywhereIsNotPromisedInAnyApp) {
  constexpr auto kAnywhere =
      "Press this shortcut in any app to move keyboard focus to the screenshot popup. Press Escape to return to the "
      "app "
      "you were using.";
  constexpr auto kNotEverywhere =
      "Reviewing a screenshot moves keyboard focus to its popup. Press Escape to return to the app you were using.";
  show();
  for (const HotKeyReach reach : {HotKeyReach::everywhere, HotKeyReach::windowsOfX11, HotKeyReach::nowhere}) {
    hotKeys.reaches = reach;
    hotKeys.changed();
    EXPECT_EQ(says(kAnywhere), reach == HotKeyReach::everywhere);
    EXPECT_EQ(says(kNotEverywhere), reach != HotKeyReach::everywhere);
  }
}

TEST_F(KeyboardPaneTest, TheDefaultIsRestoredUnlessItIsThere) {
  show();
  EXPECT_TRUE(restore().isEnabled());
  EXPECT_EQ(restore().toolTip(), QStringLiteral("Use Ctrl+Shift+Super+B"));
  restore().click();
  EXPECT_EQ(*model->settings().hotKeyShortcut, HotKeyShortcut::standard());
  EXPECT_FALSE(restore().isEnabled());
  EXPECT_EQ(button("Review screenshot").text(), QStringLiteral("Ctrl+Shift+Super+B"));
  button("Clear Shortcut").click();
  EXPECT_TRUE(restore().isEnabled());
}

TEST_F(KeyboardPaneTest, RestoringEndsARecording) {
  show();
  button("Review screenshot").click();
  ASSERT_TRUE(hotKeys.isSuspended);
  restore().click();
  EXPECT_FALSE(hotKeys.isSuspended);
  EXPECT_EQ(button("Review screenshot").text(), QStringLiteral("Ctrl+Shift+Super+B"));
}

TEST_F(KeyboardPaneTest, WhyTheShortcutIsNotHeardIsSaidUntilItIs) {
  show();
  hotKeys.refusal = GlobalHotKeyError{GlobalHotKeyError::Kind::unavailable, std::nullopt, QStringLiteral("X")};
  restore().click();
  EXPECT_TRUE(says("X is already in use. Choose a different shortcut."));
  hotKeys.refusal.reset();
  model->setHotKeyShortcut(HotKeyShortcut{15, HotKeyShortcut::control | HotKeyShortcut::command});
  EXPECT_FALSE(says("X is already in use. Choose a different shortcut."));
}

TEST_F(KeyboardPaneTest, ControlWithOptionIsRemarkedOn) {
  show();
  model->setHotKeyShortcut(HotKeyShortcut{15, HotKeyShortcut::control | HotKeyShortcut::command});
  EXPECT_FALSE(says(kBoth));
  model->setHotKeyShortcut(HotKeyShortcut{15, HotKeyShortcut::control | HotKeyShortcut::option});
  EXPECT_TRUE(says(kBoth));
  EXPECT_EQ(hotKeys.registered.size(), 1U) << "it is valid all the same";
  model->setHotKeyShortcut(std::nullopt);
  EXPECT_FALSE(says(kBoth));
}

TEST_F(KeyboardPaneTest, KeysThatAppsUseForTheirCommandsAreRemarkedOn) {
  constexpr auto kCommands =
      "Apps may use this shortcut for commands of their own. While it is set here, it doesn’t reach them.";
  show();
  EXPECT_FALSE(says(kCommands)) << "there is none";
  model->setHotKeyShortcut(HotKeyShortcut{8, HotKeyShortcut::control});
  EXPECT_TRUE(says(kCommands)) << "Copy";
  model->setHotKeyShortcut(HotKeyShortcut{8, HotKeyShortcut::control | HotKeyShortcut::shift});
  EXPECT_TRUE(says(kCommands));
  model->setHotKeyShortcut(HotKeyShortcut::standard());
  EXPECT_FALSE(says(kCommands));
}

TEST_F(KeyboardPaneTest, WhereItIsNotHeardEverywhereIsSaidWithWhatToDo) {
  constexpr auto kSome =
      "Your desktop lets no app listen for keys in every window, so this shortcut is heard in some apps only. For a "
      "key "
      "that works everywhere, open your desktop’s keyboard settings, add a custom shortcut, and give it the command "
      "“quillmere --review”.";
  constexpr auto kNone =
      "Your desktop lets no app listen for keys, so this shortcut isn’t heard. For a key that works, open your "
      "desktop’s "
      "keyboard settings, add a custom shortcut, and give it the command “quillmere --review”.";
  model->setHotKeyShortcut(HotKeyShortcut::standard());
  show();
  EXPECT_FALSE(says(kSome) || says(kNone));
  hotKeys.reaches = HotKeyReach::windowsOfX11;
  hotKeys.changed();
  EXPECT_TRUE(says(kSome));
  hotKeys.reaches = HotKeyReach::nowhere;
  hotKeys.changed();
  EXPECT_TRUE(says(kNone));
  hotKeys.reaches = HotKeyReach::everywhere;
  hotKeys.changed();
  EXPECT_FALSE(says(kSome) || says(kNone));
}

TEST_F(KeyboardPaneTest, WhatTheDesktopGaveInsteadIsShown) {
  constexpr auto kGiven =
      "Your desktop has the last word, and gave this shortcut Meta+F9. You can change it in your desktop’s keyboard "
      "settings.";
  show();
  EXPECT_FALSE(says(kGiven));
  hotKeys.chosen = QStringLiteral("Meta+F9");
  hotKeys.changed();
  EXPECT_TRUE(says(kGiven));
}

}  // namespace
}  // namespace quillmere
