#include "shell/AcknowledgmentsPopover.h"

#include <gtest/gtest.h>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include "support/EventLoop.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

class AcknowledgmentsPopoverTest : public ::testing::Test {
 protected:
  AcknowledgmentsPopoverTest() {
    window.resize(300, 200);
    button.setGeometry(100, 150, 100, 30);
    window.show();
  }
  void open(int libraries) {
    std::vector<LinkedLibrary> all;
    for (int i = 0; i < libraries; ++i) {
      all.push_back({QStringLiteral("Library %1").arg(i), QStringLiteral("LGPL-2.1-or-later")});
    }
    popover = std::make_unique<AcknowledgmentsPopover>(all, &window);
    popover->openBeside(button);
    popover->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(popover.get()));
  }
  QScrollBar& bar() const { return *popover->findChild<QScrollArea*>()->verticalScrollBar(); }
  QRect card() const { return PopupSurface::surface(popover->geometry()); }
  QRect buttonOnScreen() const { return {button.mapToGlobal(QPoint()), button.size()}; }

  QWidget window;
  QPushButton button{&window};
  std::unique_ptr<AcknowledgmentsPopover> popover;
};

TEST_F(AcknowledgmentsPopoverTest, EachLibraryStandsWithItsLicence) {
  open(2);
  QStringList shown;
  for (const auto* label : popover->findChildren<QLabel*>()) shown.append(label->text());
  EXPECT_EQ(shown.value(0), QStringLiteral("Acknowledgments"));
  const qsizetype first = shown.indexOf(QStringLiteral("Library 0"));
  EXPECT_EQ(shown.mid(first, 4), QStringList({QStringLiteral("Library 0"), QStringLiteral("LGPL-2.1-or-later"),
                                              QStringLiteral("Library 1"), QStringLiteral("LGPL-2.1-or-later")}));
  EXPECT_EQ(bar().maximum(), 0) << "all of a short list is seen";
}

TEST_F(AcknowledgmentsPopoverTest, ItCoversNeitherItsButtonNorLeavesTheScreen) {
  for (const QPoint& place : {QPoint(100, 20), QPoint(0, 500), QPoint(500, 300)}) {
    window.move(place);
    open(10);
    EXPECT_FALSE(card().intersects(buttonOnScreen()));
    EXPECT_TRUE(window.screen()->availableGeometry().contains(card()));
  }
}

TEST_F(AcknowledgmentsPopoverTest, ALongListIsScrolledByKeyboard) {
  open(200);
  EXPECT_TRUE(window.screen()->availableGeometry().contains(card()));
  EXPECT_GT(bar().maximum(), 0);
  QTest::keyClick(popover->focusWidget(), Qt::Key_PageDown);
  EXPECT_GT(bar().value(), 0);
}

TEST_F(AcknowledgmentsPopoverTest, ItGoesWithEscape) {
  open(2);
  QTest::keyClick(popover->focusWidget(), Qt::Key_Escape);
  EXPECT_FALSE(popover->isVisible());
}

TEST_F(AcknowledgmentsPopoverTest, ItGoesWhenAnotherWindowIsUsed) {
  open(2);
  window.activateWindow();
  EXPECT_TRUE(testing::runLoopUntil([this] { return !popover->isVisible(); }));
  EXPECT_TRUE(window.isVisible());
}

}  // namespace
}  // namespace quillmere
