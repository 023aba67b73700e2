#include "editor/CropEditorActions.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLayout>
#include <QtWidgets/QPushButton>

#include "controls/WorkIndicator.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

QPushButton& button(const QWidget& pane, const char* text) {
  for (auto* found : pane.findChildren<QPushButton*>()) {
    if (found->text() == QString::fromUtf8(text)) return *found;
  }
  throw std::out_of_range(text);
}

class CropEditorActionsTest : public ::testing::Test {
 protected:
  CropEditorActionsTest() {
    confirm.onCancel = [this] { done << QStringLiteral("cancel"); };
    confirm.onReplace = [this] { done << QStringLiteral("replace"); };
    confirm.onSave = [this] { done << QStringLiteral("save"); };
    alternate.onKeep = [this] { done << QStringLiteral("keep"); };
    alternate.onCopy = [this] { done << QStringLiteral("copy"); };
    confirm.show();
    alternate.show();
  }
  QStringList take() { return std::exchange(done, {}); }
  CropEditorConfirmActions confirm{nullptr};
  CropEditorAlternateActions alternate{nullptr};
  QStringList done;
};

TEST_F(CropEditorActionsTest, CancelCanAlwaysBePressed) {
  QTest::mouseClick(&button(confirm, "Cancel"), Qt::LeftButton);
  EXPECT_EQ(take(), QStringList{QStringLiteral("cancel")});
}

TEST_F(CropEditorActionsTest, SaveIsTheFirstOfThemAndPressedWhereItCanBeDone) {
  QPushButton& save = button(confirm, "Save as New Screenshot");
  EXPECT_TRUE(save.isDefault());
  QTest::mouseClick(&save, Qt::LeftButton);
  EXPECT_TRUE(take().isEmpty());
  confirm.setCanSave(true);
  QTest::mouseClick(&save, Qt::LeftButton);
  EXPECT_EQ(take(), QStringList{QStringLiteral("save")});
}

TEST_F(CropEditorActionsTest, ReplaceSaysWhatItDoesOrWhyItCant) {
  QPushButton& replace = button(confirm, "Replace Original…");
  const QString help = QString::fromUtf8("Move the original to Trash and save the crop under its name");
  confirm.setCanReplace(true, {});
  EXPECT_EQ(replace.accessibleDescription(), help);
  EXPECT_TRUE(replace.toolTip().contains(help));
  QTest::mouseClick(&replace, Qt::LeftButton);
  EXPECT_EQ(take(), QStringList{QStringLiteral("replace")});
  confirm.setCanReplace(false, QStringLiteral("It has moved."));
  EXPECT_FALSE(replace.isEnabled());
  EXPECT_EQ(replace.accessibleDescription(), QStringLiteral("It has moved."));
  EXPECT_TRUE(replace.toolTip().contains(QStringLiteral("It has moved.")));
}

TEST_F(CropEditorActionsTest, TheRingTurnsBesideThemAndTheyStayInTheirPlaces) {
  const auto all = confirm.findChildren<QWidget*>();
  const auto found =
      std::find_if(all.begin(), all.end(), [](QWidget* one) { return dynamic_cast<WorkIndicator*>(one) != nullptr; });
  ASSERT_NE(found, all.end());
  const QWidget& ring = **found;
  const QPoint place = button(confirm, "Cancel").pos();
  EXPECT_FALSE(ring.isVisible());
  confirm.setWorking(true);
  confirm.layout()->activate();
  EXPECT_TRUE(ring.isVisible());
  EXPECT_EQ(button(confirm, "Cancel").pos(), place);
}

TEST_F(CropEditorActionsTest, KeepIsThereOnlyWhereItIsOffered) {
  QPushButton& keep = button(alternate, "Keep Full Screenshot");
  EXPECT_FALSE(keep.isVisible());
  alternate.setShowsKeep(true);
  EXPECT_TRUE(keep.isVisible());
  EXPECT_FALSE(keep.isEnabled());
  alternate.setCanKeep(true);
  QTest::mouseClick(&keep, Qt::LeftButton);
  EXPECT_EQ(take(), QStringList{QStringLiteral("keep")});
}

TEST_F(CropEditorActionsTest, CopyIsPressedWhereThereIsSomethingToCopy) {
  QPushButton& copy = button(alternate, "Copy Cropped Image");
  EXPECT_FALSE(copy.isEnabled());
  alternate.setCanCopy(true);
  QTest::mouseClick(&copy, Qt::LeftButton);
  EXPECT_EQ(take(), QStringList{QStringLiteral("copy")});
}

}  // namespace
}  // namespace quillmere
