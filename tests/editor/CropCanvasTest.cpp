#include "editor/CropCanvas.h"

#include <gtest/gtest.h>
#include <QtGui/QBackingStore>
#include <QtGui/QMouseEvent>
#include <QtGui/QShortcut>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>
#include <random>
#include <set>

#include "foundation/ManualExecutor.h"

namespace quillmere::testing {
namespace {

constexpr QSize kView(400, 300);
/// A sheet that notes what the canvas leaves to it, besides the modifiers themselves.
class Sheet final : public QWidget {
 public:
  std::vector<int> keys;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const std::set<int> modifiers{Qt::Key_Shift, Qt::Key_Control, Qt::Key_Meta, Qt::Key_Alt};
    if (!modifiers.contains(event->key())) keys.push_back(event->key());
  }
};

/// On a screen of any number of pixels to a point.
class CanvasOnAnyScreen final : public CropCanvas {
 public:
  using CropCanvas::CropCanvas;
  qreal displayScale = 1;

 protected:
  int metric(PaintDeviceMetric metric) const override {
    if (metric == PdmDevicePixelRatio) return qCeil(displayScale);
    if (metric == PdmDevicePixelRatioScaled) return qRound(displayScale * devicePixelRatioFScale());
    return CropCanvas::metric(metric);
  }
};

/// The tests' places are points of a canvas in which a point is two pixels of the picture.
class CropCanvasTest : public ::testing::TestWithParam<qreal> {
 protected:
  CropCanvasTest() {
    canvas.displayScale = GetParam();
    canvas.resize(kView);
    other.setGeometry(0, 300, 100, 50);
    other.setFocusPolicy(Qt::StrongFocus);
    sheet.resize(kView + QSize(0, 50));
    canvas.onChanged = [this] { ++changes; };
    QImage image(picture(), QImage::Format_RGB32);
    image.fill(QColor(200, 210, 220));
    canvas.setPicture(image, picture());
    canvas.followHistory();
    sheet.show();
    sheet.activateWindow();
    canvas.setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&sheet));
    settle();
  }
  static constexpr QSize picture() { return {800, 600}; }
  void settle() {
    canvas.grab();
    executor.advance(seconds(1));
    canvas.grab();
  }
  void select(const QRect& rect) {
    history.change([&](CropSelection& selection) { selection.setByHand(rect); });
    canvas.followHistory();
  }
  const CropSelection& now() const { return history.current(); }
  QRect crop() const { return now().selection(); }

  void send(QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons buttons,
            Qt::KeyboardModifiers modifiers) {
    QMouseEvent event(type, at, canvas.mapToGlobal(at), button, buttons, modifiers);
    QCoreApplication::sendEvent(&canvas, &event);
  }
  void press(QPointF at, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton) {
    send(QEvent::MouseButtonPress, at, button, button, modifiers);
    held = button;
  }
  void move(QPointF to, Qt::KeyboardModifiers modifiers = {}) {
    send(QEvent::MouseMove, to, Qt::NoButton, held, modifiers);
  }
  void release(QPointF at, Qt::KeyboardModifiers modifiers = {}) {
    const auto button = static_cast<Qt::MouseButton>(held.toInt());
    held = Qt::NoButton;
    send(QEvent::MouseButtonRelease, at, button, Qt::NoButton, modifiers);
  }
  void click(QPointF at) {
    press(at);
    release(at);
  }
  void clickTwice(QPointF at) {
    click(at);
    send(QEvent::MouseButtonDblClick, at, Qt::LeftButton, Qt::LeftButton, {});
    held = Qt::LeftButton;
    release(at);
  }
  void drag(QPointF from, QPointF to, Qt::KeyboardModifiers modifiers = {}) {
    press(from, modifiers);
    move((from + to) / 2, modifiers);
    move(to, modifiers);
    release(to, modifiers);
  }
  void turn(QPoint angle, Qt::KeyboardModifiers modifiers = {}) {
    QWheelEvent event({200, 150}, canvas.mapToGlobal(QPointF(200, 150)), {}, angle, held, modifiers, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(&canvas, &event);
  }
  void key(QEvent::Type type, Qt::Key key, Qt::KeyboardModifiers modifiers = {}, bool isRepeat = false) {
    QKeyEvent event(type, key, modifiers, {}, isRepeat);
    QCoreApplication::sendEvent(&canvas, &event);
  }
  void zoomIn() {
    while (canvas.zoom().scale() < 4) canvas.zoomIn();
    settle();
  }
  int steps() {
    int count = 0;
    for (; history.canUndo(); ++count) history.undo();
    for (int i = 0; i < count; ++i) history.redo();
    canvas.followHistory();
    return count;
  }
  QImage shot() {
    QImage image(kView * GetParam(), QImage::Format_RGB32);
    image.setDevicePixelRatio(GetParam());
    canvas.render(&image);
    return image;
  }
  Qt::CursorShape cursorAt(QPointF point) {
    move(point);
    return canvas.cursor().shape();
  }

  ManualExecutor executor;
  CropHistory history{CropSelection(picture(), {{UUID::createUuid(), 1, {100, 100, 500, 400}, {}},
                                                {UUID::createUuid(), 2, {200, 200, 100, 100}, {}}})};
  Sheet sheet;
  CanvasOnAnyScreen& canvas = *new CanvasOnAnyScreen(executor, history, &sheet);
  QWidget& other = *new QWidget(&sheet);
  Qt::MouseButtons held;
  int changes = 0;
};
INSTANTIATE_TEST_SUITE_P(Screens, CropCanvasTest, ::testing::Values(1.0, 1.25, 1.5, 2.0));

// --- By pointer ---

TEST_P(CropCanvasTest, ADragDrawsASelectionInOneStep) {
  drag({20, 10}, {38, 40});
  EXPECT_EQ(crop(), QRect(40, 20, 36, 60));
  EXPECT_GT(changes, 0);
  EXPECT_EQ(steps(), 1);
}

TEST_P(CropCanvasTest, ADragThatLeavesThePictureIsClampedToIt) {
  drag({350, 280}, {900, 900});
  EXPECT_EQ(crop(), QRect(700, 560, 100, 40));
}

TEST_P(CropCanvasTest, AClickBesideTheSelectionTakesItAway) {
  select({40, 40, 100, 100});
  click({350, 250});
  EXPECT_TRUE(now().isEmpty());
  EXPECT_GT(changes, 0);
  executor.advance(seconds(2));
  history.undo();
  EXPECT_EQ(crop(), QRect(40, 40, 100, 100));
}

TEST_P(CropCanvasTest, AClickOnTheSelectionChangesNothing) {
  history.change([](CropSelection& selection) { selection.pick(selection.candidates()[0].id); });
  canvas.followHistory();
  click({200, 150});
  click({50, 150});
  EXPECT_EQ(crop(), QRect(100, 100, 500, 400));
  EXPECT_TRUE(now().selectedCandidate());
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(steps(), 1);
}

TEST_P(CropCanvasTest, AnUnsteadyClickIsAClick) {
  select({40, 40, 100, 100});
  const std::pair<const char*, QPointF> rows[] = {{"inside", {45, 45}}, {"a side", {70, 45}}, {"a corner", {20, 20}}};
  for (const auto& [name, at] : rows) {
    press(at);
    for (const QPointF beside : {QPointF(2, 1), QPointF(-1, -2), QPointF(3, 0)}) move(at + beside, Qt::AltModifier);
    EXPECT_EQ(crop(), QRect(40, 40, 100, 100)) << name;
    release(at + QPointF(3, 0));
    EXPECT_EQ(crop(), QRect(40, 40, 100, 100)) << name;
  }
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(steps(), 1);
  press({350, 250});
  move({352, 251});
  EXPECT_TRUE(now().isEmpty());
  release({352, 251});
  EXPECT_TRUE(now().isEmpty());
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(steps(), 2);
}

TEST_P(CropCanvasTest, ADragCountsFromWhereItWasPressed) {
  select({40, 40, 100, 100});
  press({45, 45});
  move({48, 45});
  move({49, 45});
  EXPECT_EQ(crop(), QRect(48, 40, 100, 100));
  move({46, 45});
  EXPECT_EQ(crop(), QRect(42, 40, 100, 100)) << "once it is a drag it may come back";
  release({46, 45});
  press({350, 250}, Qt::AltModifier);
  move({353, 250}, Qt::AltModifier);
  move({353, 252}, Qt::AltModifier);
  release({353, 252}, Qt::AltModifier);
  EXPECT_EQ(crop(), QRect(700, 500, 6, 4));
}

TEST_P(CropCanvasTest, WhatMovesUnderAPointerThatRestsIsNotDragged) {
  zoomIn();
  const QPointF at(200, 150);
  const QPoint pixel = canvas.zoom().pictureAt(at).toPoint();
  const QRect rect(pixel - QPoint(20, 20), QSize(40, 40));
  select(rect);
  press(at);
  turn({0, -120});
  EXPECT_EQ(crop(), rect);
  key(QEvent::KeyPress, Qt::Key_Alt, Qt::AltModifier);
  EXPECT_EQ(crop(), rect);
  key(QEvent::KeyRelease, Qt::Key_Alt);
  release(at);
  EXPECT_EQ(crop(), rect);
}

TEST_P(CropCanvasTest, AltAloneDragsNothing) {
  // Beside a line to which the edge would go.
  select({110, 110, 100, 100});
  press({55, 80});
  key(QEvent::KeyPress, Qt::Key_Alt, Qt::AltModifier);
  key(QEvent::KeyRelease, Qt::Key_Alt);
  release({55, 80});
  EXPECT_EQ(crop(), QRect(110, 110, 100, 100));
}

TEST_P(CropCanvasTest, AStepThatIsEndedInTheMiddleOfADragEndsTheDrag) {
  press({20, 20});
  move({30, 30});
  canvas.endStep();
  move({35, 38});
  release({35, 38});
  EXPECT_EQ(crop(), QRect(40, 40, 20, 20));
  EXPECT_EQ(steps(), 1);
}

TEST_P(CropCanvasTest, TheInsideIsMovedAndEdgesAndCornersAreDragged) {
  select({40, 40, 100, 100});
  drag({50, 50}, {60, 65});
  EXPECT_EQ(crop(), QRect(60, 70, 100, 100));
  drag({80, 60}, {120, 300});
  EXPECT_EQ(crop(), QRect(60, 70, 180, 100));
  drag({30, 35}, {20, 45}, Qt::AltModifier);
  EXPECT_EQ(crop(), QRect(40, 90, 200, 80));
  EXPECT_EQ(steps(), 4);
}

TEST_P(CropCanvasTest, InTheWholePictureADragDraws) {
  select({0, 0, 800, 600});
  drag({120, 130}, {140, 140}, Qt::AltModifier);
  EXPECT_EQ(crop(), QRect(240, 260, 40, 20));
}

TEST_P(CropCanvasTest, EdgesGoToWindowsAndAltHoldsThemOff) {
  // The first window's left edge is at 50 points; 4 points are near, 9 are not.
  drag({54, 20}, {20, 40});
  EXPECT_EQ(crop().right() + 1, 100);
  select({});
  drag({59, 20}, {20, 30});
  EXPECT_EQ(crop().right() + 1, 118);
  select({});
  drag({54, 20}, {20, 40}, Qt::AltModifier);
  EXPECT_EQ(crop().right() + 1, 108);
}

TEST_P(CropCanvasTest, SixPointsAreFewerPixelsWhereThePictureIsLarge) {
  zoomIn();
  const QPointF line = canvas.zoom().viewAt({300, 250});
  drag(line + QPointF(-9, 0), line + QPointF(-60, 60));
  EXPECT_NE(crop().right() + 1, 300);
  select({});
  drag(line + QPointF(-5, 0), line + QPointF(-60, 60));
  EXPECT_EQ(crop().right() + 1, 300);
}

TEST_P(CropCanvasTest, AltCountsAsSoonAsItIsPressed) {
  press({20, 20});
  move({54, 40});
  EXPECT_EQ(crop().right() + 1, 100);
  key(QEvent::KeyPress, Qt::Key_Alt, Qt::AltModifier);
  EXPECT_EQ(crop().right() + 1, 108);
  key(QEvent::KeyRelease, Qt::Key_Alt);
  EXPECT_EQ(crop().right() + 1, 100);
  release({54, 40});
}

TEST_P(CropCanvasTest, EscapeTakesADragBackAndIsOtherwiseTheSheets) {
  select({40, 40, 100, 100});
  press({45, 45});
  move({100, 100});
  EXPECT_NE(crop(), QRect(40, 40, 100, 100));
  QTest::keyClick(&canvas, Qt::Key_Escape);
  EXPECT_EQ(crop(), QRect(40, 40, 100, 100));
  EXPECT_TRUE(sheet.keys.empty());
  move({150, 150});
  release({150, 150});
  EXPECT_EQ(crop(), QRect(40, 40, 100, 100)) << "the button that is still held drags nothing";
  EXPECT_EQ(steps(), 1);
  QTest::keyClick(&canvas, Qt::Key_Escape);
  EXPECT_EQ(sheet.keys, std::vector<int>{Qt::Key_Escape});
}

TEST_P(CropCanvasTest, TwoClicksPickAWindowInOneStep) {
  select({40, 40, 20, 20});
  clickTwice({110, 110});
  EXPECT_EQ(crop(), QRect(200, 200, 100, 100)) << "the smallest";
  ASSERT_TRUE(now().candidate());
  EXPECT_EQ(now().candidate()->number, 2);
  EXPECT_EQ(steps(), 2);
  clickTwice({60, 60});
  ASSERT_TRUE(now().candidate());
  EXPECT_EQ(now().candidate()->number, 1);
  EXPECT_EQ(steps(), 3);
  history.undo();
  ASSERT_TRUE(now().candidate());
  EXPECT_EQ(now().candidate()->number, 2);
}

TEST_P(CropCanvasTest, TwoClicksOnTheWindowThatIsSelectedAreNoStep) {
  clickTwice({110, 110});
  ASSERT_EQ(steps(), 1);
  clickTwice({110, 110});
  EXPECT_EQ(steps(), 1);
  EXPECT_FALSE(history.canRedo());
}

TEST_P(CropCanvasTest, TwoClicksWhereNoWindowIsAreTwoClicks) {
  select({300, 300, 20, 20});
  clickTwice({20, 280});
  EXPECT_TRUE(now().isEmpty());
  EXPECT_EQ(canvas.zoom().mode(), PictureZoom::Mode::fit);
}

TEST_P(CropCanvasTest, AnUndoRightAfterAClickTakesItBack) {
  select({40, 40, 100, 100});
  click({350, 250});
  history.undo();
  canvas.followHistory();
  EXPECT_EQ(crop(), QRect(40, 40, 100, 100));
  executor.advance(seconds(2));
  EXPECT_TRUE(history.canRedo());
}

TEST_P(CropCanvasTest, AClickThatIsEndedIsAStepOfItsOwn) {
  select({40, 40, 100, 100});
  click({350, 250});
  canvas.endStep();
  select({0, 0, 10, 10});
  EXPECT_EQ(steps(), 3);
}

TEST_P(CropCanvasTest, AnUndoWhileAKeyIsHeldEndsItsStep) {
  select({40, 40, 100, 100});
  key(QEvent::KeyPress, Qt::Key_Right);
  key(QEvent::KeyPress, Qt::Key_Right);
  history.undo();
  canvas.followHistory();
  EXPECT_EQ(crop().x(), 40);
  key(QEvent::KeyPress, Qt::Key_Right);
  key(QEvent::KeyPress, Qt::Key_Right);
  EXPECT_EQ(steps(), 2) << "another one, until the key goes up";
  key(QEvent::KeyRelease, Qt::Key_Right);
}

TEST_P(CropCanvasTest, AChangeFromElsewhereEndsADrag) {
  press({20, 20});
  move({30, 30});
  history.undo();
  canvas.followHistory();
  move({35, 38});
  release({35, 38});
  EXPECT_TRUE(now().isEmpty());
}

TEST_P(CropCanvasTest, ThePointerTellsWhatItWouldDo) {
  EXPECT_EQ(cursorAt({20, 20}), Qt::CrossCursor);
  select({40, 40, 200, 200});
  EXPECT_EQ(cursorAt({60, 60}), Qt::SizeAllCursor);
  EXPECT_EQ(cursorAt({20, 60}), Qt::SizeHorCursor);
  EXPECT_EQ(cursorAt({60, 121}), Qt::SizeVerCursor);
  EXPECT_EQ(cursorAt({121, 119}), Qt::SizeFDiagCursor);
  EXPECT_EQ(cursorAt({300, 200}), Qt::CrossCursor);
  zoomIn();
  EXPECT_EQ(canvas.cursor().shape(), Qt::CrossCursor) << "the hand needs a key or another button";
}

// --- How it is moved and zoomed ---

TEST_P(CropCanvasTest, SpaceAndTheMiddleButtonAreTheHand) {
  zoomIn();
  const QPointF before = canvas.zoom().place().topLeft();
  key(QEvent::KeyPress, Qt::Key_Space);
  EXPECT_EQ(canvas.cursor().shape(), Qt::OpenHandCursor);
  press({200, 150});
  EXPECT_EQ(canvas.cursor().shape(), Qt::ClosedHandCursor);
  move({180, 160});
  // The picture stays on whole pixels of the screen.
  EXPECT_NEAR(canvas.zoom().place().x(), before.x() - 20, 0.5);
  EXPECT_NEAR(canvas.zoom().place().y(), before.y() + 10, 0.5);
  release({180, 160});
  key(QEvent::KeyRelease, Qt::Key_Space);
  EXPECT_EQ(canvas.cursor().shape(), Qt::CrossCursor);
  press({200, 150}, {}, Qt::MiddleButton);
  move({220, 140});
  release({220, 140});
  EXPECT_EQ(canvas.zoom().place().topLeft(), before);
  EXPECT_TRUE(now().isEmpty());
  EXPECT_EQ(changes, 0);
  EXPECT_TRUE(sheet.keys.empty());
}

TEST_P(CropCanvasTest, TheWheelMovesThePictureAndWithItADrag) {
  zoomIn();
  const QPointF before = canvas.zoom().place().topLeft();
  turn({0, -120});
  turn({0, -120}, Qt::ShiftModifier);
  EXPECT_EQ(canvas.zoom().place().topLeft(), before + QPointF(-60, -60));
  press({100, 100});
  move({200, 200});
  const QRect drawn = crop();
  turn({0, -120});
  EXPECT_EQ(crop().topLeft(), drawn.topLeft());
  EXPECT_GT(crop().height(), drawn.height());
  release({200, 200});
}

TEST_P(CropCanvasTest, KeysZoomAsInEveryPicture) {
  QTest::keyClick(&canvas, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_EQ(canvas.zoom().mode(), PictureZoom::Mode::scale);
  QTest::keyClick(&canvas, Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(canvas.zoom().mode(), PictureZoom::Mode::fit);
}

TEST_P(CropCanvasTest, BeyondItsEdgeTheViewScrollsAlong) {
  zoomIn();
  press({200, 150});
  move({395, 170});
  const QPointF before = canvas.zoom().place().topLeft();
  const QRect drawn = crop();
  executor.advance(seconds(0.2));
  EXPECT_LT(canvas.zoom().place().x(), before.x());
  EXPECT_EQ(canvas.zoom().place().y(), before.y());
  EXPECT_GT(crop().width(), drawn.width());
  executor.advance(seconds(30));
  EXPECT_EQ(crop().right(), 799) << "to the picture's end";
  EXPECT_EQ(executor.pendingDelays(), 0U);
  move({200, 150});
  release({200, 150});
}

TEST_P(CropCanvasTest, WhatFitsDoesNotScroll) {
  press({200, 150});
  move({420, 150});
  EXPECT_EQ(executor.pendingDelays(), 0U);
  release({420, 150});
}

TEST_P(CropCanvasTest, ADragThatEndsDoesNotScrollOn) {
  zoomIn();
  press({200, 150});
  move({395, 150});
  release({395, 150});
  const QRectF place = canvas.zoom().place();
  executor.advance(seconds(1));
  EXPECT_EQ(canvas.zoom().place(), place);
}

// --- By keys ---

TEST_P(CropCanvasTest, ArrowsMoveAndWithAltChangeTheSize) {
  select({10, 10, 50, 40});
  QTest::keyClick(&canvas, Qt::Key_Right);
  EXPECT_EQ(crop(), QRect(11, 10, 50, 40));
  QTest::keyClick(&canvas, Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(crop(), QRect(11, 20, 50, 40));
  QTest::keyClick(&canvas, Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(crop(), QRect(11, 20, 50, 41));
  QTest::keyClick(&canvas, Qt::Key_Left, Qt::AltModifier | Qt::ShiftModifier);
  EXPECT_EQ(crop(), QRect(11, 20, 40, 41));
  QTest::keyClick(&canvas, Qt::Key_Up, Qt::KeypadModifier);
  EXPECT_EQ(crop(), QRect(11, 19, 40, 41));
  EXPECT_EQ(changes, 5);
  EXPECT_TRUE(sheet.keys.empty());
}

TEST_P(CropCanvasTest, ShiftWithAnArrowStopsAtTheEdge) {
  select({3, 10, 50, 40});
  QTest::keyClick(&canvas, Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(crop(), QRect(0, 10, 50, 40));
}

TEST_P(CropCanvasTest, OtherKeysGoOnToTheSheet) {
  select({10, 10, 50, 40});
  QTest::keyClick(&canvas, Qt::Key_Left, Qt::ControlModifier);
  QTest::keyClick(&canvas, Qt::Key_Left, Qt::MetaModifier | Qt::ShiftModifier);
  QTest::keyClick(&canvas, Qt::Key_Return);
  QTest::keyClick(&canvas, Qt::Key_A);
  QTest::keyClick(&canvas, Qt::Key_Home);
  EXPECT_EQ(sheet.keys, (std::vector<int>{Qt::Key_Left, Qt::Key_Left, Qt::Key_Return, Qt::Key_A, Qt::Key_Home}));
  EXPECT_EQ(crop(), QRect(10, 10, 50, 40));
}

TEST_P(CropCanvasTest, WithNothingSelectedArrowsAreStillTheCanvass) {
  QTest::keyClick(&canvas, Qt::Key_Left);
  EXPECT_TRUE(now().isEmpty());
  EXPECT_EQ(changes, 0);
  EXPECT_TRUE(sheet.keys.empty());
}

TEST_P(CropCanvasTest, AShortcutDoesNotTakeItsArrowsAway) {
  select({10, 10, 50, 40});
  int taken = 0;
  QShortcut shortcut(QKeySequence(Qt::ALT | Qt::Key_Right), &sheet);
  QObject::connect(&shortcut, &QShortcut::activated, &sheet, [&] { ++taken; });
  QTest::keyClick(&canvas, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(taken, 0);
  EXPECT_EQ(crop().width(), 51);
}

TEST_P(CropCanvasTest, AHeldKeyIsOneStep) {
  select({10, 10, 50, 40});
  for (int i = 0; i < 8; ++i) key(QEvent::KeyPress, Qt::Key_Right, {}, i > 0 && i % 2 == 0);
  key(QEvent::KeyRelease, Qt::Key_Right, {}, true);
  key(QEvent::KeyPress, Qt::Key_Right, {}, true);
  key(QEvent::KeyRelease, Qt::Key_Right);
  EXPECT_EQ(crop().x(), 19);
  EXPECT_EQ(steps(), 2);
  QTest::keyClick(&canvas, Qt::Key_Right);
  EXPECT_EQ(steps(), 3);
}

TEST_P(CropCanvasTest, AKeyThatIsHeldWhenTheFocusGoesIsOver) {
  select({10, 10, 50, 40});
  key(QEvent::KeyPress, Qt::Key_Right);
  other.setFocus();
  EXPECT_FALSE(history.isInStep());
  canvas.setFocus();
  QTest::keyClick(&canvas, Qt::Key_Right);
  EXPECT_EQ(steps(), 3);
}

TEST_P(CropCanvasTest, ArrowsWaitForADrag) {
  select({40, 40, 100, 100});
  press({45, 45});
  move({50, 50});
  const QRect dragged = crop();
  QTest::keyClick(&canvas, Qt::Key_Right);
  EXPECT_EQ(crop(), dragged);
  release({50, 50});
  EXPECT_EQ(steps(), 2);
}

// --- How it looks ---

TEST_P(CropCanvasTest, WhatIsNotSelectedIsDimmed) {
  const QColor bright = shot().pixelColor(kView.width() / 2, 30);
  select({300, 300, 200, 200});
  const QImage image = shot();
  const auto colourAt = [&](int x, int y, int pixelsBefore = 0) {
    return image.pixelColor(qRound(x * GetParam()) - pixelsBefore, qRound(y * GetParam()));
  };
  EXPECT_LT(colourAt(20, 20).lightness(), bright.lightness() * 2 / 3);
  EXPECT_EQ(colourAt(200, 200), bright);
  EXPECT_EQ(colourAt(150, 172, 1), QColor(Qt::white)) << "the crop's edge";
  EXPECT_EQ(colourAt(150, 172), bright) << "on a whole pixel";
}

TEST_P(CropCanvasTest, TheWindowUnderThePointerIsOutlinedUntilItGoes) {
  const QImage plain = shot();
  move({110, 110});
  const QImage hovered = shot();
  EXPECT_NE(hovered, plain);
  move({60, 60});
  EXPECT_NE(shot(), hovered) << "another window";
  move({20, 20});
  EXPECT_EQ(shot(), plain);
  move({60, 60});
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&canvas, &leave);
  EXPECT_EQ(shot(), plain);
}

TEST_P(CropCanvasTest, WhileAnEdgeIsDraggedItIsSeenInALoupe) {
  select({40, 40, 100, 100});
  press({70, 50});
  move({90, 50});
  const QImage dragging = shot();
  release({90, 50});
  move({398, 298});
  const QImage after = shot();
  EXPECT_NE(dragging, after);
  press({60, 50});
  move({61, 50}, Qt::AltModifier);
  move({60, 50}, Qt::AltModifier);
  EXPECT_EQ(shot(), after) << "what is moved has no point to look at";
  release({60, 50});
}

TEST_P(CropCanvasTest, NothingOfADragStaysInWhatIsKeptOfThePicture) {
  canvas.zoomIn();
  settle();
  const QImage before = shot();
  drag({20, 20}, {100, 100}, Qt::AltModifier);
  EXPECT_NE(shot(), before);
  select({});
  move({2, 2});
  EXPECT_EQ(shot(), before);
}

/// A move of the pointer paints little, and that is enough. Also with QT_SCALE_FACTOR.
TEST(CropCanvas, WhatIsPaintedInPartsIsTheSameAsTheWhole) {
  const uint32_t seed = std::random_device()();
  SCOPED_TRACE(::testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const auto number = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
  ManualExecutor executor;
  CropHistory history(CropSelection({800, 600}, {{UUID::createUuid(), 1, {100, 100, 500, 400}, {}},
                                                 {UUID::createUuid(), 2, {200, 200, 100, 100}, {}}}));
  CropCanvas canvas(executor, history, nullptr);
  canvas.resize(kView);
  QImage image(800, 600, QImage::Format_RGB32);
  image.fill(QColor(200, 210, 220));
  canvas.setPicture(image, image.size());
  canvas.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&canvas));
  const auto settle = [&] {
    QCoreApplication::processEvents();
    executor.advance(seconds(1));
    QEvent request(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(&canvas, &request);
  };
  const auto isHeld = [&] { return history.isInStep(); };
  for (int i = 0; i < 150; ++i) {
    const QPointF at(number(-20, 420), number(-20, 320));
    const int choice = number(0, 9);
    const auto modifiers = number(0, 1) ? Qt::AltModifier : Qt::NoModifier;
    const auto type = choice == 0   ? QEvent::MouseButtonPress
                      : choice == 1 ? QEvent::MouseButtonRelease
                                    : QEvent::MouseMove;
    const auto button = choice <= 1 ? Qt::LeftButton : Qt::NoButton;
    QMouseEvent event(type, at, canvas.mapToGlobal(at), button, isHeld() ? Qt::LeftButton : Qt::NoButton, modifiers);
    QCoreApplication::sendEvent(&canvas, &event);
    if (choice == 2) QTest::keyClick(&canvas, Qt::Key_Right, Qt::ShiftModifier);
    if (choice == 3 && number(0, 3) == 0) number(0, 1) ? canvas.zoomIn() : canvas.fit();
    if (choice == 4 && number(0, 3) == 0) canvas.setLocked(!canvas.isLocked());
    settle();
    const auto* screen = dynamic_cast<QImage*>(canvas.backingStore()->paintDevice());
    ASSERT_NE(screen, nullptr);
    const QImage shown = screen->convertToFormat(QImage::Format_RGB32);
    const QImage whole = canvas.grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QRect both = shown.rect() & whole.rect();
    for (int y = 0; y <= both.bottom(); ++y) {
      for (int x = 0; x <= both.right(); ++x) {
        ASSERT_EQ(shown.pixel(x, y), whole.pixel(x, y)) << x << ' ' << y << ", event " << i;
      }
    }
  }
}

// --- Locked ---

TEST_P(CropCanvasTest, LockedItOnlyShows) {
  select({40, 40, 100, 100});
  canvas.setLocked(true);
  drag({45, 45}, {100, 100});
  drag({200, 200}, {250, 250});
  clickTwice({110, 110});
  QTest::keyClick(&canvas, Qt::Key_Right);
  EXPECT_EQ(crop(), QRect(40, 40, 100, 100));
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(cursorAt({45, 45}), Qt::ArrowCursor);
  zoomIn();
  const QPointF before = canvas.zoom().place().topLeft();
  turn({0, -120});
  EXPECT_NE(canvas.zoom().place().topLeft(), before);
  canvas.setLocked(false);
  QTest::keyClick(&canvas, Qt::Key_Right);
  EXPECT_EQ(crop(), QRect(41, 40, 100, 100));
}

TEST_P(CropCanvasTest, LockedWhileSomethingIsDraggedItStaysWhereItIs) {
  press({20, 20});
  move({38, 38});
  canvas.setLocked(true);
  move({30, 30});
  release({30, 30});
  EXPECT_EQ(crop(), QRect(40, 40, 36, 36));
}

TEST_P(CropCanvasTest, WithoutItsPictureNothingCanBeDrawn) {
  canvas.clear();
  drag({20, 20}, {100, 100});
  EXPECT_TRUE(now().isEmpty());
  canvas.setPicture(QImage(10, 10, QImage::Format_RGB32), {10, 10});
  drag({20, 20}, {100, 100});
  EXPECT_TRUE(now().isEmpty()) << "of another picture";
}

TEST_P(CropCanvasTest, GoneInTheMiddleOfADragItHarmsNobody) {
  zoomIn();
  press({200, 150});
  move({395, 150});
  delete &canvas;
  executor.advance(seconds(1));
  EXPECT_EQ(executor.pendingDelays(), 0U);
}

}  // namespace
}  // namespace quillmere::testing
