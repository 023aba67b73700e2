#include "editor/DetectedContentRow.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>

#include "support/Printing.h"

namespace quillmere {
namespace {

using Source = WindowShadowMargin::Source;

WindowCandidate candidate(int number, Source source) {
  WindowCandidate candidate{UUID::createUuid(), number, QRect(10 * number, 10, 20, 20), {}};
  candidate.shadow.left = candidate.shadow.right = 3;
  candidate.shadow.source = source;
  return candidate;
}

class DetectedContentRowTest : public ::testing::Test {
 protected:
  DetectedContentRowTest() {
    row.onPick = [this](const UUID& id) { picked = id; };
    row.onIncludeShadow = [this](bool isOn) { includes = isOn; };
    around.show();
    row.show(selection);
  }
  void pick(size_t index) {
    selection.pick(selection.candidates()[index].id);
    row.show(selection);
  }
  QWidget around;
  CropSelection selection{QSize(100, 80), {candidate(1, Source::none), candidate(2, Source::measured)}};
  DetectedContentRow row{&around};
  QComboBox& menu = *row.findChild<QComboBox*>();
  QCheckBox& shadow = *row.findChild<QCheckBox*>();
  std::optional<UUID> picked;
  std::optional<bool> includes;
};

TEST_F(DetectedContentRowTest, TheWindowsStandInTheMenuByTheirNumbers) {
  EXPECT_TRUE(row.isVisible());
  EXPECT_EQ(menu.accessibleName(), QStringLiteral("Detected content"));
  ASSERT_EQ(menu.count(), 2);
  EXPECT_EQ(menu.itemText(0), QStringLiteral("Possible Window 1"));
  EXPECT_EQ(menu.itemText(1), QStringLiteral("Possible Window 2"));
  EXPECT_EQ(menu.currentIndex(), -1);
  pick(1);
  EXPECT_EQ(menu.currentIndex(), 1);
  selection.moveBy(1, 0);
  row.show(selection);
  EXPECT_EQ(menu.currentIndex(), -1) << "the selection is the person's own now";
}

TEST_F(DetectedContentRowTest, WithoutWindowsThereIsNothingToSee) {
  row.show(CropSelection(QSize(100, 80)));
  EXPECT_FALSE(row.isVisible());
}

TEST_F(DetectedContentRowTest, PickingTellsWhichOneAndShowingTellsNothing) {
  pick(1);
  EXPECT_FALSE(picked);
  QTest::keyClick(&menu, Qt::Key_Up);
  EXPECT_EQ(picked, selection.candidates()[0].id);
}

TEST_F(DetectedContentRowTest, TheBoxIsForWindowsWithAShadowAndSaysWhyNot) {
  const QString none = QString::fromUtf8("No shadow was found around this window, so there is nothing to include.");
  const QString help = QString::fromUtf8("Grow the crop to take in the window’s drop shadow");
  EXPECT_EQ(shadow.text(), QStringLiteral("Include window shadow"));
  EXPECT_FALSE(shadow.isEnabled()) << "no window is selected";
  EXPECT_EQ(shadow.accessibleDescription(), none);
  pick(0);
  EXPECT_FALSE(shadow.isEnabled());
  EXPECT_TRUE(shadow.toolTip().contains(none));
  pick(1);
  EXPECT_TRUE(shadow.isEnabled());
  EXPECT_EQ(shadow.accessibleDescription(), help);
  EXPECT_TRUE(shadow.toolTip().contains(help));
}

TEST_F(DetectedContentRowTest, TheBoxShowsWhetherTheShadowIsInTheSelection) {
  pick(1);
  EXPECT_FALSE(shadow.isChecked());
  EXPECT_FALSE(includes);
  shadow.click();
  EXPECT_EQ(includes, true);
  selection.setIncludesShadow(true);
  row.show(selection);
  EXPECT_TRUE(shadow.isChecked());
  selection.setIncludesShadow(false);
  row.show(selection);
  EXPECT_FALSE(shadow.isChecked());
}

}  // namespace
}  // namespace quillmere
