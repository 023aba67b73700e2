#include "inbox/InboxBanner.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

class InboxBannerTest : public ::testing::Test {
 protected:
  void show(bool isDismissible) {
    banner.show(QStringLiteral("exclamationmark.triangle.fill"), QStringLiteral("The folder can’t be read."),
                QStringLiteral("Choose Folder…"), isDismissible);
  }
  QPushButton& action() const { return *banner.findChildren<QPushButton*>().at(0); }
  QPushButton& cross() const { return *banner.findChildren<QPushButton*>().at(1); }

  QWidget window;
  InboxBanner banner{&window};
};

TEST_F(InboxBannerTest, TellsItsMessageAndOffersItsAction) {
  banner.hide();
  show(false);
  EXPECT_TRUE(banner.isVisibleTo(&window));
  EXPECT_EQ(banner.findChild<QLabel*>()->text(), QStringLiteral("The folder can’t be read."));
  int actions = 0;
  banner.onAction = [&] { ++actions; };
  EXPECT_EQ(action().text(), QStringLiteral("Choose Folder…"));
  QTest::mouseClick(&action(), Qt::LeftButton);
  EXPECT_EQ(actions, 1);
}

TEST_F(InboxBannerTest, OnlySomeCanBeWavedAway) {
  show(false);
  EXPECT_FALSE(cross().isVisibleTo(&banner));
  show(true);
  EXPECT_TRUE(cross().isVisibleTo(&banner));
  EXPECT_EQ(cross().accessibleName(), QStringLiteral("Dismiss"));
  EXPECT_EQ(cross().toolTip(), QStringLiteral("Hide this notice"));
  int dismissals = 0;
  banner.onDismiss = [&] { ++dismissals; };
  QTest::mouseClick(&cross(), Qt::LeftButton);
  EXPECT_EQ(dismissals, 1);
}

}  // namespace
}  // namespace quillmere
