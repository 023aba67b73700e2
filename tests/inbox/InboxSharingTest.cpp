#include "inbox/InboxSharing.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>

#include "inbox/InboxFixture.h"

namespace quillmere {
namespace {

class InboxSharingTest : public testing::InboxFixture {};

TEST_F(InboxSharingTest, SeveralGoToTheProgramTogether) {
  const UUID one = arrive("1.png");
  const UUID two = arrive("2.png");
  InboxSharing sharer(*presentation);
  sharer.share({one, two}, QStringLiteral("email"));
  EXPECT_EQ(sharing.sent, (std::vector<FileURL>{item(one).url, item(two).url}));
  EXPECT_EQ(sharing.target, QStringLiteral("email"));
  EXPECT_EQ(errorTitle(), QString());
}

TEST_F(InboxSharingTest, RecordsThatAreGoneAreLeftOutAndNothingIsSentOfNone) {
  const UUID one = arrive("1.png");
  const UUID two = arrive("2.png");
  InboxSharing sharer(*presentation);
  model->removeRecords({one});
  sharer.share({one, two}, QStringLiteral("email"));
  EXPECT_EQ(sharing.sent, std::vector<FileURL>{item(two).url});
  sharing.target.clear();
  sharer.share({one}, QStringLiteral("email"));
  EXPECT_EQ(sharing.target, QString());
}

TEST_F(InboxSharingTest, TheMenuIsOfTheSelectionAndSendsWhatItWasOpenedFor) {
  const UUID one = arrive("1.png");
  model->setSelectedItemIDs({one});
  InboxSharing sharer(*presentation);
  QPushButton anchor;
  anchor.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&anchor));
  QMetaObject::invokeMethod(
      &anchor,
      [&] {
        auto* menu = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu);
        model->setSelectedItemIDs({});
        menu->setActiveAction(menu->actions().back());
        QTest::keyClick(menu, Qt::Key_Return);
      },
      Qt::QueuedConnection);
  sharer.openMenu(anchor);
  EXPECT_EQ(sharing.target, QStringLiteral("paint"));
  EXPECT_EQ(sharing.sent, std::vector<FileURL>{item(one).url});
}

TEST_F(InboxSharingTest, WithNothingSelectedNoMenuOpens) {
  arrive("1.png");
  InboxSharing sharer(*presentation);
  QPushButton anchor;
  sharer.openMenu(anchor);
  EXPECT_TRUE(sharing.askedTypes.isEmpty());
}

}  // namespace
}  // namespace quillmere
