#include "popup/PromptHeader.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

class PromptHeaderTest : public ::testing::Test {
 protected:
  QLabel& title() const { return *header.findChildren<QLabel*>().at(0); }
  QLabel& count() const { return *header.findChildren<QLabel*>().at(1); }
  PromptHeader header{nullptr};
};

TEST_F(PromptHeaderTest, ItsTitleIsAHeadingAndIsReadFirst) {
  EXPECT_EQ(title().text(), QStringLiteral("Screenshot Captured"));
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&title())->role(), QAccessible::Heading);
  EXPECT_EQ(header.findChildren<QWidget*>().last(), header.closeButton()) << "the way out is read last";
}

TEST_F(PromptHeaderTest, HowManyWaitIsShownShortAndSpokenInFull) {
  header.show(0, false);
  EXPECT_FALSE(count().isVisibleTo(&header));
  header.show(1, false);
  EXPECT_TRUE(count().isVisibleTo(&header));
  EXPECT_EQ(count().text(), QStringLiteral("1 more"));
  EXPECT_EQ(count().accessibleName(), QStringLiteral("1 more screenshot waiting"));
  header.show(12, false);
  EXPECT_EQ(count().text(), QStringLiteral("12 more"));
  EXPECT_EQ(count().accessibleName(), QStringLiteral("12 more screenshots waiting"));
}

TEST_F(PromptHeaderTest, ADiskThatIsWaitedForIsToldInTheCountsPlace) {
  header.show(0, true);
  EXPECT_TRUE(count().isVisibleTo(&header));
  EXPECT_EQ(count().text(), QStringLiteral("Waiting for the disk…"));
  header.show(2, true);
  EXPECT_EQ(count().accessibleName(), QStringLiteral("Waiting for the disk…"));
  header.show(2, false);
  EXPECT_EQ(count().text(), QStringLiteral("2 more"));
}

TEST_F(PromptHeaderTest, ACountOfAsManyDigitsIsAsWide) {
  // Of a font whose digits are not alike.
  header.setFont(QFont(QStringLiteral("DejaVu Serif")));
  header.show(88, false);
  const int width = count().minimumWidth();
  for (const int waiting : {11, 17, 74, 99}) {
    header.show(waiting, false);
    EXPECT_EQ(count().minimumWidth(), width) << waiting;
    EXPECT_GE(width, count().sizeHint().width()) << waiting;
  }
}

TEST_F(PromptHeaderTest, TheWayOutIsAButton) {
  int closed = 0;
  header.onClose = [&] { ++closed; };
  QTest::mouseClick(header.closeButton(), Qt::LeftButton);
  EXPECT_EQ(closed, 1);
}

TEST_F(PromptHeaderTest, TheWayOutTellsItsKey) {
  const QAccessibleInterface& heard = *QAccessible::queryAccessibleInterface(header.closeButton());
  EXPECT_EQ(heard.text(QAccessible::Accelerator), QKeySequence(Qt::Key_Escape).toString(QKeySequence::NativeText));
  EXPECT_EQ(heard.text(QAccessible::Name), QStringLiteral("Dismiss Screenshot Popup"));
}

}  // namespace
}  // namespace quillmere
