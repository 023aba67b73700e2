#include "popup/CapturePromptPanelController.h"

#include <qpa/qwindowsysteminterface.h>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>

#include "fakes/DecodedPictures.h"
#include "fakes/ModelFixture.h"
#include "popup/CountdownLine.h"
#include "popup/FakeSharing.h"
#include "popup/LivePanelScreens.h"

namespace quillmere {
namespace {

class FakeScreens final : public PanelScreenProviding {
 public:
  std::vector<PanelScreen> screens() const override {
    ++looks;
    return all;
  }
  std::optional<PanelScreen> mainScreen() const override { return all.empty() ? std::nullopt : std::optional(all[0]); }
  QPointF mouseLocation() const override { return mouse; }
  std::vector<PanelScreen> all;
  QPointF mouse{-10000, -10000};
  mutable int looks = 0;
};

/// A window system that gives the keyboard to whom it is asked for; other applications' windows are numbers alone.
class FakeWindowSystem final : public PanelWindowSystem {
 public:
  void prepare(QWindow& window) override {
    calls.push_back("prepare");
    refusesFocusWhenShown = window.flags().testFlag(Qt::WindowDoesNotAcceptFocus);
  }
  void finish(QWindow&) override { calls.push_back("finish"); }
  void setClickableArea(QWindow&, const QRect& area) override { clickable = area; }
  bool isCompositing() const override { return true; }
  quintptr activeWindow() const override { return active; }
  void activate(quintptr window) override {
    activated.push_back(window);
    give(window);
  }
  /// Gives one of this program's windows the keyboard, or with another number takes it away.
  void give(quintptr number) {
    active = number;
    QWindow* ours = nullptr;
    for (QWindow* window : QGuiApplication::allWindows()) {
      if (window->handle() && window->winId() == number) ours = window;
    }
    QWindowSystemInterface::handleWindowActivated<QWindowSystemInterface::SynchronousDelivery>(ours);
    QCoreApplication::processEvents();
  }

  quintptr active = 0;
  std::vector<quintptr> activated;
  std::vector<std::string> calls;
  std::optional<QRect> clickable;
  bool refusesFocusWhenShown = false;
};

/// A tool that covers the screen as long as the test says.
class FakeCaptureSigns final : public CaptureSigns {
 public:
  bool isChoosing() const override { return chooses; }
  bool chooses = false;
};

constexpr quintptr kEditor = 4711;

class CapturePromptPanelControllerTest : public testing::ModelFixture {
 protected:
  CapturePromptPanelControllerTest() {
    screens.all = {{QRectF(0, 0, 800, 800), QRectF(0, 20, 800, 760)},
                   {QRectF(800, 0, 900, 900), QRectF(800, 0, 900, 880)}};
    windowSystem.active = kEditor;
    CapturePromptPanelController::Services services;
    services.executor = &executor;
    services.thumbnails = &thumbnails;
    services.sharing = &sharing;
    services.screens = &screens;
    services.windowSystem = &windowSystem;
    services.captureSigns = {&signs};
    services.captureRect = [this](const FileURL&) { return captureRect; };
    popup = std::make_unique<CapturePromptPanelController>(std::move(services));
    chooseFolderBefore(shots);
    defaults = std::make_unique<UserDefaults>(settingsFile.displayPath());
    AppModelDependencies world = dependencies();
    world.promptPresenter = popup.get();
    model = std::make_unique<AppModel>(std::move(world));
    model->start();
    executor.drain();
  }
  ~CapturePromptPanelControllerTest() override { popup.reset(); }

  void savePicture(const char* name, const QSize& size) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::white);
    EXPECT_TRUE(picture.save(shots.appending(name).displayPath()));
  }
  UUID arrivePicture(const char* name, const QSize& size) {
    savePicture(name, size);
    monitor.onScreenshot(shots.appending(name));
    settle();
    return model->items()[0].id;
  }
  UUID show() { return arrivePicture("1.png", QSize(800, 400)); }
  /// The test platform gives each new window the keyboard; a popup must not have it.
  void settle() {
    executor.drain();
    QCoreApplication::processEvents();
    windowSystem.give(kEditor);
    executor.drain();
  }
  bool isVisible() const { return popup->panel() && popup->panel()->isVisible(); }
  QLineEdit* field() const { return popup->panel()->findChild<QLineEdit*>(); }
  /// The window's place, in the screens' coordinates.
  QRectF frame() const {
    const QRect frame = popup->panel()->geometry();
    const int height = QGuiApplication::primaryScreen()->geometry().height();
    return QRectF(frame.x(), height - frame.y() - frame.height(), frame.width(), frame.height());
  }
  /// On which screen the popup stands.
  size_t screenOfPopup() const { return screens.all[0].frame.contains(frame().center()) ? 0 : 1; }

  FakeScreens screens;
  FakeWindowSystem windowSystem;
  FakeCaptureSigns signs;
  std::optional<QRectF> captureRect;
  FakeSharing sharing;
  ThumbnailLoader thumbnails{executor, testing::decodedPictures(),
                             [this](const FileURL& url) { return dataless.contains(url.path()); }};
  std::unique_ptr<CapturePromptPanelController> popup;
};

// --- Present and hide ---

TEST_F(CapturePromptPanelControllerTest, CardAndPictureAreMadeAheadForOneThatIsExpected) {
  savePicture("1.png", QSize(800, 400));
  popup->expect(shots.appending("1.png"), *model);
  executor.drain();
  EXPECT_FALSE(isVisible());
  ASSERT_TRUE(popup->panel());
  const int64_t cached = thumbnails.cachedBytes();
  EXPECT_GT(cached, 0);
  monitor.onScreenshot(shots.appending("1.png"));
  settle();
  EXPECT_TRUE(isVisible());
  EXPECT_EQ(thumbnails.cachedBytes(), cached) << "it is the picture that the card shows";
  popup->expect(shots.appending("2.png"), *model);
  EXPECT_TRUE(isVisible());
}

TEST_F(CapturePromptPanelControllerTest, NoPictureIsMadeAheadThatIsNotShown) {
  model->setShowPopupThumbnail(false);
  savePicture("1.png", QSize(800, 400));
  popup->expect(shots.appending("1.png"), *model);
  executor.drain();
  EXPECT_EQ(thumbnails.cachedBytes(), 0);
}

TEST_F(CapturePromptPanelControllerTest, NothingIsMadeBeforeTheFirstScreenshot) {
  EXPECT_FALSE(popup->panel());
  EXPECT_FALSE(popup->isPointerEngaged());
  popup->hide();
  popup->focusForReview();
  EXPECT_FALSE(popup->panel());
}

TEST_F(CapturePromptPanelControllerTest, AScreenshotShowsThePanelInItsPlaceWithoutTheKeyboard) {
  const UUID id = show();
  ASSERT_TRUE(isVisible());
  EXPECT_EQ(popup->content()->item.id, id);
  EXPECT_EQ(popup->content()->thumbnailHeight, 204);
  EXPECT_EQ(frame().width(), 488);
  EXPECT_EQ(frame().right(), 800) << "24 points of margin about a card that is 24 points in";
  EXPECT_EQ(frame().y(), 20);
  EXPECT_TRUE(windowSystem.refusesFocusWhenShown);
  EXPECT_EQ(windowSystem.calls, (std::vector<std::string>{"prepare", "finish"}));
  EXPECT_TRUE(windowSystem.activated.empty());
  EXPECT_EQ(windowSystem.clickable, popup->panel()->cardRect()) << "clicks on the margin go through";
}

TEST_F(CapturePromptPanelControllerTest, HidingLetsGoOfTheContentInALaterTurn) {
  show();
  model->dismissPrompt();
  EXPECT_FALSE(isVisible());
  EXPECT_TRUE(popup->content());
  executor.drain();
  EXPECT_FALSE(popup->content());
}

TEST_F(CapturePromptPanelControllerTest, AScreenshotThatComesBeforeThatStaysShown) {
  show();
  model->dismissPrompt();
  const UUID second = arrive("2.png");
  executor.drain();
  EXPECT_TRUE(isVisible());
  ASSERT_TRUE(popup->content());
  EXPECT_EQ(popup->content()->item.id, second);
}

TEST_F(CapturePromptPanelControllerTest, WhatWasTypedIsForgottenOnceThePopupHasClosed) {
  const UUID id = show();
  field()->setText(QStringLiteral("Typed"));
  model->dismissPrompt();
  settle();
  model->reviewPending(FocusNews::silent);
  settle();
  ASSERT_TRUE(isVisible());
  ASSERT_EQ(popup->content()->item.id, id);
  EXPECT_EQ(field()->text(), QStringLiteral("1"));
}

TEST_F(CapturePromptPanelControllerTest, ThePanelIsMadeOnce) {
  show();
  const auto* panel = popup->panel();
  model->dismissPrompt();
  settle();
  arrive("2.png");
  settle();
  EXPECT_EQ(popup->panel(), panel);
}

TEST_F(CapturePromptPanelControllerTest, AHiddenPopupDoesNotFollowTheModel) {
  show();
  model->dismissPrompt();
  settle();
  const int updates = popup->updateCount();
  model->setShowPopupThumbnail(false);
  executor.drain();
  EXPECT_EQ(popup->updateCount(), updates);
}

TEST_F(CapturePromptPanelControllerTest, ItMayGoAwayWithAnUpdateUnderWay) {
  show();
  model->setShowPopupThumbnail(false);
  model->dismissPrompt();
  popup.reset();
  executor.drain();
}

// --- Updates ---

TEST_F(CapturePromptPanelControllerTest, AThousandChangesInOneTurnCostOneUpdate) {
  show();
  const int updates = popup->updateCount();
  const int measurements = popup->measurementCount();
  for (int i = 1; i <= 1000; ++i) model->show(ErrorScope::popup, QString::number(i), QStringLiteral("Message"));
  EXPECT_EQ(popup->updateCount(), updates) << "never in the signal itself";
  executor.drain();
  EXPECT_EQ(popup->updateCount(), updates + 1);
  EXPECT_EQ(popup->measurementCount(), measurements + 1);
  EXPECT_EQ(popup->content()->error->title, QStringLiteral("1000"));
}

TEST_F(CapturePromptPanelControllerTest, OfAFewThatComeBehindItTellsAtOnceAndOfManyTenTimesASecond) {
  show();
  auto arrive = [this, number = 0]() mutable {
    const QByteArray name = "more" + QByteArray::number(++number) + ".png";
    savePicture(name.constData(), QSize(8, 8));
    monitor.onScreenshot(shots.appending(name.toStdString()));
    executor.drain();
  };
  for (int i = 1; i <= 5; ++i) {
    arrive();
    EXPECT_EQ(popup->content()->queuedCount, i);
  }
  const int shown = popup->viewChangeCount();
  for (int i = 0; i < 100; ++i) arrive();
  EXPECT_LE(popup->viewChangeCount(), shown + 5);
  EXPECT_LT(popup->content()->queuedCount, 105);
  executor.advance(std::chrono::milliseconds(100));
  EXPECT_EQ(popup->content()->queuedCount, 105);
  executor.advance(std::chrono::seconds(1));
  arrive();
  EXPECT_EQ(popup->content()->queuedCount, 106);
  for (int i = 0; i < 20; ++i) arrive();
  model->dismissPrompt();
  settle();
  EXPECT_EQ(popup->content()->queuedCount, 125) << "a decision shows at once";
}

TEST_F(CapturePromptPanelControllerTest, AChangeThatShowsNowhereCostsNothing) {
  show();
  const int shown = popup->viewChangeCount();
  const int measurements = popup->measurementCount();
  const int frames = popup->panel()->frameChangeCount();
  model->setMenuBarEnabled(false);
  model->setHasSeenWelcome(true);
  model->show(ErrorScope::inbox, QStringLiteral("Title"), QStringLiteral("Message"));
  executor.drain();
  EXPECT_EQ(popup->viewChangeCount(), shown);
  EXPECT_EQ(popup->measurementCount(), measurements);
  EXPECT_EQ(popup->panel()->frameChangeCount(), frames);
}

TEST_F(CapturePromptPanelControllerTest, AHeightIsMeasuredOnceForEachState) {
  show();
  const auto alternate = [this] {
    for (const bool shows : {false, true}) {
      model->setShowPopupThumbnail(shows);
      executor.drain();
    }
  };
  alternate();
  const int measurements = popup->measurementCount();
  const int shown = popup->viewChangeCount();
  for (int i = 0; i < 5; ++i) alternate();
  EXPECT_EQ(popup->measurementCount(), measurements);
  EXPECT_EQ(popup->viewChangeCount(), shown + 10);
}

TEST_F(CapturePromptPanelControllerTest, TheHeightsOfTheLastEightStatesAreKnown) {
  show();
  const auto showState = [this](int number) {
    model->setScreenshotNaming(number % 2 == 0 ? ScreenshotNaming::original : ScreenshotNaming::suggested);
    model->setDeletesChosenImmediately(number / 2 % 2 == 0);
    model->setShowPopupThumbnail(number / 4 % 2 == 0);
    model->setAnalyzeScreenshots(number / 8 % 2 == 0);
    executor.drain();
  };
  for (int number = 0; number < 9; ++number) showState(number);
  const int measurements = popup->measurementCount();
  for (int number = 8; number > 0; --number) showState(number);
  EXPECT_EQ(popup->measurementCount(), measurements) << "eight are kept";
  showState(0);
  EXPECT_EQ(popup->measurementCount(), measurements + 1) << "the ninth was dropped";
}

TEST_F(CapturePromptPanelControllerTest, TypingMeasuresNothing) {
  show();
  const int measurements = popup->measurementCount();
  QTest::keyClicks(field(), QStringLiteral("A new name"));
  executor.drain();
  EXPECT_EQ(popup->measurementCount(), measurements);
  EXPECT_EQ(model->promptNameEdit()->text, field()->text());
}

TEST_F(CapturePromptPanelControllerTest, MeasuringReportsNoEdit) {
  const UUID id = show();
  field()->setText(QStringLiteral("Typed"));
  model->show(ErrorScope::popup, QStringLiteral("Title"), QStringLiteral("Message"));
  executor.drain();
  EXPECT_EQ(model->promptNameEdit(), (AppModel::PromptNameEdit{id, QStringLiteral("Typed"), true, false}));
}

TEST_F(CapturePromptPanelControllerTest, AnotherFontIsMeasuredAnew) {
  show();
  const qreal before = frame().height();
  QFont large = popup->panel()->font();
  large.setPointSizeF(large.pointSizeF() * 2);
  const int measurements = popup->measurementCount();
  const QFont usual = QApplication::font();
  QApplication::setFont(large);
  settle();
  EXPECT_GT(popup->measurementCount(), measurements);
  EXPECT_GT(frame().height(), before);
  QApplication::setFont(usual);
  settle();
  EXPECT_EQ(frame().height(), before);
}

TEST_F(CapturePromptPanelControllerTest, AClosedPopupForgetsItsHeights) {
  const UUID id = show();
  model->dismissPrompt();
  settle();
  const int measurements = popup->measurementCount();
  model->reviewPending(FocusNews::silent);
  settle();
  ASSERT_EQ(popup->content()->item.id, id);
  EXPECT_GT(popup->measurementCount(), measurements);
}

TEST_F(CapturePromptPanelControllerTest, AChangeOfTheSameHeightMovesNothing) {
  show();
  const int frames = popup->panel()->frameChangeCount();
  arrive("2.png");
  executor.drain();
  EXPECT_EQ(popup->content()->queuedCount, 1);
  EXPECT_EQ(popup->panel()->frameChangeCount(), frames);
}

TEST_F(CapturePromptPanelControllerTest, AnErrorMakesItTallerUpwards) {
  show();
  const QRectF before = frame();
  model->show(ErrorScope::popup, QStringLiteral("Title"), QStringLiteral("Message"));
  executor.drain();
  EXPECT_GT(frame().height(), before.height());
  EXPECT_EQ(frame().y(), before.y());
  EXPECT_EQ(windowSystem.clickable, popup->panel()->cardRect());
  model->dismissError(ErrorScope::popup);
  executor.drain();
  EXPECT_EQ(frame(), before);
}

TEST_F(CapturePromptPanelControllerTest, ADescriptionOfSeveralLinesMakesItTallerUpwards) {
  const UUID id = show();
  const QRectF before = frame();
  analyzer.immediateDescriptions = {
      ScreenshotAnalysisResult{QStringLiteral("A word ").repeated(30), QStringLiteral("Name")}};
  model->startAnalysis(id);
  settle();
  EXPECT_GT(frame().height(), before.height());
  EXPECT_EQ(frame().top(), before.top()) << "the lower edge, as the screens count upwards";
}

TEST_F(CapturePromptPanelControllerTest, WithoutThePreviewItIsShorterByIt) {
  show();
  const qreal before = frame().height();
  model->setShowPopupThumbnail(false);
  executor.drain();
  EXPECT_EQ(frame().height(), before - 204 + 36) << "its actions stand in a row of their own now";
}

TEST_F(CapturePromptPanelControllerTest, OnALowScreenThePictureGivesWayBeforeAnythingScrolls) {
  show();
  const double natural = frame().height() - 48;
  const auto lower = [&](double points) {
    screens.all = {{QRectF(0, 0, 800, 800), QRectF(0, 0, 800, natural + 48 - points)}};
    windowSystem.availableGeometryChanged();
    executor.drain();
    return std::pair(popup->content()->thumbnailHeight, popup->content()->scrolls);
  };
  EXPECT_EQ(lower(0), std::pair(204, false));
  EXPECT_EQ(lower(50), std::pair(154, false));
  EXPECT_EQ(lower(108), std::pair(96, false));
  EXPECT_EQ(lower(109), std::pair(96, true));
  EXPECT_EQ(lower(0), std::pair(204, false)) << "with room again";
}

TEST_F(CapturePromptPanelControllerTest, OnAScreenTooShortTheContentScrolls) {
  screens.all = {{QRectF(0, 0, 800, 800), QRectF(0, 0, 800, 250)}};
  show();
  EXPECT_TRUE(popup->content()->scrolls);
  EXPECT_EQ(frame().height(), 250);
  const int shown = popup->viewChangeCount();
  const int measurements = popup->measurementCount();
  model->setMenuBarEnabled(false);
  executor.drain();
  EXPECT_EQ(popup->viewChangeCount(), shown) << "also then";
  EXPECT_EQ(popup->measurementCount(), measurements);
}

TEST_F(CapturePromptPanelControllerTest, WithoutAnyScreenItStaysWhereItIs) {
  show();
  const QRectF before = frame();
  model->dismissPrompt();
  settle();
  screens.all.clear();
  arrive("2.png");
  settle();
  EXPECT_TRUE(isVisible());
  EXPECT_EQ(frame(), before);
  EXPECT_LT(popup->content()->thumbnailHeight, 160) << "what has no room gives way";
  model->setShowPopupThumbnail(false);
  model->show(ErrorScope::popup, QStringLiteral("Title"), QStringLiteral("Message ").repeated(60));
  settle();
  EXPECT_EQ(frame(), before);
  EXPECT_TRUE(popup->content()->scrolls) << "and then scrolls";
}

TEST_F(CapturePromptPanelControllerTest, AnEvictedFileIsNotMeasured) {
  const FileURL url = shots.appending("1.png");
  dataless.insert(url.path());
  show();
  EXPECT_EQ(popup->content()->thumbnailHeight, 160);
}

TEST_F(CapturePromptPanelControllerTest, TheFirstFrameHasTheHeightOfItsPicture) {
  savePicture("1.png", QSize(800, 400));
  monitor.onScreenshot(shots.appending("1.png"));
  EXPECT_FALSE(isVisible()) << "the size is being read";
  executor.drain();
  ASSERT_TRUE(isVisible());
  EXPECT_EQ(popup->content()->thumbnailHeight, 204);
  EXPECT_EQ(popup->viewChangeCount(), 1);
  EXPECT_EQ(popup->panel()->frameChangeCount(), 1);
}

TEST_F(CapturePromptPanelControllerTest, ThePopupWaitsAMomentAtMostForTheSizeOfItsPicture) {
  savePicture("1.png", QSize(800, 400));
  monitor.onScreenshot(shots.appending("1.png"));
  executor.holdBackground();
  executor.advance(std::chrono::milliseconds(19));
  EXPECT_FALSE(isVisible());
  executor.advance(std::chrono::milliseconds(1));
  ASSERT_TRUE(isVisible());
  EXPECT_EQ(popup->content()->thumbnailHeight, 160);
  executor.runHeldBackground();
  settle();
  EXPECT_EQ(popup->content()->thumbnailHeight, 204);
}

TEST_F(CapturePromptPanelControllerTest, AnUnreadablePictureIsNotWaitedFor) {
  arrive("1.png");
  executor.drain();
  EXPECT_TRUE(isVisible());
}

TEST_F(CapturePromptPanelControllerTest, TheReviewDoesNotWait) {
  savePicture("1.png", QSize(800, 400));
  monitor.onScreenshot(shots.appending("1.png"));
  popup->focusForReview();
  EXPECT_TRUE(isVisible());
  EXPECT_EQ(windowSystem.active, popup->panel()->winId());
}

TEST_F(CapturePromptPanelControllerTest, AScreenshotThatGoesBeforeItsPopupComesHasNone) {
  savePicture("1.png", QSize(800, 400));
  monitor.onScreenshot(shots.appending("1.png"));
  model->dismissPrompt();
  executor.advance(seconds(1));
  EXPECT_FALSE(isVisible());
}

TEST_F(CapturePromptPanelControllerTest, TheNextOneComesUpAtItsHeight) {
  show();
  arrivePicture("2.png", QSize(400, 200));
  model->dismissPrompt();
  ASSERT_NE(popup->content()->item.url, shots.appending("2.png"));
  const int shown = popup->viewChangeCount();
  executor.drain();
  EXPECT_EQ(popup->content()->item.url, shots.appending("2.png"));
  EXPECT_EQ(popup->viewChangeCount(), shown + 1) << "no second layout for a size found late";
}

TEST_F(CapturePromptPanelControllerTest, AnExtractedWindowLeavesTheCardItsHeight) {
  const UUID id = show();
  model->setPromptWindowExtraction(item(id), true).detach();
  executor.drain();
  EXPECT_EQ(popup->content()->windowExtraction, PromptWindowExtraction::Phase(PromptWindowExtraction::Detecting{}));
  EXPECT_EQ(popup->content()->previewPixelSize, QSizeF(800, 400));
  scanner.answer(0, QImage(800, 400, QImage::Format_RGB32), QRectF(10, 10, 400, 100));
  executor.drain();
  EXPECT_EQ(popup->content()->previewPixelSize, QSizeF(400, 100));
  EXPECT_EQ(popup->content()->thumbnailHeight, 204);
}

TEST_F(CapturePromptPanelControllerTest, TheSameFileIsMeasuredOnce) {
  const UUID id = show();
  ASSERT_EQ(::unlink(item(id).url.c_str()), 0);
  arrive("2.png");
  executor.drain();
  EXPECT_EQ(popup->content()->thumbnailHeight, 204) << "an update reads no file";
}

// --- The screen ---

TEST_F(CapturePromptPanelControllerTest, ItOpensWhereTheCaptureWasTaken) {
  captureRect = QRectF(900, 100, 300, 300);
  show();
  EXPECT_EQ(screenOfPopup(), 1u);
}

TEST_F(CapturePromptPanelControllerTest, ASecondScreenshotDoesNotMoveIt) {
  show();
  ASSERT_EQ(screenOfPopup(), 0u);
  captureRect = QRectF(900, 100, 300, 300);
  screens.mouse = {1000, 100};
  arrive("2.png");
  model->dismissPrompt();
  executor.drain();
  EXPECT_EQ(popup->content()->item.url, shots.appending("2.png"));
  EXPECT_EQ(screenOfPopup(), 0u);
  EXPECT_EQ(windowSystem.calls.size(), 2u) << "nor show it anew";
}

TEST_F(CapturePromptPanelControllerTest, AScreenThatGoesAwayMovesItToAnother) {
  captureRect = QRectF(900, 100, 300, 300);
  show();
  ASSERT_EQ(screenOfPopup(), 1u);
  screens.all.pop_back();
  Q_EMIT QGuiApplication::primaryScreen()->geometryChanged(QRect());
  executor.drain();
  EXPECT_EQ(screenOfPopup(), 0u);
}

// --- The keyboard ---

TEST_F(CapturePromptPanelControllerTest, TheReviewTakesTheKeyboardAndClosingGivesItBack) {
  show();
  model->reviewPending(FocusNews::silent);
  ASSERT_EQ(windowSystem.activated, std::vector<quintptr>{popup->panel()->winId()});
  ASSERT_TRUE(popup->panel()->isActiveWindow());
  EXPECT_FALSE(popup->panel()->windowHandle()->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
  model->dismissPrompt();
  executor.drain();
  EXPECT_EQ(windowSystem.activated.back(), kEditor);
}

TEST_F(CapturePromptPanelControllerTest, WhereTheWindowManagerGaveTheKeyboardBackNothingIsActivated) {
  show();
  model->reviewPending(FocusNews::silent);
  windowSystem.activated.clear();
  model->dismissPrompt();
  windowSystem.active = kEditor;
  executor.drain();
  EXPECT_TRUE(windowSystem.activated.empty());
}

TEST_F(CapturePromptPanelControllerTest, ClosingAPopupThatNeverHadTheKeyboardActivatesNothing) {
  show();
  model->dismissPrompt();
  executor.drain();
  EXPECT_TRUE(windowSystem.activated.empty());
}

TEST_F(CapturePromptPanelControllerTest, AfterThePersonWentElsewhereClosingActivatesNothing) {
  show();
  model->reviewPending(FocusNews::silent);
  ASSERT_TRUE(popup->panel()->isActiveWindow());
  windowSystem.give(0);
  ASSERT_FALSE(popup->panel()->isActiveWindow());
  windowSystem.activated.clear();
  model->dismissPrompt();
  executor.drain();
  EXPECT_TRUE(windowSystem.activated.empty());
}

TEST_F(CapturePromptPanelControllerTest, FromAWindowOfThisProgramNothingIsGivenBack) {
  QWidget inbox;
  inbox.show();
  QCoreApplication::processEvents();
  show();
  windowSystem.give(inbox.winId());
  ASSERT_TRUE(inbox.isActiveWindow());
  model->reviewPending(FocusNews::silent);
  ASSERT_TRUE(popup->panel()->isActiveWindow());
  windowSystem.activated.clear();
  model->dismissPrompt();
  executor.drain();
  EXPECT_TRUE(windowSystem.activated.empty());
}

TEST_F(CapturePromptPanelControllerTest, TheNextScreenshotKeepsTheKeyboard) {
  show();
  model->reviewPending(FocusNews::silent);
  arrive("2.png");
  model->dismissPrompt();
  executor.drain();
  EXPECT_TRUE(popup->panel()->isActiveWindow());
  model->dismissPrompt();
  executor.drain();
  EXPECT_EQ(windowSystem.activated.back(), kEditor);
}

TEST_F(CapturePromptPanelControllerTest, AClickIntoTheNameTakesTheKeyboard) {
  show();
  QTest::mouseClick(field(), Qt::LeftButton);
  EXPECT_EQ(windowSystem.activated, std::vector<quintptr>{popup->panel()->winId()});
  EXPECT_TRUE(popup->panel()->isActiveWindow());
}

TEST_F(CapturePromptPanelControllerTest, APopupShownAnewRefusesTheKeyboardAgain) {
  show();
  model->reviewPending(FocusNews::silent);
  model->dismissPrompt();
  settle();
  windowSystem.refusesFocusWhenShown = false;
  arrive("2.png");
  executor.drain();
  EXPECT_TRUE(windowSystem.refusesFocusWhenShown);
}

// --- The pointer ---

TEST_F(CapturePromptPanelControllerTest, ThePointerOnTheCardEngagesAndOnTheMarginDoesNot) {
  show();
  screens.mouse = frame().center();
  EXPECT_TRUE(popup->isPointerEngaged());
  screens.mouse = QPointF(frame().x() + 23, frame().center().y());
  EXPECT_FALSE(popup->isPointerEngaged());
  screens.mouse = QPointF(frame().x() + 25, frame().center().y());
  EXPECT_TRUE(popup->isPointerEngaged());
  screens.mouse = QPointF(frame().center().x(), frame().y() + 23);
  EXPECT_FALSE(popup->isPointerEngaged());
}

TEST_F(CapturePromptPanelControllerTest, APopupWithTheKeyboardIsEngagedWhereverThePointerIs) {
  show();
  EXPECT_FALSE(popup->isPointerEngaged());
  model->reviewPending(FocusNews::silent);
  EXPECT_TRUE(popup->isPointerEngaged());
}

TEST_F(CapturePromptPanelControllerTest, AMenuOfAnotherWindowDoesNotEngage) {
  show();
  QMenu menu;
  menu.addAction(QStringLiteral("Entry"));
  menu.popup(QPoint(0, 0));
  ASSERT_EQ(QApplication::activePopupWidget(), &menu);
  EXPECT_FALSE(popup->isPointerEngaged());
}

TEST_F(CapturePromptPanelControllerTest, ClosingTheWindowDismissesTheScreenshot) {
  show();
  arrive("2.png");
  settle();
  popup->panel()->close();
  EXPECT_EQ(queue().size(), 2u) << "not within the time in which clicks are dropped";
  EXPECT_TRUE(isVisible());
  executor.advance(PromptActionGate::kDelay);
  popup->panel()->close();
  settle();
  EXPECT_TRUE(isVisible());
  EXPECT_EQ(popup->content()->item.url, shots.appending("2.png"));
}

TEST_F(CapturePromptPanelControllerTest, HelpAppearsThoughTheWindowIsNotActive) {
  show();
  EXPECT_TRUE(popup->panel()->testAttribute(Qt::WA_AlwaysShowToolTips));
}

TEST_F(CapturePromptPanelControllerTest, AnOpenMenuEngages) {
  show();
  auto* picker = popup->panel()->findChild<QComboBox*>();
  picker->showPopup();
  EXPECT_TRUE(popup->isPointerEngaged());
  picker->hidePopup();
  EXPECT_FALSE(popup->isPointerEngaged());
}

TEST_F(CapturePromptPanelControllerTest, AHiddenPopupIsNotEngaged) {
  show();
  screens.mouse = frame().center();
  model->dismissPrompt();
  EXPECT_FALSE(popup->isPointerEngaged());
}

// --- The desktop's own screens ---

TEST(LivePanelScreensTest, TurnsTheDesktopsCoordinatesAndBack) {
  const LivePanelScreens screens;
  ASSERT_FALSE(screens.screens().empty());
  const QRect geometry = QGuiApplication::primaryScreen()->geometry();
  const PanelScreen main = *screens.mainScreen();
  EXPECT_EQ(main.frame, QRectF(0, 0, geometry.width(), geometry.height()));
  EXPECT_EQ(LivePanelScreens::toQt(main.frame), geometry);
  EXPECT_EQ(LivePanelScreens::toQt(QRectF(10, 20, 30, 40)), QRect(10, geometry.height() - 60, 30, 40));
}

// --- A series as a note ---

class SeriesAsANoteTest : public CapturePromptPanelControllerTest {
 protected:
  SeriesAsANoteTest() {
    model->setPopupGathersSeries(true);
    signs.seen(CaptureSigns::Sign::key);
    signs.seen(CaptureSigns::Sign::key);
    show();
    arrivePicture("2.png", QSize(800, 400));
  }
  QPushButton* button(const char* text) {
    for (auto* found : popup->panel()->findChildren<QPushButton*>()) {
      if (found->text() == QLatin1String(text)) return found;
    }
    return nullptr;
  }
};

TEST_F(SeriesAsANoteTest, SeveralShowAsTheirNumberInTheCorner) {
  ASSERT_TRUE(isVisible());
  ASSERT_TRUE(button("2 screenshots"));
  EXPECT_TRUE(button("2 screenshots")->isVisible());
  EXPECT_FALSE(button("Keep")->isVisible());
  const QRect note = popup->panel()->cardRect();
  EXPECT_EQ(note.height(), CaptureDecisionPanel::kNoteHeight);
  EXPECT_LT(note.width(), 300);
  EXPECT_EQ(note.right(), popup->panel()->width() - 25);
  EXPECT_EQ(windowSystem.clickable, note);
  arrivePicture("3.png", QSize(800, 400));
  EXPECT_TRUE(button("3 screenshots"));
}

TEST_F(SeriesAsANoteTest, AClickOpensTheCardAndDecidesNothing) {
  button("2 screenshots")->click();
  settle();
  EXPECT_EQ(popup->panel()->cardRect().width(), 440);
  EXPECT_EQ(windowSystem.clickable, popup->panel()->cardRect());
  ASSERT_TRUE(button("Keep")->isVisible());
  button("Move to Trash")->click();
  settle();
  EXPECT_EQ(model->prompts().queue->size(), 2U) << "the second click of a double click";
  executor.advance(seconds(1));
  button("Keep")->click();
  settle();
  EXPECT_EQ(model->prompts().queue->size(), 1U);
  EXPECT_TRUE(button("Keep")->isVisible()) << "the card stays a card";
}

TEST_F(SeriesAsANoteTest, ItsTimeStandsStillSinceNobodySeesWhatWouldBeDecided) {
  EXPECT_TRUE(popup->isPointerEngaged());
  button("2 screenshots")->click();
  settle();
  EXPECT_FALSE(popup->isPointerEngaged());
}

TEST_F(SeriesAsANoteTest, ACardThatWasSeenComesBackAsACard) {
  button("2 screenshots")->click();
  settle();
  signs.seen(CaptureSigns::Sign::key);
  executor.advance(seconds(3));
  ASSERT_TRUE(isVisible());
  EXPECT_TRUE(button("Keep")->isVisible());
}

TEST_F(SeriesAsANoteTest, TheReviewOpensIt) {
  popup->focusForReview();
  EXPECT_TRUE(button("Keep")->isVisible());
  EXPECT_EQ(windowSystem.active, popup->panel()->winId());
}

TEST_F(CapturePromptPanelControllerTest, OneScreenshotIsNoSeries) {
  model->setPopupGathersSeries(true);
  show();
  EXPECT_EQ(popup->panel()->cardRect().width(), 440);
  arrivePicture("2.png", QSize(800, 400));
  EXPECT_EQ(popup->panel()->cardRect().width(), 440) << "what is looked at is not folded away";
}

// --- The time to answer ---

TEST_F(CapturePromptPanelControllerTest, ALineRunsDownWithTheTimeToAnswer) {
  model->setPopupAutoSaveSeconds(10);
  model->setPopupAutoSaveEnabled(true);
  show();
  CountdownLine* line = nullptr;
  for (auto* child : popup->panel()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    if (auto* found = dynamic_cast<CountdownLine*>(child)) line = found;
  }
  ASSERT_TRUE(line);
  EXPECT_FALSE(line->isHidden());
  EXPECT_EQ(line->shown(), 1);
  executor.advance(seconds(5));
  EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(line->shown() - 0.5) < 0.01; }));
  screens.mouse = frame().center();
  executor.advance(seconds(3));
  EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(line->shown() - 0.5) < 0.01; })) << "it stands still";
  model->setPopupAutoSaveEnabled(false);
  executor.drain();
  EXPECT_TRUE(line->isHidden());
}

// --- A long description ---

TEST_F(CapturePromptPanelControllerTest, ALongDescriptionHasThreeLinesUntilMoreIsWanted) {
  const QString description = QStringLiteral("Several words that go on about the picture. ").repeated(12).trimmed();
  analyzer.immediateDescriptions = {ScreenshotAnalysisResult{description, QStringLiteral("Name")}};
  show();
  executor.drain();
  auto* text = popup->panel()->findChild<QLabel*>(QStringLiteral("analysisStatus"));
  ASSERT_TRUE(text);
  EXPECT_TRUE(text->text().endsWith(QChar(0x2026)));
  EXPECT_EQ(text->accessibleName(), description) << "whoever hears it hears all of it";
  const qreal height = frame().height();
  QPushButton* more = nullptr;
  for (auto* button : popup->panel()->findChildren<QPushButton*>()) {
    if (button->text() == QStringLiteral("More")) more = button;
  }
  ASSERT_TRUE(more);
  EXPECT_FALSE(more->isHidden());
  more->click();
  settle();
  executor.drain();
  EXPECT_EQ(text->text(), description);
  EXPECT_TRUE(more->isHidden());
  EXPECT_GT(frame().height(), height);
  EXPECT_EQ(text->height(), text->heightForWidth(text->width())) << "nothing of it is cut";
}

TEST_F(CapturePromptPanelControllerTest, TheDecisionsStayInSightWhereTheCardScrolls) {
  screens.all = {{QRectF(0, 0, 800, 300), QRectF(0, 0, 800, 300)}};
  show();
  ASSERT_TRUE(popup->content()->scrolls);
  QPushButton* keep = nullptr;
  for (auto* button : popup->panel()->findChildren<QPushButton*>()) {
    if (button->text() == QStringLiteral("Keep")) keep = button;
  }
  ASSERT_TRUE(keep);
  const QRect place(keep->mapTo(popup->panel(), QPoint()), keep->size());
  EXPECT_TRUE(popup->panel()->cardRect().contains(place));
  EXPECT_EQ(keep->visibleRegion().boundingRect(), keep->rect()) << "nothing lies over it";
}

TEST_F(CapturePromptPanelControllerTest, EscapeOnADecisionClosesThePopup) {
  show();
  popup->focusForReview();
  executor.advance(seconds(1));
  QTest::keyClick(popup->panel()->focusWidget(), Qt::Key_Escape);
  executor.drain();
  EXPECT_FALSE(isVisible());
}

// --- Out of the next capture ---

TEST_F(CapturePromptPanelControllerTest, ASignOfACaptureHidesThePopupAtOnce) {
  show();
  signs.seen(CaptureSigns::Sign::key);
  EXPECT_FALSE(isVisible());
  EXPECT_EQ(popup->panel()->windowOpacity(), 0) << "a compositor that fades has nothing to fade";
  EXPECT_TRUE(popup->isPointerEngaged()) << "its time stands still";
  EXPECT_TRUE(popup->content()) << "and what it shows is kept";
}

TEST_F(CapturePromptPanelControllerTest, ItComesBackAfterThreeSeconds) {
  show();
  executor.advance(seconds(1));
  signs.seen(CaptureSigns::Sign::request);
  executor.advance(std::chrono::milliseconds(2999));
  EXPECT_FALSE(isVisible());
  executor.advance(std::chrono::milliseconds(1));
  EXPECT_TRUE(isVisible());
  EXPECT_TRUE(QTest::qWaitFor([this] { return popup->panel()->windowOpacity() == 1; }));
  settle();
  EXPECT_FALSE(popup->isPointerEngaged());
  EXPECT_TRUE(windowSystem.activated.empty()) << "without the keyboard, as it was";
}

TEST_F(CapturePromptPanelControllerTest, ItComesBackWithTheFile) {
  show();
  signs.seen(CaptureSigns::Sign::key);
  arrivePicture("2.png", QSize(800, 400));
  EXPECT_TRUE(isVisible());
  EXPECT_EQ(popup->content()->queuedCount, 1);
}

TEST_F(CapturePromptPanelControllerTest, ItShowsWhatChangedMeanwhile) {
  show();
  signs.seen(CaptureSigns::Sign::key);
  model->setShowPopupThumbnail(false);
  executor.advance(seconds(3));
  EXPECT_FALSE(popup->content()->showThumbnail);
}

TEST_F(CapturePromptPanelControllerTest, AFirstPopupWaitsForTheCaptureThatWasForetoldAfterIt) {
  signs.seen(CaptureSigns::Sign::key);
  signs.seen(CaptureSigns::Sign::key);
  show();
  EXPECT_FALSE(isVisible()) << "the second is still to come";
  executor.advance(seconds(3));
  EXPECT_TRUE(isVisible());
}

TEST_F(CapturePromptPanelControllerTest, ARequestThatIsNotHeededLeavesThePopupAlone) {
  show();
  const auto calls = windowSystem.calls;
  signs.seen(CaptureSigns::Sign::request);
  EXPECT_TRUE(isVisible()) << "a tool opens a window of its own after its capture";
  EXPECT_EQ(windowSystem.calls, calls) << "not even for a moment";
}

TEST_F(CapturePromptPanelControllerTest, ItKeepsAwayAsLongAsAPartOfTheScreenIsChosen) {
  show();
  executor.advance(seconds(1));
  signs.chooses = true;
  signs.seen(CaptureSigns::Sign::request);
  executor.advance(seconds(60));
  EXPECT_FALSE(isVisible());
  signs.chooses = false;
  signs.choosingEnded();
  EXPECT_FALSE(isVisible()) << "what was chosen is not saved yet";
  arrivePicture("2.png", QSize(800, 400));
  EXPECT_TRUE(isVisible());
}

TEST_F(CapturePromptPanelControllerTest, TheReviewBringsItBack) {
  show();
  signs.seen(CaptureSigns::Sign::key);
  popup->focusForReview();
  EXPECT_TRUE(isVisible());
  EXPECT_EQ(windowSystem.active, popup->panel()->winId());
}

TEST_F(CapturePromptPanelControllerTest, ThePopupThatHadTheKeyboardGivesItBackAndComesWithoutIt) {
  show();
  popup->focusForReview();
  signs.seen(CaptureSigns::Sign::key);
  executor.drain();
  EXPECT_EQ(windowSystem.active, kEditor) << "someone may go on typing";
  executor.advance(seconds(3));
  ASSERT_TRUE(isVisible());
  EXPECT_EQ(windowSystem.active, kEditor);
}

TEST_F(CapturePromptPanelControllerTest, AClickThatWasMeantForWhatLayThereDecidesNothing) {
  show();
  signs.seen(CaptureSigns::Sign::key);
  executor.advance(seconds(3));
  ASSERT_TRUE(isVisible());
  QPushButton* keep = nullptr;
  for (auto* button : popup->panel()->findChildren<QPushButton*>()) {
    if (button->text() == QStringLiteral("Keep")) keep = button;
  }
  keep->click();
  executor.drain();
  EXPECT_EQ(model->prompts().queue->size(), 1U);
  executor.advance(std::chrono::milliseconds(300));
  keep->click();
  executor.drain();
  EXPECT_TRUE(model->prompts().queue->empty());
}

TEST_F(CapturePromptPanelControllerTest, AFirstPopupAfterARecessHasItsClickGateFromWhenItIsSeen) {
  signs.seen(CaptureSigns::Sign::key);
  signs.seen(CaptureSigns::Sign::key);
  show();
  executor.advance(seconds(3));
  ASSERT_TRUE(isVisible());
  for (auto* button : popup->panel()->findChildren<QPushButton*>()) {
    if (button->text() == QStringLiteral("Move to Trash")) button->click();
  }
  executor.drain();
  EXPECT_EQ(model->prompts().queue->size(), 1U);
}

TEST_F(CapturePromptPanelControllerTest, APressOnOneScreenshotAndItsReleaseOnTheNextDecideNothing) {
  const UUID first = show();
  const UUID second = arrivePicture("2.png", QSize(800, 400));
  executor.advance(seconds(1));
  QPushButton* trashButton = nullptr;
  for (auto* button : popup->panel()->findChildren<QPushButton*>()) {
    if (button->text() == QStringLiteral("Move to Trash")) trashButton = button;
  }
  QTest::mousePress(trashButton, Qt::LeftButton);
  model->keepBatch({first});
  executor.drain();
  ASSERT_EQ(popup->content()->item.id, second);
  executor.advance(seconds(1));
  QTest::mouseRelease(trashButton, Qt::LeftButton);
  executor.drain();
  EXPECT_EQ(model->prompts().queue->front(), second);
  settle();
  QTest::mouseClick(trashButton, Qt::LeftButton);
  settle();
  EXPECT_TRUE(model->prompts().queue->empty()) << "a whole click decides";
}

TEST_F(CapturePromptPanelControllerTest, AScreenThatGoesMeanwhileTakesThePopupNowhere) {
  show();
  ASSERT_EQ(screenOfPopup(), 0U);
  signs.seen(CaptureSigns::Sign::key);
  screens.all = {{QRectF(0, 0, 640, 700), QRectF(0, 0, 640, 700)}};
  executor.advance(seconds(3));
  EXPECT_EQ(frame().right(), 640);
}

TEST_F(CapturePromptPanelControllerTest, WhatFadesIsNotInTheNextCaptureEither) {
  show();
  model->dismissPrompt();
  signs.seen(CaptureSigns::Sign::key);
  auto* picture = popup->panel()->findChild<QWidget*>(QStringLiteral("fadingPicture"));
  EXPECT_TRUE(!picture || !picture->isVisible());
}

TEST_F(CapturePromptPanelControllerTest, WhatIsDecidedElsewhereMeanwhileStaysAway) {
  const UUID id = show();
  signs.seen(CaptureSigns::Sign::key);
  model->keepBatch({id});
  executor.drain();
  executor.advance(seconds(10));
  EXPECT_FALSE(isVisible());
  EXPECT_FALSE(popup->isPointerEngaged());
  EXPECT_FALSE(popup->content());
}

TEST_F(CapturePromptPanelControllerTest, WhereItIsWantedThePopupWaitsForTheEndOfASeries) {
  model->setPopupWaitsForPause(true);
  model->setPopupPauseSeconds(5);
  show();
  EXPECT_FALSE(isVisible());
  executor.advance(seconds(4));
  arrivePicture("2.png", QSize(800, 400));
  executor.advance(std::chrono::milliseconds(4900));
  EXPECT_FALSE(isVisible()) << "counted from the last";
  executor.advance(std::chrono::milliseconds(100));
  ASSERT_TRUE(isVisible());
  EXPECT_EQ(popup->content()->queuedCount, 1);
  arrivePicture("3.png", QSize(800, 400));
  EXPECT_FALSE(isVisible()) << "someone goes on capturing";
}

TEST_F(CapturePromptPanelControllerTest, APopupThatIsUsedDoesNotWaitForASeries) {
  model->setPopupWaitsForPause(true);
  show();
  executor.advance(seconds(5));
  popup->focusForReview();
  monitor.onScreenshot(shots.appending("2.png"));
  savePicture("2.png", QSize(800, 400));
  executor.drain();
  EXPECT_TRUE(isVisible());
}

}  // namespace
}  // namespace quillmere
