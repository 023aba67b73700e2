#include "shell/ApplicationWindows.h"

#include <gtest/gtest.h>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QWidget>

#include "support/Printing.h"

namespace quillmere {
namespace {

class ApplicationWindowsTest : public ::testing::Test {
 protected:
  bool isRegular() const { return windows.policy() == ActivationPolicy::regular; }
  void settle() { QCoreApplication::processEvents(); }

  QWidget inbox;
  QWidget settings;
  ApplicationWindows windows;
  ActivationPolicyLoan loan{windows};
};

TEST_F(ApplicationWindowsTest, TheProgramIsRegularAsLongAsOneOfItsWindowsIsShown) {
  int changes = 0;
  const Connection following = windows.policyChanged.connect([&] { ++changes; });
  EXPECT_FALSE(isRegular());
  windows.open(inbox);
  windows.open(settings);
  EXPECT_TRUE(isRegular());
  inbox.close();
  EXPECT_TRUE(isRegular()) << "Settings is still open";
  settings.close();
  EXPECT_FALSE(isRegular());
  EXPECT_EQ(changes, 2);
}

TEST_F(ApplicationWindowsTest, OnlyWindowsOfTheTableCount) {
  QWidget popup;
  popup.show();
  EXPECT_FALSE(windows.isAnyShown());
  EXPECT_EQ(windows.front(), nullptr);
  windows.add(inbox);
  EXPECT_FALSE(windows.isAnyShown()) << "it is not open yet";
  popup.close();
  windows.open(inbox);
  EXPECT_TRUE(windows.isAnyShown());
}

TEST_F(ApplicationWindowsTest, AMinimizedWindowCountsAsShown) {
  windows.open(inbox);
  inbox.showMinimized();
  EXPECT_TRUE(windows.isAnyShown());
  EXPECT_TRUE(isRegular());
  EXPECT_EQ(windows.placeForQuestion(), nullptr) << "a question over it could not be seen";
  windows.open(inbox);
  EXPECT_FALSE(inbox.isMinimized());
}

TEST_F(ApplicationWindowsTest, TheFrontOneIsTheOneUsedLast) {
  windows.open(inbox);
  windows.open(settings);
  EXPECT_EQ(windows.front(), &settings);
  QEvent activated(QEvent::WindowActivate);
  QApplication::sendEvent(&inbox, &activated);
  EXPECT_EQ(windows.front(), &inbox);
  inbox.showMinimized();
  EXPECT_EQ(windows.front(), &settings) << "minimized ones are behind all others";
}

TEST_F(ApplicationWindowsTest, ClosingTheLastOneOnTheScreenBringsAMinimizedOneBack) {
  windows.open(inbox);
  inbox.showMinimized();
  windows.open(settings);
  settings.close();
  EXPECT_FALSE(inbox.isMinimized());
  EXPECT_TRUE(isRegular());
}

TEST_F(ApplicationWindowsTest, ClosingOneLeavesTheOthersWhereTheyAre) {
  QWidget about;
  windows.open(about);
  about.showMinimized();
  windows.open(inbox);
  windows.open(settings);
  settings.close();
  EXPECT_TRUE(about.isMinimized());
  EXPECT_EQ(windows.front(), &inbox);
}

TEST_F(ApplicationWindowsTest, CloseFrontClosesOneWindowAsItsButtonWould) {
  windows.closeFront();
  windows.open(inbox);
  windows.open(settings);
  windows.closeFront();
  EXPECT_FALSE(settings.isVisible());
  EXPECT_TRUE(inbox.isVisible());
  inbox.showMinimized();
  windows.closeFront();
  EXPECT_TRUE(inbox.isVisible()) << "what is not seen is not closed";
}

TEST_F(ApplicationWindowsTest, AWindowMayGoWhileItIsShown) {
  int closings = 0;
  const Connection following = windows.closed.connect([&] { ++closings; });
  {
    QWidget welcome;
    windows.open(welcome);
    EXPECT_TRUE(isRegular());
  }
  EXPECT_FALSE(isRegular());
  EXPECT_EQ(windows.front(), nullptr);
  EXPECT_EQ(closings, 1);
}

TEST_F(ApplicationWindowsTest, AQuestionBelongsOverTheSheetThatHoldsTheWindowUp) {
  EXPECT_EQ(windows.placeForQuestion(), nullptr);
  windows.open(inbox);
  EXPECT_EQ(windows.placeForQuestion(), &inbox);
  QDialog sheet(&inbox);
  sheet.open();
  EXPECT_EQ(windows.placeForQuestion(), &sheet);
}

TEST_F(ApplicationWindowsTest, ALoanRaisesThePolicyUntilItIsPaidBack) {
  loan.borrow();
  loan.borrow();
  EXPECT_TRUE(isRegular());
  loan.repay();
  EXPECT_FALSE(isRegular());
  windows.setPolicy(ActivationPolicy::regular);
  loan.repay();
  EXPECT_TRUE(isRegular()) << "a second time it pays nothing back";
}

TEST_F(ApplicationWindowsTest, ALoanIsPaidBackToAProgramWithoutWindowsOnly) {
  loan.borrow();
  windows.open(inbox);
  loan.repay();
  EXPECT_TRUE(isRegular());
  inbox.close();
  EXPECT_FALSE(isRegular());
}

TEST_F(ApplicationWindowsTest, WhoIsRegularBorrowsNothing) {
  windows.open(inbox);
  loan.borrow();
  inbox.close();
  EXPECT_FALSE(isRegular());
  windows.setPolicy(ActivationPolicy::regular);
  loan.repay();
  EXPECT_TRUE(isRegular());
}

TEST_F(ApplicationWindowsTest, ALoanEndsWithItsOwner) {
  {
    ActivationPolicyLoan shortLoan(windows);
    shortLoan.borrow();
    EXPECT_TRUE(isRegular());
  }
  EXPECT_FALSE(isRegular());
}

}  // namespace
}  // namespace quillmere
