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
  void show(InboxBanner::Offers offers) {
    banner.show(QStringLiteral("exclamationmark.triangle.fill"), QStringLiteral("The folder can’t be read."),
                QStringLiteral("Choose Folder…"), offers);
  }
  QPushButton& help() const { return *banner.findChildren<QPushButton*>().at(0); }
  QPushButton& action() const { return *banner.findChildren<QPushButton*>().at(1); }
  QPushButton& cross() const { return *banner.findChildren<QPushButton*>().at(2); }

  QWidget window;
  InboxBanner banner{&window};
};

TEST_F(InboxBannerTest, TellsItsMessageAndOffersItsAction) {
  banner.hide();
  show({});
  EXPECT_TRUE(banner.isVisibleTo(&window));
  EXPECT_EQ(banner.findChild<QLabel*>()->text(), QStringLiteral("The folder can’t be read."));
  int actions = 0;
  banner.onAction = [&] { ++actions; };
  EXPECT_EQ(action().text(), QStringLiteral("Choose Folder…"));
  QTest::mouseClick(&action(), Qt::LeftButton);
  EXPECT_EQ(actions, 1);
}

TEST_F(InboxBannerTest, OnlySomeCanBeWavedAway) {
  show({});
  EXPECT_FALSE(cross().isVisibleTo(&banner));
  show({.dismissal = true});
  EXPECT_TRUE(cross().isVisibleTo(&banner));
  EXPECT_EQ(cross().accessibleName(), QStringLiteral("Dismiss"));
  EXPECT_EQ(cross().toolTip(), QStringLiteral("Hide this notice"));
  int dismissals = 0;
  banner.onDismiss = [&] { ++dismissals; };
  QTest::mouseClick(&cross(), Qt::LeftButton);
  EXPECT_EQ(dismissals, 1);
}

TEST_F(InboxBannerTest, OnlySomeHaveAPageOfTheHelp) {
  show({});
  EXPECT_FALSE(help().isVisibleTo(&banner));
  show({.help = true});
  EXPECT_TRUE(help().isVisibleTo(&banner));
  EXPECT_EQ(help().accessibleName(), QStringLiteral("Help"));
  int openings = 0;
  banner.onHelp = [&] { ++openings; };
  QTest::mouseClick(&help(), Qt::LeftButton);
  EXPECT_EQ(openings, 1);
}

}  // namespace
}  // namespace quillmere
