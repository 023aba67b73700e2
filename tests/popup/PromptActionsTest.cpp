#include "popup/PromptActions.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

class PromptActionsTest : public ::testing::Test {
 protected:
  QPushButton& button(size_t place) const { return dynamic_cast<QPushButton&>(*actions.controls().at(place)); }
  QPushButton& trash() const { return button(4); }
  /// Which of the five can be used, in their order.
  std::string usable(const std::optional<PromptWindowExtraction::Phase>& phase) {
    CapturePromptContent content;
    content.windowExtraction = phase;
    actions.show(content);
    std::string all;
    for (const QWidget* control : actions.controls()) all += control->isEnabled() ? 'x' : '-';
    EXPECT_EQ(actions.canDecide(), all[0] == 'x');
    return all;
  }
  PromptActions actions{nullptr};
};

TEST_F(PromptActionsTest, EachDecisionHasItsButton) {
  std::string taken;
  actions.onTemporary = [&] { taken += 't'; };
  actions.onKeep = [&] { taken += 'k'; };
  actions.onCopy = [&] { taken += 'c'; };
  actions.onTrash = [&] { taken += 'd'; };
  for (const size_t place : {0u, 1u, 2u, 4u}) QTest::mouseClick(&button(place), Qt::LeftButton);
  EXPECT_EQ(taken, "tkcd");
  EXPECT_EQ(actions.mainButton(), actions.controls().front());
}

TEST_F(PromptActionsTest, TemporaryIsTheDefaultButtonAndTellsItsKey) {
  for (const size_t place : {0u, 1u, 2u, 4u}) {
    const QAccessibleInterface& heard = *QAccessible::queryAccessibleInterface(&button(place));
    EXPECT_EQ(heard.state().defaultButton, place == 0) << place;
    EXPECT_EQ(heard.text(QAccessible::Accelerator), place == 0 ? QStringLiteral("Return") : QString()) << place;
  }
}

TEST_F(PromptActionsTest, WhatIsUnderWayTellsWhatCanBeDecided) {
  EXPECT_EQ(usable(std::nullopt), "xxxxx");
  EXPECT_EQ(usable(PromptWindowExtraction::Detecting()), "---xx") << "the screenshot can go while a window is sought";
  EXPECT_EQ(usable(PromptWindowExtraction::Extracted{QRectF(0, 0, 9, 9)}), "xxxxx");
  EXPECT_EQ(usable(PromptWindowExtraction::Saving{QRectF(0, 0, 9, 9)}), "---x-");
}

TEST_F(PromptActionsTest, WhereTheChosenIsDeletedTheButtonSaysSo) {
  CapturePromptContent content;
  content.deletesChosen = true;
  actions.show(content);
  EXPECT_EQ(trash().text(), QStringLiteral("Delete"));
  EXPECT_EQ(trash().toolTip(), QStringLiteral("Delete this screenshot’s file"));
  EXPECT_EQ(trash().accessibleDescription(),
            QStringLiteral("Deletes only this image, asking first. It can’t be recovered."));
  actions.show({});
  EXPECT_EQ(trash().text(), QStringLiteral("Move to Trash"));
}

/// Some screen readers look for what a menu is for there alone.
TEST_F(PromptActionsTest, TheDurationIsNamedByALabelThatNobodySees) {
  const auto* label = actions.findChild<QLabel*>();
  ASSERT_TRUE(label);
  EXPECT_EQ(label->buddy(), actions.controls().at(3));
  EXPECT_EQ(label->text(), QStringLiteral("Temporary duration"));
  EXPECT_FALSE(label->isVisibleTo(&actions));
}

}  // namespace
}  // namespace quillmere
