#include "platform/linux/shortcuts/KeyCodes.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <set>

namespace quillmere {
namespace {

TEST(KeyCodesTest, KeysStandWhereTheyStandOnAKeyboard) {
  struct Row {
    quint32 stored;
    quint32 evdev;
  };
  const Row rows[]{{0, KEY_A},        {11, KEY_B},      {6, KEY_Z},         {18, KEY_1},         {29, KEY_0},
                   {36, KEY_ENTER},   {48, KEY_TAB},    {49, KEY_SPACE},    {51, KEY_BACKSPACE}, {53, KEY_ESC},
                   {117, KEY_DELETE}, {123, KEY_LEFT},  {124, KEY_RIGHT},   {125, KEY_DOWN},     {126, KEY_UP},
                   {122, KEY_F1},     {96, KEY_F5},     {111, KEY_F12},     {105, KEY_F13},      {90, KEY_F20},
                   {82, KEY_KP0},     {92, KEY_KP9},    {76, KEY_KPENTER},  {10, KEY_102ND},     {93, KEY_YEN},
                   {94, KEY_RO},      {102, KEY_HANJA}, {104, KEY_HANGEUL}, {95, KEY_KPJPCOMMA}, {50, KEY_GRAVE}};
  for (const Row& row : rows) {
    EXPECT_EQ(KeyCodes::evdev(row.stored), row.evdev) << row.stored;
    EXPECT_EQ(KeyCodes::stored(row.evdev), row.stored) << row.evdev;
  }
}

TEST(KeyCodesTest, EachKeyComesBackAsItself) {
  std::set<quint32> evdev;
  int count = 0;
  for (quint32 code = 0; code < 256; ++code) {
    const auto there = KeyCodes::evdev(code);
    if (!there) continue;
    ++count;
    EXPECT_TRUE(evdev.insert(*there).second) << "two keys are " << *there;
    EXPECT_EQ(KeyCodes::stored(*there), code);
  }
  EXPECT_EQ(count, 115);
}

/// The rows of an American keyboard with its function keys, arrows and digits at the side, as the kernel counts them.
TEST(KeyCodesTest, NoKeyOfAPlainKeyboardIsLeftOut) {
  const std::set<quint32> without{KEY_SCROLLLOCK};
  for (quint32 evdev = KEY_ESC; evdev <= KEY_F12; ++evdev) {
    if (evdev == 84 || evdev == KEY_ZENKAKUHANKAKU || without.contains(evdev))
      continue;  // no key, and a Japanese switch
    EXPECT_TRUE(KeyCodes::stored(evdev)) << evdev;
  }
  for (quint32 evdev = KEY_F13; evdev <= KEY_F20; ++evdev) EXPECT_TRUE(KeyCodes::stored(evdev)) << evdev;
  for (quint32 evdev = KEY_HOME; evdev <= KEY_DELETE; ++evdev) EXPECT_TRUE(KeyCodes::stored(evdev)) << evdev;
}

TEST(KeyCodesTest, KeysWithoutANumberHaveNone) {
  EXPECT_EQ(KeyCodes::stored(KEY_VOLUMEUP), std::nullopt);
  EXPECT_EQ(KeyCodes::stored(0), std::nullopt);
  EXPECT_EQ(KeyCodes::evdev(200), std::nullopt);
}

TEST(KeyCodesTest, TheKeypadIsTheBlockAtTheSide) {
  EXPECT_TRUE(KeyCodes::isKeypad(82));
  EXPECT_TRUE(KeyCodes::isKeypad(76));
  EXPECT_TRUE(KeyCodes::isKeypad(95));
  EXPECT_FALSE(KeyCodes::isKeypad(29));
  EXPECT_FALSE(KeyCodes::isKeypad(36));
  EXPECT_FALSE(KeyCodes::isKeypad(90)) << "F20, between the keypad's 8 and its 9";
}

}  // namespace
}  // namespace quillmere
