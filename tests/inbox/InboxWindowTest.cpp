#include "inbox/InboxWindow.h"

#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListView>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>

#include "controls/Alert.h"
#include "fakes/ModelFixture.h"
#include "inbox/InboxDetail.h"
#include "inbox/MessageView.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

class InboxWindowTest : public testing::ModelFixture {
 protected:
  void open() {
    window = std::make_unique<InboxWindow>(*model, thumbnails);
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  }
  QListView& list() const { return *window->findChild<QListView*>(); }
  void select(int row) { list().setCurrentIndex(list().model()->index(row, 0)); }
  /// The title of the page, or the name of the screenshot that is shown.
  QString page() const {
    const QWidget* page = window->findChild<QStackedWidget*>()->currentWidget();
    if (dynamic_cast<const InboxDetail*>(page)) return QStringLiteral("one screenshot");
    return page->findChild<QLabel*>()->text();
  }
  bool shows(const QString& text) const {
    for (const auto* label : window->findChildren<QLabel*>()) {
      if (label->isVisible() && label->text() == text) return true;
    }
    return false;
  }

  ThumbnailLoader thumbnails{executor, [](const FileURL&) { return false; }};
  std::unique_ptr<InboxWindow> window;
};

TEST_F(InboxWindowTest, BeforeTheFirstFolderItAsksForOne) {
  launch();
  open();
  EXPECT_EQ(page(), QStringLiteral("Choose Your Screenshot Folder"));
  EXPECT_FALSE(list().isVisible()) << "there is nothing to list";
  chooser.answer = shots;
  QTest::mouseClick(window->findChild<QStackedWidget*>()->currentWidget()->findChild<QPushButton*>(), Qt::LeftButton);
  executor.drain();
  EXPECT_EQ(page(), QStringLiteral("No Screenshots Yet"));
  EXPECT_TRUE(list().isVisible());
}

TEST_F(InboxWindowTest, RecordsFromBeforeAreListedThoughTheFolderIsNotChosen) {
  storeRecords({storedItem(1, "1.png")});
  launch();
  open();
  EXPECT_EQ(page(), QStringLiteral("Choose Your Screenshot Folder"));
  EXPECT_TRUE(list().isVisible());
}

TEST_F(InboxWindowTest, TheOneThatIsSelectedIsShown) {
  launchWatching();
  const UUID first = arrive("1.png");
  const UUID second = arrive("2.png");
  open();
  EXPECT_EQ(page(), QStringLiteral("No Screenshot Selected"));
  select(1);
  EXPECT_EQ(page(), QStringLiteral("one screenshot"));
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{first});
  list().selectAll();
  EXPECT_EQ(*model->selectedItemIDs, (UUIDSet{first, second}));
  EXPECT_EQ(page(), QStringLiteral("No Screenshot Selected")) << "of two, neither";
}

TEST_F(InboxWindowTest, TheCountStandsUnderTheListWhileNothingIsSelected) {
  launchWatching();
  open();
  EXPECT_FALSE(shows(QStringLiteral("0 screenshots")));
  arrive("1.png");
  EXPECT_TRUE(shows(QStringLiteral("1 screenshot")));
  arrive("2.png");
  EXPECT_TRUE(shows(QStringLiteral("2 screenshots")));
  select(0);
  EXPECT_FALSE(shows(QStringLiteral("2 screenshots")));
}

TEST_F(InboxWindowTest, AnErrorIsShownOnceAfterWhatFailedIsOver) {
  launchWatching();
  open();
  int alerts = 0;
  model->show(ErrorScope::inbox, QStringLiteral("Couldn’t Move"), QStringLiteral("The disk is full."));
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QTimer::singleShot(0, [&] {
    auto* box = dynamic_cast<Alert*>(QApplication::activeModalWidget());
    ASSERT_TRUE(box);
    ++alerts;
    EXPECT_EQ(box->content().heading, QStringLiteral("Couldn’t Move"));
    EXPECT_EQ(box->content().message, QStringLiteral("The disk is full."));
    EXPECT_FALSE(*model->inboxError) << "told, it is over";
    box->accept();
  });
  ASSERT_TRUE(testing::runLoopUntil([&] { return alerts == 1; }));
  QCoreApplication::processEvents();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(InboxWindowTest, ClosingIsToldAndKeepsTheSelection) {
  launchWatching();
  const UUID id = arrive("1.png");
  open();
  select(0);
  int closed = 0;
  window->onClosed = [&] { ++closed; };
  window->close();
  EXPECT_EQ(closed, 1);
  window.reset();
  EXPECT_EQ(*model->selectedItemIDs, UUIDSet{id});
}

}  // namespace
}  // namespace quillmere
