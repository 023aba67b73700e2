#include "controls/PictureCanvas.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtGui/QNativeGestureEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>
#include <set>

#include "foundation/ManualExecutor.h"

namespace quillmere {
namespace {

using Mode = PictureZoom::Mode;

constexpr QSize kView(400, 200);
const QColor kGround(40, 90, 60);

class CanvasOnAnyScreen : public PictureCanvas {
 public:
  using PictureCanvas::PictureCanvas;
  qreal displayScale = 1;
  int paints = 0;

 protected:
  int metric(PaintDeviceMetric metric) const override {
    if (metric == PdmDevicePixelRatio) return qCeil(displayScale);
    if (metric == PdmDevicePixelRatioScaled) return qRound(displayScale * devicePixelRatioFScale());
    return PictureCanvas::metric(metric);
  }
  void paintEvent(QPaintEvent* event) override {
    ++paints;
    PictureCanvas::paintEvent(event);
  }
};

class PictureCanvasTest : public ::testing::Test {
 protected:
  PictureCanvasTest() {
    QPalette palette;
    palette.setColor(QPalette::Window, kGround);
    canvas.setPalette(palette);
    canvas.resize(kView);
    canvas.onZoomChanged = [this] { ++changes; };
    canvas.show();
    canvas.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&canvas));
  }
  static QImage plain(QSize size, QColor color = Qt::red) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
  }
  /// Each column is darker or lighter than its neighbours.
  static QImage stripes(QSize size) {
    QImage image = plain(size, Qt::white);
    QPainter painter(&image);
    for (int x = 0; x < size.width(); x += 2) painter.fillRect(x, 0, 1, size.height(), Qt::black);
    return image;
  }
  void show(const QImage& image) {
    canvas.setPicture(image, image.size());
    settle();
  }
  void settle() {
    canvas.grab();
    executor.advance(seconds(1));
    canvas.grab();
  }
  QImage shot() {
    QImage image(qCeil(canvas.width() * canvas.displayScale), qCeil(canvas.height() * canvas.displayScale),
                 QImage::Format_RGB32);
    image.setDevicePixelRatio(canvas.displayScale);
    canvas.render(&image);
    return image;
  }
  QColor colourAt(int x, int y) { return shot().pixelColor(x, y); }
  void turn(int angle, Qt::KeyboardModifiers modifiers = {}, quint64 time = 0, QPointF at = {100, 50}) {
    turn(QPoint(0, angle), modifiers, time, at);
  }
  void turn(QPoint angle, Qt::KeyboardModifiers modifiers, quint64 time, QPointF at) {
    QWheelEvent event(at, canvas.mapToGlobal(at), {}, angle, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(&canvas, &event);
  }
  qreal scale() const { return canvas.zoom().scale(); }
  QPointF corner() const { return canvas.zoom().place().topLeft(); }

  ManualExecutor executor;
  CanvasOnAnyScreen canvas{executor, nullptr};
  int changes = 0;
};

TEST_F(PictureCanvasTest, APictureFitsOnACalmGround) {
  show(plain({400, 400}));
  EXPECT_EQ(scale(), 0.5);
  EXPECT_EQ(colourAt(200, 100), QColor(Qt::red));
  EXPECT_EQ(colourAt(50, 100), kGround);
  EXPECT_EQ(colourAt(350, 100), kGround);
}

TEST_F(PictureCanvasTest, AnEmptyCanvasIsAllGround) {
  EXPECT_EQ(shot().pixelColor(200, 100), kGround);
  show(plain({400, 400}));
  canvas.clear();
  EXPECT_FALSE(canvas.hasPicture());
  EXPECT_EQ(shot().pixelColor(200, 100), kGround);
  canvas.setPicture({}, {});
  EXPECT_FALSE(canvas.hasPicture());
}

TEST_F(PictureCanvasTest, AMissingPictureHasItsSymbol) {
  const QImage empty = shot();
  canvas.clear(MissingPicture::unreadable);
  const QImage unreadable = shot();
  EXPECT_NE(unreadable, empty);
  canvas.clear(MissingPicture::notDownloaded);
  EXPECT_NE(shot(), unreadable);
  show(plain({400, 200}));
  EXPECT_FALSE(canvas.missing());
  EXPECT_EQ(colourAt(200, 100), QColor(Qt::red));
}

TEST_F(PictureCanvasTest, PaintingLeadsToNoMorePainting) {
  show(plain({1000, 500}));
  QCoreApplication::processEvents();
  canvas.paints = 0;
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  EXPECT_EQ(canvas.paints, 0);
}

// --- A smaller copy that stands for the picture ---

TEST_F(PictureCanvasTest, APreviewStandsForAllPixels) {
  canvas.setPicture(plain({100, 50}), {4000, 2000});
  EXPECT_EQ(canvas.zoom().picture(), QSize(4000, 2000));
  EXPECT_EQ(scale(), 0.1);
  EXPECT_EQ(canvas.zoom().place(), QRectF(0, 0, 400, 200));
  EXPECT_EQ(colourAt(5, 5), QColor(Qt::red));
  EXPECT_FALSE(canvas.hasFullPicture());
}

TEST_F(PictureCanvasTest, AllPixelsInThePlaceOfThePreviewChangeNeitherScaleNorPlace) {
  canvas.setPicture(plain({100, 50}), {4000, 2000});
  turn(240, Qt::ControlModifier);
  const QRectF place = canvas.zoom().place();
  const int before = changes;
  show(plain({4000, 2000}, Qt::blue));
  EXPECT_EQ(canvas.zoom().place(), place);
  EXPECT_EQ(changes, before);
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::blue));
  EXPECT_TRUE(canvas.hasFullPicture());
}

TEST_F(PictureCanvasTest, ThePreviewIsSeenUntilTheSmallerCopiesOfAllPixelsAreThere) {
  canvas.setPicture(plain({400, 200}, Qt::red), {4000, 2000});
  executor.holdBackground();
  canvas.setPicture(plain({4000, 2000}, Qt::blue), {4000, 2000});
  executor.drain();
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red)) << "drawn from ten times as many pixels there would be noise";
  executor.runHeldBackground();
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::blue));
}

TEST_F(PictureCanvasTest, WhatIsStillWorkedOnForAnotherPictureIsDropped) {
  executor.holdBackground();
  canvas.setPicture(plain({4000, 2000}, Qt::blue), {4000, 2000});
  canvas.grab();
  executor.drain();
  ASSERT_GT(executor.heldBackground(), 0U);
  canvas.setPicture(plain({4000, 2000}, Qt::green), {4000, 2000});
  executor.runHeldBackground();
  settle();
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::green));
  executor.holdBackground();
  canvas.setPicture(plain({4000, 2000}, Qt::blue), {4000, 2000});
  canvas.clear();
  executor.runHeldBackground();
  EXPECT_FALSE(canvas.hasPicture());
}

TEST_F(PictureCanvasTest, GoneWhileItWorksItHarmsNobody) {
  executor.holdBackground();
  {
    PictureCanvas other(executor, nullptr);
    other.resize(kView);
    other.setPicture(plain({4000, 2000}), {4000, 2000});
    other.grab();
    executor.advance(seconds(1));
  }
  executor.runHeldBackground();
  executor.advance(seconds(1));
}

TEST_F(PictureCanvasTest, ScaledDownStripesAreGrayAndNoPattern) {
  show(stripes({4000, 2000}));
  const QImage image = shot();
  for (int x = 20; x < 380; ++x) ASSERT_NEAR(qGreen(image.pixel(x, 100)), 128, 12) << x;
}

/// Whatever copies it was made from, what fits is drawn pixel by pixel.
TEST_F(PictureCanvasTest, WhatFitsIsAsSharpAsTheScreen) {
  // The stripes are as wide as pixels of the screen.
  QImage image = plain({1200, 600}, Qt::white);
  QPainter painter(&image);
  for (int x = 0; x < 1200; x += 6) painter.fillRect(x, 0, 3, 600, Qt::black);
  painter.end();
  show(image);
  const QImage screen = shot();
  for (int x = 20; x < 380; ++x) {
    const int level = qGreen(screen.pixel(x, 100));
    EXPECT_TRUE(level < 50 || level > 205) << level;
    EXPECT_GT(std::abs(level - qGreen(screen.pixel(x + 1, 100))), 150);
  }
}

TEST_F(PictureCanvasTest, AtRealSizePixelsArePixelsOfTheScreen) {
  for (const qreal displayScale : {1.0, 1.25, 1.5, 2.0}) {
    canvas.displayScale = displayScale;
    canvas.clear();
    show(stripes({2001, 1001}));
    canvas.showRealSize();
    settle();
    const QImage image = shot();
    for (int x = 100; x < 300; ++x) {
      const int level = qGreen(image.pixel(x, 100));
      ASSERT_TRUE(level == 0 || level == 255) << level << " at " << displayScale;
      ASSERT_NE(level, qGreen(image.pixel(x + 1, 100))) << displayScale;
    }
  }
}

TEST_F(PictureCanvasTest, FromFourTimesOnPixelsAreSquares) {
  show(stripes({1000, 500}));
  canvas.showRealSize();
  const auto countOfLevels = [this] {
    std::set<int> levels;
    const QImage image = shot();
    for (int x = 0; x < 400; ++x) levels.insert(qGreen(image.pixel(x, 100)));
    return levels.size();
  };
  EXPECT_EQ(countOfLevels(), 2U);
  while (scale() * 1.25 < 4) canvas.zoomIn();
  EXPECT_GT(countOfLevels(), 2U) << "smooth";
  canvas.zoomIn();
  EXPECT_GE(scale(), 4);
  EXPECT_EQ(countOfLevels(), 2U);
}

TEST_F(PictureCanvasTest, UnderWhatIsTranslucentThereAreCheckers) {
  QImage image({400, 200}, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  show(image);
  const QImage screen = shot();
  EXPECT_NE(screen.pixelColor(4, 4), screen.pixelColor(12, 4));
  EXPECT_EQ(screen.pixelColor(4, 4), screen.pixelColor(12, 12));
  EXPECT_NE(screen.pixelColor(4, 4), kGround);
}

// --- How it is zoomed ---

TEST_F(PictureCanvasTest, CtrlAndTheWheelZoomAtThePointer) {
  show(plain({4000, 2000}));
  const QPointF pixel = canvas.zoom().pictureAt({100, 50});
  turn(120, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(scale(), 0.125);
  EXPECT_EQ(canvas.zoom().mode(), Mode::scale);
  EXPECT_NEAR(canvas.zoom().viewAt(pixel).x(), 100, 1);
  EXPECT_NEAR(canvas.zoom().viewAt(pixel).y(), 50, 1);
  EXPECT_EQ(changes, 2) << "one for the picture itself";
  turn(-120, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(scale(), 0.1);
}

TEST_F(PictureCanvasTest, AWheelThatGoesSidewaysDoesNotZoom) {
  show(plain({4000, 2000}));
  turn({120, 0}, Qt::ControlModifier, 0, {100, 50});
  EXPECT_EQ(canvas.zoom().mode(), Mode::fit);
  canvas.setWheelZooms(true);
  turn({-120, 0}, {}, 10'000, {100, 50});
  EXPECT_EQ(canvas.zoom().mode(), Mode::fit);
}

TEST_F(PictureCanvasTest, TwoFingersZoomAtTheirPlace) {
  show(plain({4000, 2000}));
  const QPointF pixel = canvas.zoom().pictureAt({100, 50});
  const auto* device = QPointingDevice::primaryPointingDevice();
  QNativeGestureEvent gesture(Qt::ZoomNativeGesture, device, 2, {100, 50}, {100, 50},
                              canvas.mapToGlobal(QPointF(100, 50)), 0.5, {});
  QCoreApplication::sendEvent(&canvas, &gesture);
  EXPECT_DOUBLE_EQ(scale(), 0.15);
  EXPECT_NEAR(canvas.zoom().viewAt(pixel).x(), 100, 1);
  QNativeGestureEvent turning(Qt::RotateNativeGesture, device, 2, {100, 50}, {100, 50},
                              canvas.mapToGlobal(QPointF(100, 50)), 0.5, {});
  QCoreApplication::sendEvent(&canvas, &turning);
  EXPECT_DOUBLE_EQ(scale(), 0.15);
}

TEST_F(PictureCanvasTest, KeysZoom) {
  show(plain({4000, 2000}));
  QTest::keyClick(&canvas, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(scale(), 0.125);
  QTest::keyClick(&canvas, Qt::Key_Equal, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(scale(), 0.15625);
  QTest::keyClick(&canvas, Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(scale(), 0.125);
  QTest::keyClick(&canvas, Qt::Key_1, Qt::ControlModifier);
  EXPECT_EQ(scale(), 1);
  QTest::keyClick(&canvas, Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(canvas.zoom().mode(), Mode::fit);
}

TEST_F(PictureCanvasTest, AStepStopsAtRealSize) {
  show(plain({700, 350}));
  const qreal fitting = scale();
  ASSERT_GT(fitting, 0.5);
  canvas.zoomIn();
  canvas.zoomIn();
  EXPECT_LT(scale(), 1);
  canvas.zoomIn();
  EXPECT_EQ(scale(), 1);
  canvas.zoomIn();
  EXPECT_EQ(scale(), 1.25);
  for (int i = 0; i < 30; ++i) canvas.zoomIn();
  EXPECT_EQ(scale(), PictureZoom::kLargestScale);
}

TEST_F(PictureCanvasTest, ADoubleClickGoesBetweenFittingAndRealSize) {
  show(plain({4000, 2000}));
  const QPointF pixel = canvas.zoom().pictureAt({300, 150});
  QTest::mouseDClick(&canvas, Qt::LeftButton, {}, {300, 150});
  EXPECT_EQ(scale(), 1);
  EXPECT_NEAR(canvas.zoom().viewAt(pixel).x(), 300, 10) << "at the pointer";
  QTest::mouseDClick(&canvas, Qt::LeftButton, {}, {300, 150});
  EXPECT_EQ(canvas.zoom().mode(), Mode::fit);
  QTest::mouseDClick(&canvas, Qt::RightButton, {}, {300, 150});
  EXPECT_EQ(canvas.zoom().mode(), Mode::fit);
}

TEST_F(PictureCanvasTest, FittingFollowsTheWindow) {
  show(plain({4000, 2000}));
  canvas.resize(800, 400);
  EXPECT_EQ(scale(), 0.2);
  canvas.displayScale = 2;
  canvas.grab();
  EXPECT_EQ(scale(), 0.4) << "also onto another screen";
}

// --- How it is moved ---

TEST_F(PictureCanvasTest, TheHandMovesThePicture) {
  show(plain({4000, 2000}));
  EXPECT_NE(canvas.cursor().shape(), Qt::OpenHandCursor) << "there is nothing to move";
  canvas.showRealSize();
  EXPECT_EQ(canvas.cursor().shape(), Qt::OpenHandCursor);
  const QPointF before = corner();
  QTest::mousePress(&canvas, Qt::LeftButton, {}, {100, 100});
  EXPECT_EQ(canvas.cursor().shape(), Qt::ClosedHandCursor);
  QTest::mouseMove(&canvas, {130, 90});
  EXPECT_EQ(corner(), before + QPointF(30, -10));
  QTest::mouseRelease(&canvas, Qt::LeftButton, {}, {130, 90});
  EXPECT_EQ(canvas.cursor().shape(), Qt::OpenHandCursor);
  QTest::mouseMove(&canvas, {10, 10});
  EXPECT_EQ(corner(), before + QPointF(30, -10));
}

TEST_F(PictureCanvasTest, TheWheelMovesThePicture) {
  show(plain({4000, 2000}));
  turn(120);
  EXPECT_EQ(scale(), 0.1) << "nothing to move, and the wheel was not told to zoom";
  canvas.showRealSize();
  const QPointF before = corner();
  turn(-120);
  EXPECT_EQ(corner(), before + QPointF(0, -60));
  turn(-120, Qt::ShiftModifier);
  EXPECT_EQ(corner(), before + QPointF(-60, -60));
}

TEST_F(PictureCanvasTest, WithNothingToMoveTheWheelMayZoomAndGoesOnDoingSoInOneTurn) {
  canvas.setWheelZooms(true);
  show(plain({4000, 2000}));
  turn(120, {}, 10'000);
  turn(120, {}, 10'300);
  turn(120, {}, 10'600);
  EXPECT_NEAR(scale(), 0.1953125, 1e-9);
  const QPointF before = corner();
  turn(120, {}, 12'000);
  EXPECT_NEAR(scale(), 0.1953125, 1e-9);
  EXPECT_NE(corner(), before) << "another turn moves what is larger than the view";
}

// --- For drawing over it ---

class DrawingCanvas final : public CanvasOnAnyScreen {
 public:
  explicit DrawingCanvas(Executor& executor) : CanvasOnAnyScreen(executor, nullptr, Purpose::drawing) {}
  int marked = 0;
  int painted = 0;
  int placed = 0;

 protected:
  void paintMarks(QPainter& painter, const QRect&, const QRect&) override {
    ++marked;
    painter.fillRect(0, 0, 3, 3, Qt::yellow);
  }
  void paintOver(QPainter& painter, const QRect&, const QRect&) override {
    painter.fillRect(painted++, 50, 1, 1, Qt::magenta);
  }
  void placeChanged() override { ++placed; }
};

class DrawingCanvasTest : public PictureCanvasTest {
 protected:
  DrawingCanvasTest() { drawing.resize(kView); }
  void show(const QImage& image) {
    drawing.setPicture(image, image.size());
    settle();
  }
  void settle() {
    drawing.grab();
    executor.advance(seconds(1));
    drawing.grab();
  }
  void zoomTo(qreal to) {
    while (drawing.zoom().scale() < to * 0.999) drawing.zoomIn();
    settle();
  }
  static qsizetype bytes(int width, int height) { return qsizetype{4} * width * height; }

  DrawingCanvas drawing{executor};
};

TEST_F(DrawingCanvasTest, WhatIsSeenIsPaintedOnceAndWhatIsOverItAnew) {
  show(stripes({1000, 500}));
  zoomTo(0.6);
  drawing.marked = 0;
  drawing.painted = 0;
  const QImage image = drawing.grab().toImage();
  EXPECT_EQ(drawing.grab().toImage().pixelColor(1, 50), QColor(Qt::magenta));
  EXPECT_EQ(drawing.marked, 0);
  EXPECT_EQ(drawing.painted, 2);
  EXPECT_EQ(image.pixelColor(1, 1), QColor(Qt::yellow));
  drawing.zoomIn();
  drawing.grab();
  EXPECT_EQ(drawing.marked, 1) << "another place";
}

TEST_F(DrawingCanvasTest, ItLooksAsOneForLooking) {
  const QImage image = stripes({1000, 500});
  show(image);
  PictureCanvasTest::show(image);
  for (const qreal to : {0.4, 0.6, 1.0, 3.0, 8.0}) {
    zoomTo(to);
    while (canvas.zoom().scale() < to * 0.999) canvas.zoomIn();
    PictureCanvasTest::settle();
    const QImage one = drawing.grab().toImage();
    const QImage other = canvas.grab().toImage();
    for (int y = 60; y < kView.height() - 1; y += 7) {
      for (int x = 1; x < kView.width() - 1; ++x) ASSERT_EQ(one.pixel(x, y), other.pixel(x, y)) << to << ' ' << x;
    }
  }
}

TEST_F(DrawingCanvasTest, ItHoldsLittleBesideThePicture) {
  // It fits at 0.55 of its size, as a large screenshot does on a fine screen.
  const qsizetype picture = bytes(728, 364);
  show(plain({728, 364}));
  EXPECT_EQ(drawing.heldBytes(), picture + bytes(400, 200)) << "the copy of the size in which it is seen";
  for (const qreal to : {0.7, 1.0, 2.0, 8.0}) {
    zoomTo(to);
    EXPECT_LE(drawing.heldBytes(), picture + picture * 2 / 5) << to;
  }
  drawing.clear();
  EXPECT_EQ(drawing.heldBytes(), 0);
}

TEST_F(DrawingCanvasTest, WhatShinesThroughIsNotHeldTwice) {
  QImage image({728, 364}, QImage::Format_ARGB32_Premultiplied);
  image.fill(QColor(0, 0, 200, 100));
  show(image);
  settle();
  EXPECT_EQ(drawing.heldBytes(), bytes(728, 364) + bytes(400, 200));
  EXPECT_FALSE(executor.nextDelay()) << "and isn't made again and again";
  drawing.resize(300, 150);
  settle();
  EXPECT_EQ(drawing.heldBytes(), bytes(728, 364) + 2 * bytes(300, 150)) << "little may be";
}

TEST_F(DrawingCanvasTest, ASmallerCopyIsThereWhileItIsNeeded) {
  show(stripes({4000, 2000}));
  zoomTo(0.2);
  // Drawn from the picture itself the lines would be a pattern.
  const QImage image = drawing.grab().toImage();
  for (int x = 20; x < 380; ++x) ASSERT_NEAR(qGreen(image.pixel(x, 100)), 128, 12) << x;
  EXPECT_GE(drawing.heldBytes(), bytes(4000, 2000) + bytes(1000, 500));
  zoomTo(0.8);
  EXPECT_EQ(drawing.heldBytes(), bytes(4000, 2000) + bytes(400, 200) * 2) << "the fitting copy, and what is seen";
}

TEST_F(DrawingCanvasTest, ItTellsOfEveryOtherPlace) {
  show(plain({1000, 500}));
  drawing.placed = 0;
  drawing.showRealSize();
  EXPECT_EQ(drawing.placed, 1);
  drawing.showRealSize();
  EXPECT_EQ(drawing.placed, 1);
}

TEST_F(DrawingCanvasTest, WhatShinesThroughIsPaintedAnewInOtherColours) {
  QImage image({1000, 500}, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  show(image);
  const QColor before = drawing.grab().toImage().pixelColor(100, 100);
  QPalette dark;
  dark.setColor(QPalette::Window, QColor(20, 20, 20));
  drawing.setPalette(dark);
  EXPECT_NE(drawing.grab().toImage().pixelColor(100, 100), before);
}

TEST_F(PictureCanvasTest, ScreenReadersHearAGraphic) {
  canvas.setAccessibleName(QStringLiteral("Screenshot preview"));
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&canvas);
  EXPECT_EQ(interface->role(), QAccessible::Graphic);
  EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Screenshot preview"));
}

}  // namespace
}  // namespace quillmere
