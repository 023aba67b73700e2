#include "platform/linux/shortcuts/X11HotKeys.h"

#include <gmock/gmock.h>
#include <linux/input-event-codes.h>

#include "TestDisplay.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::runLoopUntil;
using testing::TestDisplay;

constexpr uint16_t kShift = XCB_MOD_MASK_SHIFT;
constexpr uint16_t kLock = XCB_MOD_MASK_LOCK;
constexpr uint16_t kControl = XCB_MOD_MASK_CONTROL;
constexpr uint16_t kAlt = XCB_MOD_MASK_1;
constexpr uint16_t kNumLock = XCB_MOD_MASK_2;
constexpr uint16_t kSuper = XCB_MOD_MASK_4;
constexpr uint16_t kStandard = kShift | kControl | kSuper;
constexpr HotKeyShortcut kOther{15, HotKeyShortcut::control | HotKeyShortcut::option};  // R

class X11HotKeysTest : public ::testing::Test {
 protected:
  X11HotKeysTest() { make(); }

  void make() {
    keys = std::make_unique<X11HotKeys>();
    keys->installHandler([this](const HotKeyPress* press) {
      pressed.push_back(press->key.id);
      return hotKeyDone;
    });
    refusals = keys->refusedLater.connect([this](quint32 id, qint32 status) { refused.emplace_back(id, status); });
  }
  HotKeySystem::Answer add(const HotKeyShortcut& shortcut, quint32 id) {
    return keys->registerHotKey(shortcut, {.id = id});
  }
  /// What was heard up to now: a mark of our own comes after everything else.
  std::vector<quint32> heard() {
    constexpr quint32 kMark = 99;
    const HotKeyShortcut mark{46, HotKeyShortcut::control | HotKeyShortcut::option};  // M
    const auto answer = add(mark, kMark);
    EXPECT_EQ(answer.status, hotKeyDone);
    display.tap({KEY_LEFTCTRL, KEY_LEFTALT, KEY_M});
    EXPECT_TRUE(runLoopUntil([&] { return !pressed.empty() && pressed.back() == kMark; }));
    keys->unregisterHotKey(answer.reference.value_or(0));
    pressed.pop_back();
    return std::exchange(pressed, {});
  }
  void pressStandard() { display.tap({KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_LEFTMETA, KEY_B}); }

  TestDisplay display;
  std::vector<quint32> pressed;
  std::vector<std::pair<quint32, qint32>> refused;
  std::unique_ptr<X11HotKeys> keys;
  Connection refusals;
};

TEST_F(X11HotKeysTest, APressIsHeardWhicheverModifierKeyItIsOf) {
  ASSERT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyDone);
  ASSERT_EQ(add(kOther, 2).status, hotKeyDone);
  pressStandard();
  display.tap({KEY_RIGHTCTRL, KEY_RIGHTSHIFT, KEY_RIGHTMETA, KEY_B});
  display.tap({KEY_LEFTCTRL, KEY_LEFTALT, KEY_R});
  EXPECT_THAT(heard(), ElementsAre(1u, 1u, 2u));
}

TEST_F(X11HotKeysTest, OtherModifiersAreAnotherShortcut) {
  ASSERT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyDone);
  display.tap({KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_B});
  display.tap({KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_LEFTMETA, KEY_LEFTALT, KEY_B});
  display.tap({KEY_B});
  EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(X11HotKeysTest, LocksThatAreOnDoNotMatter) {
  ASSERT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyDone);
  display.run("xmodmap", {"-e", "add mod3 = Scroll_Lock"});
  const std::vector<uint32_t> locks{KEY_CAPSLOCK, KEY_NUMLOCK, KEY_SCROLLLOCK};
  // The map that was read first is another one: only with the new one all combinations are known.
  ASSERT_TRUE(runLoopUntil([&] { return !display.isFree(KEY_B, kStandard | XCB_MOD_MASK_3); }));
  for (unsigned combination = 0; combination < 8; ++combination) {
    const auto toggle = [&] {
      for (unsigned lock = 0; lock < locks.size(); ++lock) {
        if (combination & (1U << lock)) display.tap({locks[lock]});
      }
    };
    toggle();
    pressStandard();
    EXPECT_THAT(heard(), ElementsAre(1u)) << "combination " << combination;
    toggle();
  }
}

TEST_F(X11HotKeysTest, AHeldKeyIsOnePressAndTwoQuickOnesAreTwo) {
  display.run("xset", {"r", "rate", "100", "50"});
  ASSERT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyDone);
  for (const uint32_t key : {KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_LEFTMETA, KEY_B}) display.down(key);
  // Long enough for the server to repeat it.
  display.run("sleep", {"0.5"});
  for (const uint32_t key : {KEY_B, KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_LEFTCTRL}) display.up(key);
  EXPECT_THAT(heard(), ElementsAre(1u));
  pressStandard();
  pressStandard();
  EXPECT_THAT(heard(), ElementsAre(1u, 1u));
}

TEST_F(X11HotKeysTest, WhatAnotherProgramHasIsRefusedAndNothingOfItKept) {
  ASSERT_TRUE(display.grab(KEY_B, kStandard));
  const auto answer = add(HotKeyShortcut::standard(), 1);
  EXPECT_EQ(answer.status, hotKeyExists);
  EXPECT_EQ(answer.reference, std::nullopt);
  EXPECT_TRUE(runLoopUntil([&] { return display.grab(KEY_B, kStandard | kLock); })) << "the others were given back";
  display.ungrab(KEY_B);
  EXPECT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyDone) << "it is free again";
}

TEST_F(X11HotKeysTest, OneTakenCombinationIsEnoughToBeRefused) {
  ASSERT_TRUE(display.grab(KEY_B, kStandard | kNumLock | kLock));
  EXPECT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyExists);
  EXPECT_TRUE(runLoopUntil([&] { return display.grab(KEY_B, kStandard); }));
}

TEST_F(X11HotKeysTest, WhatIsRegisteredNobodyElseGetsUntilItIsGivenBack) {
  const auto answer = add(HotKeyShortcut::standard(), 1);
  for (const uint16_t locks : {uint16_t{0}, kLock, kNumLock, static_cast<uint16_t>(kLock | kNumLock)}) {
    EXPECT_FALSE(display.isFree(KEY_B, kStandard | locks)) << locks;
  }
  EXPECT_TRUE(display.isFree(KEY_B, kControl | kAlt));
  keys->unregisterHotKey(*answer.reference);
  EXPECT_TRUE(runLoopUntil([&] { return display.isFree(KEY_B, kStandard); }));
  pressStandard();
  EXPECT_THAT(heard(), IsEmpty());
  keys->unregisterHotKey(*answer.reference);
  keys.reset();
  EXPECT_TRUE(runLoopUntil([&] { return display.isFree(KEY_M, kControl | kAlt); })) << "the server takes it back";
}

TEST_F(X11HotKeysTest, KeysThatThisKeyboardLacksAreInvalid) {
  EXPECT_EQ(add({200, HotKeyShortcut::control}, 1).status, hotKeyInvalid);
  display.run("xmodmap", {"-e", "clear mod4"});
  keys.reset();
  make();
  EXPECT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyInvalid) << "no Super key is a modifier";
  EXPECT_EQ(add(kOther, 2).status, hotKeyDone);
}

TEST_F(X11HotKeysTest, AnotherLayoutLeavesTheShortcutOnItsKey) {
  ASSERT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyDone);
  for (const char* layout : {"fr", "ru", "de"}) {
    display.setLayout(layout);
    pressStandard();
    EXPECT_THAT(heard(), ElementsAre(1u)) << layout;
  }
  EXPECT_FALSE(display.isFree(KEY_B, kStandard));
}

TEST_F(X11HotKeysTest, ModifiersThatMoveAreFollowed) {
  ASSERT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyDone);
  display.run("xmodmap", {"-e", "clear mod4", "-e", "clear mod3", "-e", "add mod3 = Super_L Super_R"});
  EXPECT_TRUE(runLoopUntil([&] { return display.isFree(KEY_B, kStandard); }));
  EXPECT_TRUE(runLoopUntil([&] { return !display.isFree(KEY_B, kShift | kControl | XCB_MOD_MASK_3); }));
  pressStandard();
  EXPECT_THAT(heard(), ElementsAre(1u));
  EXPECT_TRUE(refused.empty());
}

TEST_F(X11HotKeysTest, WhatIsTakenAfterAMoveIsToldLater) {
  ASSERT_EQ(add(HotKeyShortcut::standard(), 1).status, hotKeyDone);
  ASSERT_TRUE(display.grab(KEY_B, kShift | kControl | XCB_MOD_MASK_3));
  display.run("xmodmap", {"-e", "clear mod4", "-e", "clear mod3", "-e", "add mod3 = Super_L Super_R"});
  EXPECT_TRUE(runLoopUntil([&] { return !refused.empty(); }));
  EXPECT_EQ(refused.front(), (std::pair<quint32, qint32>(1, hotKeyExists)));
}

TEST_F(X11HotKeysTest, WithoutAServerNothingIsRegistered) {
  keys.reset();
  const QByteArray before = qgetenv("DISPLAY");
  qputenv("DISPLAY", ":987654");
  make();
  const auto answer = add(HotKeyShortcut::standard(), 1);
  qputenv("DISPLAY", before);
  EXPECT_NE(answer.status, hotKeyDone);
  EXPECT_NE(answer.status, hotKeyExists);
  EXPECT_EQ(answer.reference, std::nullopt);
  keys->unregisterHotKey(1);
}

}  // namespace
}  // namespace quillmere
