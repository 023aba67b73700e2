#include "platform/linux/shortcuts/XkbKeyboardLayout.h"

#include <gmock/gmock.h>
#include <linux/input-event-codes.h>

#include "TestDisplay.h"
#include "platform/linux/shortcuts/KeyCodes.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::runLoopUntil;
using testing::TestDisplay;

class XkbKeyboardLayoutTest : public ::testing::Test {
 protected:
  /// The key's name alone, after a change has been heard.
  QString name(uint32_t evdev) const {
    return HotKeyShortcut{*KeyCodes::stored(evdev), HotKeyShortcut::control}.symbols(layout).mid(5);
  }
  void change(const QString& to, const QString& options = {}) {
    const int before = changes;
    display.setLayout(to, options);
    EXPECT_TRUE(runLoopUntil([&] { return changes > before; })) << to.toStdString();
    // One command is several changes of the map.
    display.sync();
    QCoreApplication::processEvents();
  }

  TestDisplay display;
  XkbKeyboardLayout layout{XkbKeyboardLayout::Source::display};
  int changes = 0;
  Connection connection = layout.changed.connect([this] { ++changes; });
};

TEST_F(XkbKeyboardLayoutTest, KeysAreCalledAsTheirCapsSay) {
  EXPECT_EQ(name(KEY_Q), "Q");
  EXPECT_EQ(name(KEY_2), "2");
  EXPECT_EQ(name(KEY_GRAVE), "`");
  EXPECT_EQ(HotKeyShortcut::standard().symbols(layout), "Ctrl+Shift+Super+B");
  EXPECT_EQ(HotKeyShortcut::standard().spelledOut(layout), "Ctrl+Shift+Super+B");
}

TEST_F(XkbKeyboardLayoutTest, NamesFollowTheLayout) {
  change("fr");
  EXPECT_TRUE(runLoopUntil([&] { return name(KEY_Q) == "A"; }));
  EXPECT_EQ(name(KEY_2), "É") << "which has a large form";
  EXPECT_EQ(name(KEY_1), "&");
  change("ru");
  EXPECT_TRUE(runLoopUntil([&] { return name(KEY_Q) == "Й"; }));
  EXPECT_EQ(HotKeyShortcut::standard().symbols(layout), "Ctrl+Shift+Super+И");
  change("de");
  EXPECT_TRUE(runLoopUntil([&] { return name(KEY_Z) == "Y"; }));
  EXPECT_EQ(name(KEY_SEMICOLON), "Ö");
}

TEST_F(XkbKeyboardLayoutTest, ADeadKeyShowsItsAccent) {
  change("de");
  ASSERT_TRUE(runLoopUntil([&] { return name(KEY_Z) == "Y"; }));
  EXPECT_EQ(name(KEY_GRAVE), "^");
  EXPECT_EQ(name(KEY_EQUAL), "´");
  change("fr");
  ASSERT_TRUE(runLoopUntil([&] { return name(KEY_Q) == "A"; }));
  EXPECT_EQ(name(KEY_LEFTBRACE), "^");
  change("us(intl)");
  ASSERT_TRUE(runLoopUntil([&] { return name(KEY_Q) == "Q"; }));
  EXPECT_EQ(name(KEY_APOSTROPHE), "´");
  EXPECT_EQ(name(KEY_GRAVE), "`");
}

TEST_F(XkbKeyboardLayoutTest, OfSeveralLayoutsTheOneInUseCountsAndThenTheLatinOne) {
  change("us,ru", "grp:shifts_toggle");
  ASSERT_TRUE(runLoopUntil([&] { return layout.texts(12).size() == 1; }));
  EXPECT_THAT(layout.texts(12), ElementsAre("q"));
  const int before = changes;
  display.tap({KEY_LEFTSHIFT, KEY_RIGHTSHIFT});
  ASSERT_TRUE(runLoopUntil([&] { return changes > before; })) << "a change of the group is told";
  EXPECT_THAT(layout.texts(12), ElementsAre("й", "q"));
  EXPECT_EQ(name(KEY_Q), "Й");
  display.tap({KEY_LEFTSHIFT, KEY_RIGHTSHIFT});
  ASSERT_TRUE(runLoopUntil([&] { return layout.texts(12) == QStringList("q"); }));
}

TEST_F(XkbKeyboardLayoutTest, TheKeypadIsCalledByItsDigits) {
  EXPECT_EQ(name(KEY_KP0), "0");
  EXPECT_EQ(name(KEY_KP7), "7");
  EXPECT_EQ(name(KEY_KPPLUS), "+");
  EXPECT_EQ(name(KEY_KPDOT), ".");
}

TEST_F(XkbKeyboardLayoutTest, KeysThatWriteNothingAreCalledByTheirNumber) {
  EXPECT_EQ(name(KEY_NUMLOCK), "Key 71");
  EXPECT_THAT(layout.texts(200), IsEmpty());
  EXPECT_EQ(name(KEY_F13), "F13");
}

TEST_F(XkbKeyboardLayoutTest, APressTellsTheKeyOfAShortcut) {
  EXPECT_EQ(layout.keyCode(KEY_B + 8), 11u);
  EXPECT_EQ(layout.keyCode(KEY_F20 + 8), 90u);
  EXPECT_EQ(layout.keyCode(KEY_VOLUMEUP + 8), std::nullopt);
  EXPECT_EQ(layout.keyCode(0), std::nullopt);
  EXPECT_EQ(layout.keyCode(7), std::nullopt);
}

TEST(XkbStandardLayoutTest, WithoutADisplayTheMachinesStandardCounts) {
  const XkbKeyboardLayout layout(XkbKeyboardLayout::Source::standard);
  EXPECT_THAT(layout.texts(12), ElementsAre("q"));
  EXPECT_EQ(layout.keyCode(KEY_B + 8), 11u);
}

TEST(XkbStandardLayoutTest, ADisplayThatIsGoneLeavesTheStandard) {
  const QByteArray before = qgetenv("DISPLAY");
  qputenv("DISPLAY", ":987654");
  const XkbKeyboardLayout layout(XkbKeyboardLayout::Source::display);
  before.isEmpty() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", before);
  EXPECT_THAT(layout.texts(11), ElementsAre("b"));
}

TEST(XkbStandardLayoutTest, AServerThatEndsIsNoLossOfNames) {
  auto display = std::make_unique<TestDisplay>();
  const XkbKeyboardLayout layout(XkbKeyboardLayout::Source::display);
  display.reset();
  for (int turn = 0; turn < 50; ++turn) QCoreApplication::processEvents();
  EXPECT_THAT(layout.texts(11), ElementsAre("b"));
}

}  // namespace
}  // namespace quillmere
