#include "settings/SettingsWindow.h"

#include <QtCore/QTimer>
#include <QtGui/QScreen>
#include <QtWidgets/QAbstractSpinBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>

#include "controls/Alert.h"
#include "settings/SettingsFixture.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

class SettingsWindowTest : public testing::SettingsFixture {
 protected:
  SettingsWindowTest() { open(); }
  void open() {
    SettingsServices services;
    services.defaults = defaults.get();
    shown = std::make_unique<SettingsWindow>(*model, std::move(services));
    shown->show();
    shown->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(shown.get()));
  }
  void openAtOnce() {
    shown.reset();
    shown = std::make_unique<SettingsWindow>(*model, SettingsServices());
    shown->show();
  }
  void fail() { model->show(ErrorScope::settings, QStringLiteral("Title"), QStringLiteral("Message")); }
  void expectAlert() {
    bool isSeen = false;
    QTimer::singleShot(0, [&] {
      auto* alert = dynamic_cast<Alert*>(QApplication::activeModalWidget());
      ASSERT_TRUE(alert);
      EXPECT_EQ(alert->content().heading, QStringLiteral("Title"));
      isSeen = true;
      alert->accept();
    });
    ASSERT_TRUE(testing::runLoopUntil([&] { return isSeen; }));
    EXPECT_FALSE(*model->settingsError);
  }
  QTabWidget& tabs() const { return *shown->findChild<QTabWidget*>(); }
  QString pane() const { return tabs().tabText(tabs().currentIndex()); }
};

TEST_F(SettingsWindowTest, HasItsPanesInThisOrder) {
  QStringList panes;
  for (int i = 0; i < tabs().count(); ++i) panes += tabs().tabText(i);
  EXPECT_EQ(panes.join(QLatin1Char('|')), QStringLiteral("General|Screenshots|Popup|Keyboard|Intelligence"));
}

TEST_F(SettingsWindowTest, OpensAtTheLastPane) {
  EXPECT_EQ(pane(), QStringLiteral("General"));
  tabs().setCurrentIndex(3);
  open();
  EXPECT_EQ(pane(), QStringLiteral("Keyboard"));
  defaults->set(QStringLiteral("quillmere.settings-pane"), QStringLiteral("no such pane"));
  open();
  EXPECT_EQ(pane(), QStringLiteral("General"));
}

TEST_F(SettingsWindowTest, IsOneSizeInWhichEveryPaneHasRoomForItsTexts) {
  const QSize size = shown->size();
  for (int i = 0; i < tabs().count(); ++i) {
    tabs().setCurrentIndex(i);
    QCoreApplication::processEvents();
    EXPECT_EQ(shown->size(), size);
    const auto* page = qobject_cast<QScrollArea*>(tabs().widget(i));
    EXPECT_EQ(page->horizontalScrollBar()->maximum(), 0);
    EXPECT_EQ(page->verticalScrollBar()->maximum(), 0);
    for (auto* label : page->findChildren<QLabel*>()) {
      if (!label->isVisible() || label->text().isEmpty()) continue;
      const int needed = label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
      EXPECT_GE(label->height(), needed) << label->text().toStdString();
    }
  }
}

TEST_F(SettingsWindowTest, AFolderOfALongNameMakesItNoWider) {
  const int before = shown->width();
  const FileURL folder = home.file(std::string(200, 'x'));
  std::filesystem::create_directories(folder.path());
  location.value = folder.displayPath();
  model->adoptWatchFolder(folder, ErrorScope::settings);
  model->refreshScreenshotLocation();
  executor.drain();
  location.value = shots.displayPath();
  model->refreshScreenshotLocation();
  executor.drain();
  EXPECT_TRUE(find<QLabel>(folder.displayName()).toolTip().contains(folder.displayPath()));
  EXPECT_EQ(shown->width(), before);
}

TEST_F(SettingsWindowTest, IsNoLargerThanTheScreenAndScrollsThere) {
  const QSize available = shown->screen()->availableGeometry().size();
  QFont large = QApplication::font();
  const QFont before = large;
  large.setPointSize(20);
  QApplication::setFont(large);
  open();
  EXPECT_LE(shown->height(), available.height());
  EXPECT_GE(shown->width(), tabs().tabBar()->sizeHint().width()) << "every pane has its tab in sight";
  int scrolling = 0;
  for (auto* page : shown->findChildren<QScrollArea*>()) {
    tabs().setCurrentWidget(page);
    QCoreApplication::processEvents();
    if (page->verticalScrollBar()->maximum() > 0) ++scrolling;
  }
  EXPECT_GT(scrolling, 0);
  QApplication::setFont(before);
}

TEST_F(SettingsWindowTest, AControlThatGetsTheKeyboardIsScrolledTo) {
  tabs().setCurrentIndex(1);
  shown->setFixedHeight(260);
  QCoreApplication::processEvents();
  auto* page = qobject_cast<QScrollArea*>(tabs().currentWidget());
  QCheckBox& last = box("Delete Temporary screenshots when their time is up");
  ASSERT_FALSE(page->viewport()->rect().intersects(QRect(last.mapTo(page->viewport(), QPoint()), last.size())));
  for (int i = 0; i < 40 && !last.hasFocus(); ++i) QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  ASSERT_TRUE(last.hasFocus());
  EXPECT_TRUE(page->viewport()->rect().contains(QRect(last.mapTo(page->viewport(), QPoint()), last.size())));
}

TEST_F(SettingsWindowTest, EveryControlIsReachedByTab) {
  for (int i = 0; i < tabs().count(); ++i) {
    tabs().setCurrentIndex(i);
    tabs().tabBar()->setFocus();
    std::set<QWidget*> reached;
    for (int press = 0; press < 40; ++press) {
      reached.insert(QApplication::focusWidget());
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    for (auto* control : tabs().widget(i)->findChildren<QWidget*>()) {
      const bool isControl = qobject_cast<QAbstractButton*>(control) || qobject_cast<QAbstractSpinBox*>(control) ||
                             (qobject_cast<QLineEdit*>(control) && control->focusProxy() == nullptr &&
                              !qobject_cast<QAbstractSpinBox*>(control->parentWidget()));
      if (!isControl || !control->isVisible() || !control->isEnabled()) continue;
      EXPECT_TRUE(reached.contains(control)) << control->accessibleName().toStdString();
    }
  }
}

TEST_F(SettingsWindowTest, KeysTurnThePanesAndCloseTheWindow) {
  tabs().tabBar()->setFocus();
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_EQ(pane(), QStringLiteral("Screenshots"));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(pane(), QStringLiteral("General"));
  QTest::keyClick(shown.get(), Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(shown->isVisible());
  shown->show();
  QTest::keyClick(shown.get(), Qt::Key_Escape);
  EXPECT_FALSE(shown->isVisible());
}

TEST_F(SettingsWindowTest, AnotherPaneEndsARecordingOfAShortcut) {
  tabs().setCurrentIndex(3);
  button("Review screenshot").click();
  ASSERT_TRUE(hotKeys.isSuspended);
  tabs().setCurrentIndex(2);
  EXPECT_FALSE(hotKeys.isSuspended);
}

TEST_F(SettingsWindowTest, TheLoginItemIsAskedForWheneverItIsSeenAgain) {
  loginItems.current = LoginItemStatus::enabled;
  EXPECT_FALSE(box("Open Quillmere at login").isChecked());
  QEvent back(QEvent::WindowActivate);
  QCoreApplication::sendEvent(shown.get(), &back);
  EXPECT_TRUE(box("Open Quillmere at login").isChecked());
  loginItems.current = LoginItemStatus::notRegistered;
  tabs().setCurrentIndex(1);
  tabs().setCurrentIndex(0);
  EXPECT_FALSE(box("Open Quillmere at login").isChecked());
}

TEST_F(SettingsWindowTest, FollowsTheModelWhileItIsOpen) {
  model->setMenuBarEnabled(false);
  EXPECT_FALSE(box("Show Quillmere in the system tray").isChecked());
  shown->hide();
  model->setMenuBarEnabled(true);
  shown->show();
  EXPECT_TRUE(box("Show Quillmere in the system tray").isChecked());
}

TEST_F(SettingsWindowTest, AnErrorIsShownOnceAfterWhatFailedIsOver) {
  fail();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  expectAlert();
}

TEST_F(SettingsWindowTest, AnErrorThatNoWindowCouldShowIsShownByTheNext) {
  shown.reset();
  fail();
  openAtOnce();
  expectAlert();
  fail();
  openAtOnce();  // the one before goes without a turn
  expectAlert();
}

}  // namespace
}  // namespace quillmere
