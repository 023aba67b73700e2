#include "settings/ShortcutRecording.h"

#include <gtest/gtest.h>
#include <QtGui/QKeyEvent>

#include "fakes/ModelFakes.h"

namespace quillmere {
namespace {

using Kind = RecordedKey::Kind;
using Issue = HotKeyShortcut::Issue;
constexpr quint64 kShift = HotKeyShortcut::shift;
constexpr quint64 kControl = HotKeyShortcut::control;
constexpr quint64 kOption = HotKeyShortcut::option;
constexpr quint64 kCommand = HotKeyShortcut::command;

Kind kindOf(quint32 keyCode, quint64 modifiers, bool isRepeat = false) {
  return RecordedKey::of({keyCode, modifiers, isRepeat}).kind;
}

TEST(ShortcutRecordingTest, AHeldKeyIsIgnoredWhateverItIs) {
  for (const quint32 key : {48U, 51U, 53U, 15U}) EXPECT_EQ(kindOf(key, kControl | kCommand, true), Kind::ignore);
  EXPECT_EQ(kindOf(53, 0, true), Kind::ignore);
}

TEST(ShortcutRecordingTest, TabMovesOnUnlessItIsHeldWithWhatAShortcutHas) {
  EXPECT_EQ(kindOf(48, 0), Kind::pass);
  EXPECT_EQ(kindOf(48, kShift), Kind::pass);
  for (const quint64 modifier : {kControl, kOption, kCommand}) EXPECT_NE(kindOf(48, modifier), Kind::pass);
}

TEST(ShortcutRecordingTest, BothDeletesClearAlone) {
  for (const quint32 key : {51U, 117U}) {
    EXPECT_EQ(kindOf(key, 0), Kind::clear);
    for (const quint64 modifier : {kShift, kControl, kOption, kCommand}) EXPECT_NE(kindOf(key, modifier), Kind::clear);
  }
  const RecordedKey withOption = RecordedKey::of({51, kOption, false});
  EXPECT_EQ(withOption.kind, Kind::issue);
  EXPECT_EQ(withOption.issue, Issue::typesCharacter);
}

TEST(ShortcutRecordingTest, EscapeCancelsAlone) {
  EXPECT_EQ(kindOf(53, 0), Kind::cancel);
  const RecordedKey withShift = RecordedKey::of({53, kShift, false});
  EXPECT_EQ(withShift.kind, Kind::issue);
  EXPECT_EQ(withShift.issue, Issue::needsModifier);
}

TEST(ShortcutRecordingTest, WhatIsLeftIsAShortcutOrCannotBeOne) {
  const RecordedKey good = RecordedKey::of({15, kCommand | kOption, false});
  EXPECT_EQ(good.kind, Kind::shortcut);
  EXPECT_EQ(good.shortcut, (HotKeyShortcut{15, kCommand | kOption}));
  EXPECT_FALSE(good.issue);
  EXPECT_EQ(RecordedKey::of({12, kCommand, false}).issue, Issue::reserved);
  EXPECT_EQ(RecordedKey::of({49, 0, false}).issue, Issue::needsModifier);
  EXPECT_EQ(RecordedKey::of({36, 0, false}).issue, Issue::needsModifier);
}

TEST(ShortcutRecordingTest, FlagsThatAreNoModifiersHaveNoEffect) {
  constexpr quint64 kCapsLock = 0x10000;
  EXPECT_EQ(kindOf(53, kCapsLock), Kind::cancel);
  EXPECT_EQ(RecordedKey::of({15, kCapsLock | kControl | kCommand, false}).shortcut.modifiers, kControl | kCommand);
}

class KeyDownTest : public ::testing::Test {
 protected:
  KeyDownTest() { layout.scanCodes = {{27, 15}}; }
  std::optional<KeyDown> keyDown(Qt::Key key, Qt::KeyboardModifiers held, quint32 scanCode, bool isRepeat = false) {
    const QKeyEvent event(QEvent::KeyPress, key, held, scanCode, 0, 0, QString(), isRepeat);
    return KeyDown::of(event, layout);
  }
  testing::FakeKeyboardLayout layout;
};

TEST_F(KeyDownTest, IsByTheKeysPlaceAndTheFourModifiers) {
  EXPECT_EQ(keyDown(Qt::Key_R, {}, 27), (KeyDown{15, 0, false}));
  EXPECT_EQ(keyDown(Qt::Key_R, Qt::MetaModifier | Qt::AltModifier, 27), (KeyDown{15, kCommand | kOption, false}));
  EXPECT_EQ(keyDown(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier | Qt::KeypadModifier, 27),
            (KeyDown{15, kControl | kShift, false}));
  EXPECT_EQ(keyDown(Qt::Key_R, {}, 27, true), (KeyDown{15, 0, true}));
}

TEST_F(KeyDownTest, ModifiersAndLocksAreNone) {
  for (const Qt::Key key : {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Meta, Qt::Key_Alt, Qt::Key_AltGr, Qt::Key_Super_L,
                            Qt::Key_Super_R, Qt::Key_CapsLock, Qt::Key_NumLock}) {
    EXPECT_FALSE(keyDown(key, {}, 27)) << key;
  }
}

TEST_F(KeyDownTest, AKeyWithoutACodeIsInNoShortcut) {
  const auto play = keyDown(Qt::Key_MediaPlay, Qt::ControlModifier, 172);
  EXPECT_EQ(play, (KeyDown{std::nullopt, kControl, false}));
  EXPECT_EQ(RecordedKey::of(*play).kind, Kind::unusable);
  EXPECT_EQ(RecordedKey::of({std::nullopt, kControl, true}).kind, Kind::ignore);
}

}  // namespace
}  // namespace quillmere
