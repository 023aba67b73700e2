#include "platform/linux/shortcuts/KeyCombination.h"

#include <gmock/gmock.h>

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr quint64 kControl = HotKeyShortcut::control;
constexpr quint64 kShift = HotKeyShortcut::shift;
constexpr quint64 kAlt = HotKeyShortcut::option;
constexpr quint64 kSuper = HotKeyShortcut::command;

const XkbKeyboardLayout& standardLayout() {
  static const XkbKeyboardLayout kLayout(XkbKeyboardLayout::Source::standard);
  return kLayout;
}
KeyCombination combination(quint32 key, quint64 modifiers) {
  return KeyCombination::of({key, modifiers}, standardLayout());
}

TEST(KeyCombinationTest, AreWrittenAsPortalsWriteThem) {
  EXPECT_EQ(KeyCombination::of(HotKeyShortcut::standard(), standardLayout()).trigger(), "CTRL+SHIFT+LOGO+b");
  EXPECT_EQ(combination(49, kControl | kAlt).trigger(), "CTRL+ALT+space");
  EXPECT_EQ(combination(96, kAlt).trigger(), "ALT+F5");
  EXPECT_EQ(combination(200, kControl).trigger(), "");
}

TEST(KeyCombinationTest, AKeyOfAnotherScriptIsWrittenByItsLatinOne) {
  const KeyCombination both{kControl | kSuper, {{XKB_KEY_Cyrillic_i, XKB_KEY_Cyrillic_I}, {XKB_KEY_b, XKB_KEY_B}}};
  EXPECT_EQ(both.trigger(), "CTRL+LOGO+b");
  EXPECT_TRUE(both.isAccelerator("<Primary><Super>b"));
  EXPECT_TRUE(both.isAccelerator("<Primary><Super>Cyrillic_i"));
}

TEST(KeyCombinationTest, AreCountedAsQtCountsThem) {
  EXPECT_THAT(combination(11, kControl | kShift | kSuper).qtKeys(),
              ElementsAre(0x04000000 | 0x02000000 | 0x10000000 | Qt::Key_B));
  EXPECT_THAT(combination(96, kAlt).qtKeys(), ElementsAre(0x08000000 | Qt::Key_F5));
  EXPECT_THAT(combination(126, kControl | kAlt).qtKeys(), ElementsAre(0x04000000 | 0x08000000 | Qt::Key_Up));
  EXPECT_THAT(combination(18, kControl | kShift).qtKeys(),
              UnorderedElementsAre(0x06000000 | Qt::Key_1, 0x06000000 | Qt::Key_Exclam, 0x04000000 | Qt::Key_Exclam));
  EXPECT_THAT(combination(200, kControl).qtKeys(), IsEmpty());
}

TEST(KeyCombinationTest, AcceleratorsAreReadInAllTheirSpellings) {
  const KeyCombination standard = combination(11, kControl | kShift | kSuper);
  for (const char* same : {"<Primary><Shift><Super>b", "<Control><Shift><Super>B", "<Super><Ctrl><Shift>b",
                           "<ctl><shft><Mod4>b", "<shift><primary><super>b"}) {
    EXPECT_TRUE(standard.isAccelerator(same)) << same;
  }
  for (const char* other : {"<Primary><Shift><Super>n", "<Primary><Shift>b", "<Primary><Shift><Super><Alt>b",
                            "<Primary><Shift><Super><Hyper>b", "<Primary", "b", "", "<Primary><Shift><Super>",
                            "<Primary><Shift><Super>nosuchkey"}) {
    EXPECT_FALSE(standard.isAccelerator(other)) << other;
  }
  EXPECT_TRUE(combination(50, kAlt | kSuper).isAccelerator("<Mod1><Super>Above_Tab"));
  EXPECT_TRUE(combination(18, kControl | kShift).isAccelerator("<Primary><Shift>exclam"));
  EXPECT_FALSE(combination(18, kControl).isAccelerator("<Primary>exclam"));
  EXPECT_FALSE(combination(200, kControl).isAccelerator("<Primary>")) << "neither has a key";
}

TEST(KeyCombinationTest, ADescriptionOfTheSameKeysIsKnown) {
  for (const char* same : {"Ctrl+Shift+Super+B", "Meta+Ctrl+Shift+B", "Press <Control><Shift><Super>b",
                           "ctrl + shift + logo + b", "<Primary><Shift><Super>B"}) {
    EXPECT_TRUE(describesKeys(same, "Ctrl+Shift+Super+B")) << same;
  }
  for (const char* other : {"", "Ctrl+Shift+Super+N", "Ctrl+Super+B", "Ctrl+Shift+Alt+Super+B", "Meta+R"}) {
    EXPECT_FALSE(describesKeys(other, "Ctrl+Shift+Super+B")) << other;
  }
}

}  // namespace
}  // namespace quillmere
