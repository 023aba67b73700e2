#include "shell/QuillmereApp.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QPushButton>

#include "fakes/DecodedPictures.h"
#include "fakes/FakeTray.h"
#include "fakes/ModelFixture.h"
#include "inbox/InboxWindow.h"
#include "settings/SettingsWindow.h"

namespace quillmere {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class QuillmereAppTest : public testing::ModelFixture {
 protected:
  /// As main does, with a folder or without.
  void start(bool isLoginLaunch, bool hasFolder = true, const QString& action = {}) {
    app.reset();
    if (hasFolder) chooseFolderBefore(shots);
    makeModel();
    model->setHasSeenWelcome(!isWelcomeDue);
    inboxServices.thumbnails = &thumbnails;
    inboxServices.executor = &executor;
    inboxServices.defaults = defaults.get();
    app = std::make_unique<QuillmereApp>(*model, QuillmereApp::Services{inboxServices, systemEvents, updates, tray,
                                                                        [this] { return screenshotOptions; }});
    for (const AppWindow window : {AppWindow::about, AppWindow::welcome}) {
      app->makers[window] = [this, window] {
        opened.push_back(window);
        return std::make_unique<QWidget>();
      };
    }
    app->confirmQuit = [this](const Confirmations::QuitConcerns& concerns) {
      questions.push_back(concerns.waitingScreenshots);
      isToldOfSaving = concerns.isNotSaved;
      if (whileAsked) whileAsked();
      return confirms;
    };
    app->didFinishLaunching({isLoginLaunch, action});
    executor.drain();
  }
  template <typename Window>
  static QWidget* open() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (dynamic_cast<Window*>(window)) return window;
    }
    return nullptr;
  }
  /// Whether the program's loop ends of this.
  static bool quits(const std::function<void()>& work) {
    constexpr int kWentOn = 7;
    QObject turn;  // takes with it what is left for later
    const auto later = [&turn](const auto& step) { QMetaObject::invokeMethod(&turn, step, Qt::QueuedConnection); };
    later([&] {
      work();
      later([] { QCoreApplication::exit(kWentOn); });
    });
    return QCoreApplication::exec() != kWentOn;
  }

  bool isInboxShown() const { return app->isShown(AppWindow::inbox); }

  InboxServices inboxServices;
  SoftwareUpdateModel updates;
  testing::FakeTray tray;
  std::function<void()> screenshotOptions;
  bool isWelcomeDue = false;
  std::vector<AppWindow> opened;
  ThumbnailLoader thumbnails{executor, testing::decodedPictures(), [](const FileURL&) { return false; }};
  std::unique_ptr<QuillmereApp> app;
  bool isToldOfSaving = false;
  std::vector<int> questions;
  std::function<void()> whileAsked;
  bool confirms = false;
};

TEST_F(QuillmereAppTest, TheInboxOpensUnlessItStartsWithTheSession) {
  start(false);
  EXPECT_TRUE(isInboxShown());
  app.reset();
  start(true);
  EXPECT_FALSE(isInboxShown());
}

TEST_F(QuillmereAppTest, WithoutAFolderItOpensEvenThen) {
  start(true, false);
  EXPECT_TRUE(isInboxShown());
}

TEST_F(QuillmereAppTest, StartedForAWindowItOpensThatOne) {
  start(false, true, QStringLiteral("settings"));
  ASSERT_TRUE(open<SettingsWindow>());
  EXPECT_TRUE(open<SettingsWindow>()->isVisible());
  EXPECT_FALSE(isInboxShown());
  app.reset();
  start(true, true, QStringLiteral("inbox"));
  EXPECT_TRUE(isInboxShown());
}

TEST_F(QuillmereAppTest, StartedForAReviewItBeginsOne) {
  storeRecords({storedItem(1, "1.png")});
  start(false, true, QStringLiteral("review"));
  EXPECT_FALSE(isInboxShown());
  EXPECT_EQ(presenter.focuses, 1);
}

TEST_F(QuillmereAppTest, WithoutAFolderTheInboxOpensBesideWhatItIsStartedFor) {
  start(false, false, QStringLiteral("settings"));
  EXPECT_TRUE(isInboxShown());
  EXPECT_TRUE(open<SettingsWindow>());
}

TEST_F(QuillmereAppTest, WhatTheBusAsksForIsDone) {
  start(true);
  app->perform(QStringLiteral("inbox"));
  EXPECT_TRUE(isInboxShown());
  app->perform(QStringLiteral("settings"));
  ASSERT_TRUE(open<SettingsWindow>());
  EXPECT_TRUE(open<SettingsWindow>()->isVisible());
  arrive("1.png");
  app->perform(QStringLiteral("review"));
  EXPECT_EQ(presenter.focuses, 1);
  app->perform(QStringLiteral("nobody knows this"));
  app->perform(QStringLiteral("quit"));
  EXPECT_EQ(questions, std::vector<int>{1});
}

TEST_F(QuillmereAppTest, EachWindowIsOpenedByItsName) {
  start(true);
  app->perform(QStringLiteral("about"));
  app->perform(QStringLiteral("welcome"));
  app->perform(QStringLiteral("about"));
  EXPECT_THAT(opened, ElementsAre(AppWindow::about, AppWindow::welcome)) << "the one that is open comes forward";
  EXPECT_TRUE(app->isShown(AppWindow::about));
  app->perform(QStringLiteral("close-window"));
  EXPECT_FALSE(app->isShown(AppWindow::about));
  EXPECT_TRUE(app->isShown(AppWindow::welcome));
}

TEST_F(QuillmereAppTest, TheWelcomeIsShownOnceAndCountsAsSeenWhenItOpens) {
  isWelcomeDue = true;
  start(false, false);
  EXPECT_THAT(opened, ElementsAre(AppWindow::welcome));
  EXPECT_TRUE(isInboxShown()) << "behind it";
  EXPECT_TRUE(*model->settings().hasSeenWelcome);
  opened.clear();
  isWelcomeDue = false;
  start(false, false);
  EXPECT_THAT(opened, IsEmpty());
}

TEST_F(QuillmereAppTest, AStartWithTheSessionKeepsTheWelcomeForLater) {
  isWelcomeDue = true;
  start(true);
  EXPECT_THAT(opened, IsEmpty());
  EXPECT_FALSE(app->windows().isAnyShown());
  EXPECT_FALSE(*model->settings().hasSeenWelcome);
  start(false);
  EXPECT_THAT(opened, ElementsAre(AppWindow::welcome)) << "now the person opened it";
}

TEST_F(QuillmereAppTest, AStartWithTheSessionWithoutAFolderIsNoSilentOne) {
  isWelcomeDue = true;
  start(true, false);
  EXPECT_TRUE(isInboxShown());
  EXPECT_THAT(opened, ElementsAre(AppWindow::welcome));
}

TEST_F(QuillmereAppTest, WhatItIsStartedForIsInFrontOfTheWelcome) {
  isWelcomeDue = true;
  start(false, true, QStringLiteral("settings"));
  EXPECT_THAT(opened, ElementsAre(AppWindow::welcome));
  EXPECT_EQ(app->windows().front(), open<SettingsWindow>());
}

TEST_F(QuillmereAppTest, OpenedAgainItBringsTheWindowThatIsShown) {
  start(true);
  app->open(AppWindow::settings);
  app->reopen();
  EXPECT_FALSE(isInboxShown());
  open<SettingsWindow>()->showMinimized();
  app->reopen();
  EXPECT_FALSE(isInboxShown()) << "a minimized one counts as shown";
  EXPECT_FALSE(open<SettingsWindow>()->isMinimized());
  open<SettingsWindow>()->close();
  app->reopen();
  EXPECT_TRUE(isInboxShown());
}

TEST_F(QuillmereAppTest, TheProgramIsRegularWhileOneOfItsWindowsIsOpen) {
  start(true);
  EXPECT_EQ(app->windows().policy(), ActivationPolicy::accessory);
  app->open(AppWindow::inbox);
  app->open(AppWindow::settings);
  open<InboxWindow>()->close();
  EXPECT_EQ(app->windows().policy(), ActivationPolicy::regular) << "Settings is still open";
  open<SettingsWindow>()->close();
  EXPECT_EQ(app->windows().policy(), ActivationPolicy::accessory);
}

TEST_F(QuillmereAppTest, ItSaysWhetherThereIsATray) {
  start(true);
  EXPECT_FALSE(app->hasTray());
  tray.set(true);
  EXPECT_TRUE(app->hasTray());
}

TEST_F(QuillmereAppTest, TheInboxesMenusFollowWhetherUpdatesCanBeChecked) {
  start(false);
  const auto check = [] {
    for (QAction* action : open<InboxWindow>()->findChildren<QAction*>()) {
      if (action->text() == QStringLiteral("Check for Updates…")) return action;
    }
    return static_cast<QAction*>(nullptr);
  };
  ASSERT_TRUE(check());
  EXPECT_FALSE(check()->isEnabled());
  updates.setCanCheckForUpdates(true);
  EXPECT_TRUE(check()->isEnabled());
}

TEST_F(QuillmereAppTest, TheScreenshotOptionsAreThoseThatThereAreWhenTheSettingsAreOpened) {
  const auto options = [] {
    for (auto* button : open<SettingsWindow>()->findChildren<QPushButton*>()) {
      if (button->text() == QStringLiteral("Open Screenshot Tool")) return button;
    }
    return static_cast<QPushButton*>(nullptr);
  };
  start(true);
  app->open(AppWindow::settings);
  EXPECT_FALSE(options());
  open<SettingsWindow>()->close();
  int clicks = 0;
  screenshotOptions = [&] { ++clicks; };  // a tool was installed since
  app->open(AppWindow::settings);
  ASSERT_TRUE(options());
  options()->click();
  EXPECT_EQ(clicks, 1);
}

TEST_F(QuillmereAppTest, AScreenThatIsLockedEndsTheRecordingOfAShortcut) {
  start(true);
  defaults->set(QStringLiteral("quillmere.settings-pane"), QStringLiteral("keyboard"));
  app->open(AppWindow::settings);
  for (auto* button : open<SettingsWindow>()->findChildren<QPushButton*>()) {
    if (button->accessibleName() == QStringLiteral("Review screenshot")) button->click();
  }
  ASSERT_TRUE(hotKeys.isSuspended);
  systemEvents.sessionDidResign();
  EXPECT_FALSE(hotKeys.isSuspended);
}

TEST_F(QuillmereAppTest, AMinimizedInboxComesBack) {
  start(false);
  open<InboxWindow>()->showMinimized();
  app->reopen();
  EXPECT_FALSE(open<InboxWindow>()->isMinimized());
  EXPECT_TRUE(isInboxShown());
}

TEST_F(QuillmereAppTest, WhatIsOpenOverTheInboxGetsTheKeyboardWithIt) {
  start(false);
  QDialog sheet(open<InboxWindow>());
  QDialog question(&sheet);
  sheet.open();
  question.open();
  open<InboxWindow>()->activateWindow();
  app->reopen();
  QCoreApplication::processEvents();
  EXPECT_TRUE(question.isActiveWindow());
  question.close();
  open<InboxWindow>()->activateWindow();
  app->reopen();
  QCoreApplication::processEvents();
  EXPECT_TRUE(sheet.isActiveWindow());
}

TEST_F(QuillmereAppTest, AClosedInboxIsLetGoOfLaterAndTheProgramGoesOn) {
  start(false);
  EXPECT_FALSE(QApplication::quitOnLastWindowClosed());
  open<InboxWindow>()->close();
  EXPECT_FALSE(isInboxShown());
  EXPECT_TRUE(open<InboxWindow>()) << "it is still closing";
  QCoreApplication::processEvents();
  EXPECT_FALSE(open<InboxWindow>());
  app->reopen();
  EXPECT_TRUE(isInboxShown());
}

TEST_F(QuillmereAppTest, AnInboxThatIsClosedUnderItsMenuStaysUntilTheMenuIsOver) {
  start(false);
  const QWidget* closed = nullptr;
  quits([&] {
    // As a menu or a drag: it runs the events, and returns into the window.
    QEventLoop menu;
    QTimer::singleShot(0, &menu, [&] {
      open<InboxWindow>()->close();
      QTimer::singleShot(0, &menu, &QEventLoop::quit);
    });
    menu.exec();
    closed = open<InboxWindow>();
    ASSERT_TRUE(closed) << "what opened the menu is still in it";
    EXPECT_FALSE(isInboxShown());
  });
  bool isGone = false;
  QObject::connect(closed, &QObject::destroyed, closed, [&] { isGone = true; });
  app->reopen();
  EXPECT_TRUE(isInboxShown());
  EXPECT_TRUE(isGone) << "a new window, without what was sought in the one before";
}

TEST_F(QuillmereAppTest, QuittingIsAskedAboutOnlyWhileScreenshotsWait) {
  start(true);
  EXPECT_TRUE(quits([this] { app->quit(); }));
  EXPECT_TRUE(questions.empty());
  arrive("1.png");
  arrive("2.png");
  EXPECT_FALSE(quits([this] { app->quit(); }));
  confirms = true;
  EXPECT_TRUE(quits([this] { app->quit(); }));
  EXPECT_EQ(questions, (std::vector<int>{2, 2}));
}

TEST_F(QuillmereAppTest, TheQuestionHasAPlaceOfItsOwnWhileNoWindowIsShown) {
  start(true);
  arrive("1.png");
  whileAsked = [this] { EXPECT_EQ(app->windows().policy(), ActivationPolicy::regular); };
  app->quit();
  EXPECT_EQ(app->windows().policy(), ActivationPolicy::accessory);
  app->open(AppWindow::inbox);
  app->quit();
  EXPECT_EQ(app->windows().policy(), ActivationPolicy::regular) << "the Inbox is open";
  EXPECT_EQ(questions.size(), 2u);
}

TEST_F(QuillmereAppTest, AnUpdateThatIsBeingInstalledEndsItWithoutAQuestion) {
  start(true);
  arrive("1.png");
  updates.setInstallingUpdate(true);
  EXPECT_TRUE(quits([this] { app->quit(); }));
  EXPECT_THAT(questions, IsEmpty());
}

TEST_F(QuillmereAppTest, AnUpdateIsAskedAboutAllTheSameWhileTheListCannotBeSaved) {
  start(true);
  arrive("1.png");
  updates.setInstallingUpdate(true);
  makeSavingFail();
  model->saveNow();
  EXPECT_FALSE(quits([this] { app->quit(); }));
  EXPECT_THAT(questions, ElementsAre(0));
  EXPECT_TRUE(isToldOfSaving);
  makeSavingWork();
}

TEST_F(QuillmereAppTest, QuittingIsAskedAboutWhileTheListCannotBeSaved) {
  start(true);
  const UUID id = arrivePermanent("1.png");
  makeSavingFail();
  model->saveNow();
  EXPECT_FALSE(quits([this] { app->quit(); }));
  EXPECT_TRUE(isToldOfSaving);
  makeSavingWork();
  EXPECT_TRUE(quits([this] { app->quit(); }));
  EXPECT_EQ(questions.size(), 1u) << "there was room again";
  EXPECT_TRUE(savedRecord(id));
}

TEST_F(QuillmereAppTest, TheQuestionIsAskedOnceAtATime) {
  start(true);
  arrive("1.png");
  whileAsked = [this] { app->quit(); };
  app->quit();
  EXPECT_EQ(questions.size(), 1u);
}

TEST_F(QuillmereAppTest, ASessionThatEndsAsksNothing) {
  start(true);
  arrive("1.png");
  EXPECT_TRUE(quits([this] { app->quitWithoutAsking(); }));
  EXPECT_TRUE(questions.empty());
}

TEST_F(QuillmereAppTest, TheSessionsWordToEndIsObeyedWhateverIsOpen) {
  start(false);
  arrive("1.png");
  class Stays final : public QWidget {
    void closeEvent(QCloseEvent* event) override { event->ignore(); }
  } window;
  window.show();
  EXPECT_TRUE(quits([] {
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
  }));
  EXPECT_THAT(questions, IsEmpty());
}

TEST_F(QuillmereAppTest, AskedByTheSessionItSavesWhatIsNotSaved) {
  start(true);
  arrive("1.png");
  model->scheduleSave();
  ASSERT_TRUE(model->hasPendingSave());
  app->save();
  EXPECT_FALSE(model->hasPendingSave());
  EXPECT_THAT(questions, IsEmpty());
}

TEST_F(QuillmereAppTest, TheSessionWaitsForACropThatIsBeingWritten) {
  start(true);
  arrive("1.png");
  ScreenshotItem source;
  source.url = shots.appending("1.png");
  executor.holdBackground();
  model->saveAsNew(source, QImage(20, 20, QImage::Format_RGB32), QRectF(0, 0, 10, 10)).detach();
  QTimer::singleShot(0, qApp, [this] { executor.runHeldBackground(); });
  EXPECT_FALSE(quits([this] {
    app->commitToSession();
    EXPECT_EQ(model->items().size(), 2u);
  })) << "it may be called off";
  EXPECT_FALSE(model->hasUnsavedWork());
  EXPECT_THAT(questions, IsEmpty());
}

TEST_F(QuillmereAppTest, TheSessionDoesNotWaitForeverForACrop) {
  start(true);
  ScreenshotItem source;
  source.url = shots.appending("1.png");
  executor.holdBackground();
  model->saveAsNew(source, QImage(20, 20, QImage::Format_RGB32), QRectF(0, 0, 10, 10)).detach();
  model->scheduleSave();
  app->longestCommit = {};
  EXPECT_FALSE(quits([this] { app->commitToSession(); }));
  EXPECT_TRUE(model->isWritingFiles());
  EXPECT_FALSE(model->hasPendingSave()) << "what can be saved is";
}

TEST_F(QuillmereAppTest, QuittingTellsWhetherItWentThrough) {
  start(true);
  arrive("1.png");
  bool isAskedAgain = true;
  whileAsked = [&] { isAskedAgain = app->quit(); };
  EXPECT_FALSE(app->quit());
  EXPECT_FALSE(isAskedAgain) << "the first question is still open";
  whileAsked = nullptr;
  confirms = true;
  EXPECT_TRUE(quits([this] { EXPECT_TRUE(app->quit()); }));
}

TEST_F(QuillmereAppTest, ACropThatIsBeingWrittenComesFirst) {
  start(true);
  ScreenshotItem source;
  source.url = shots.appending("1.png");
  executor.holdBackground();
  model->saveAsNew(source, QImage(20, 20, QImage::Format_RGB32), QRectF(0, 0, 10, 10)).detach();
  EXPECT_FALSE(quits([this] { app->quit(); }));
  EXPECT_TRUE(quits([this] { executor.runHeldBackground(); }));
  EXPECT_EQ(model->items().size(), 1u);
}

TEST_F(QuillmereAppTest, WhoAsksTwiceDoesNotWaitForIt) {
  start(true);
  ScreenshotItem source;
  source.url = shots.appending("1.png");
  executor.holdBackground();
  model->saveAsNew(source, QImage(20, 20, QImage::Format_RGB32), QRectF(0, 0, 10, 10)).detach();
  EXPECT_FALSE(quits([this] { app->quit(); }));
  EXPECT_TRUE(quits([this] { app->quit(); }));
}

TEST_F(QuillmereAppTest, WhatIsNotSavedYetIsSavedLast) {
  start(true);
  wasSaved();
  app->willTerminate();
  EXPECT_FALSE(wasSaved()) << "nothing has changed";
  model->scheduleSave();
  app->willTerminate();
  EXPECT_TRUE(wasSaved());
  EXPECT_FALSE(model->hasPendingSave());
}

// --- A disk that takes its time ---

TEST_F(QuillmereAppTest, QuittingWaitsForTheDiskWhileTheProgramGoesOn) {
  start(true);
  disk.holdBackground();
  model->saveNow();
  int turns = 0;
  QTimer painting;
  QObject::connect(&painting, &QTimer::timeout, [&] {
    if (++turns == 3) disk.runHeldBackground();
  });
  painting.start(0);
  EXPECT_TRUE(quits([this] { EXPECT_TRUE(app->quit()); }));
  EXPECT_GE(turns, 3);
  EXPECT_FALSE(model->hasPendingSave());
  EXPECT_THAT(questions, IsEmpty()) << "all is saved, and no screenshot waits";
}

TEST_F(QuillmereAppTest, WhatTheRunningSaveDoesNotHaveIsSavedToo) {
  start(true);
  disk.holdBackground();
  model->saveNow();
  const UUID id = arriveFromElsewhere("1.png");
  QTimer::singleShot(0, qApp, [this] { disk.runHeldBackground(); });
  app->willTerminate();
  EXPECT_TRUE(savedRecord(id));
}

TEST_F(QuillmereAppTest, WhoQuitsWithAFrozenDiskIsAskedWhetherToWaitNoLonger) {
  start(true);
  disk.holdBackground();
  model->saveNow();
  app->longestSave = std::chrono::milliseconds(1);
  EXPECT_FALSE(quits([this] { EXPECT_FALSE(app->quit()); }));
  EXPECT_THAT(questions, ElementsAre(0));
  EXPECT_TRUE(isToldOfSaving);
}

TEST_F(QuillmereAppTest, TheSessionWaitsForTheDisk) {
  start(true);
  disk.holdBackground();
  const UUID id = arriveFromElsewhere("1.png");
  QTimer::singleShot(0, qApp, [this] { disk.runHeldBackground(); });
  EXPECT_FALSE(quits([this] { app->commitToSession(); })) << "it may be called off";
  EXPECT_TRUE(savedRecord(id));
}

TEST_F(QuillmereAppTest, ATerminatedProgramSavesItsLastChanges) {
  start(true);
  disk.holdBackground();
  const UUID id = arriveFromElsewhere("1.png");
  EXPECT_TRUE(quits([this] { app->quitWithoutAsking(); }));
  QTimer::singleShot(0, qApp, [this] { disk.runHeldBackground(); });
  app->willTerminate();
  EXPECT_TRUE(savedRecord(id));
}

TEST_F(QuillmereAppTest, AWindowThatComesToTheFrontIsToldToEveryone) {
  int told = 0;
  const Connection listening = systemEvents.didBecomeActive.connect([&] { ++told; });
  start(true);
  Q_EMIT qApp->applicationStateChanged(Qt::ApplicationInactive);
  EXPECT_EQ(told, 0);
  Q_EMIT qApp->applicationStateChanged(Qt::ApplicationActive);
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace quillmere
