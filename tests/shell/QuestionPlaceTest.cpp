#include "shell/QuestionPlace.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QDialog>

#include "shell/AcknowledgmentsPopover.h"

namespace quillmere {
namespace {

class QuestionPlaceTest : public ::testing::Test {
 protected:
  QuestionPlaceTest() { window.show(); }
  QWidget window;
};

TEST_F(QuestionPlaceTest, AWindowAndASheetOfItArePlaces) {
  EXPECT_EQ(placeForQuestionOver(&window), &window);
  QDialog sheet(&window);
  sheet.open();
  EXPECT_EQ(placeForQuestionOver(&sheet), &sheet);
  EXPECT_EQ(placeForQuestionOver(nullptr), nullptr);
}

TEST_F(QuestionPlaceTest, ADialogThatIsAWindowOfTheProgramIsOneToo) {
  QDialog about(nullptr, Qt::Window | Qt::WindowTitleHint);
  EXPECT_EQ(placeForQuestionOver(&about), &about);
}

TEST_F(QuestionPlaceTest, WhatHoldsUpNothingMayGoByItself) {
  QDialog sheet(&window);
  sheet.open();
  QDialog popover(&sheet);
  QDialog updater;
  EXPECT_EQ(placeForQuestionOver(&popover), &sheet);
  EXPECT_EQ(placeForQuestionOver(&updater), nullptr);
}

TEST_F(QuestionPlaceTest, BelowAPopoverThatHasTheKeyboardIsItsWindow) {
  AcknowledgmentsPopover popover({{QStringLiteral("Qt"), QStringLiteral("LGPL-3.0-only")}}, &window);
  popover.show();
  popover.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&popover));
  EXPECT_EQ(placeForQuestionOverActive(), &window);
}

}  // namespace
}  // namespace quillmere
