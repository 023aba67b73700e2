#include "controls/ScreenshotThumbnail.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <set>

#include "controls/Theme.h"
#include "fakes/DecodedPictures.h"
#include "foundation/Localized.h"
#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;
using Content = ScreenshotThumbnail::Content;

/// On a screen with as many pixels to a point as the test says.
class ThumbnailOnAnyScreen final : public ScreenshotThumbnail {
 public:
  using ScreenshotThumbnail::ScreenshotThumbnail;
  qreal displayScale = 1;

 protected:
  int metric(PaintDeviceMetric metric) const override {
    if (metric == PdmDevicePixelRatio) return qCeil(displayScale);
    if (metric == PdmDevicePixelRatioScaled) return qRound(displayScale * devicePixelRatioFScale());
    return ScreenshotThumbnail::metric(metric);
  }
};

class ScreenshotThumbnailTest : public ::testing::Test {
 protected:
  ScreenshotThumbnailTest() {
    view.resize(200, 100);
    // A gray that no colour of the theme is taken for.
    setWindowColour(QColor(40, 90, 60));
    open();
  }
  void open() {
    view.setVisible(true);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
  }
  void setWindowColour(const QColor& colour) {
    QPalette palette;
    palette.setColor(QPalette::Window, colour);
    view.setPalette(palette);
  }
  FileURL write(std::string_view name, QColor colour, QSize size = {400, 200}) {
    const FileURL url = folder.file(name);
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    EXPECT_TRUE(image.save(url.displayPath(), "PNG"));
    return url;
  }
  static Content content(const FileURL& url) {
    Content content;
    content.url = url;
    content.maxPointSize = 200;
    content.accessibilityLabel = QStringLiteral("Screenshot preview");
    return content;
  }
  static FileIdentity identity(uint64_t file) { return {"volume", file, Date{1000}, 10}; }

  void show(const Content& content) {
    view.show(content);
    executor.drain();
  }
  QColor colourAt(int x, int y) {
    const QImage shot = view.grab().toImage();
    return shot.pixelColor(qRound(x * view.displayScale), qRound(y * view.displayScale));
  }
  bool isUnreadable() const {
    return view.outcome() && std::holds_alternative<ThumbnailLoader::Unreadable>(*view.outcome());
  }
  bool isNotDownloaded() const {
    return view.outcome() && std::holds_alternative<ThumbnailLoader::NotDownloaded>(*view.outcome());
  }
  /// Its loads, since the last call, each of which asks first whether the file is evicted.
  int loads() { return std::exchange(looks, 0); }

  TemporaryFolder folder;
  ManualExecutor executor;
  std::set<std::string> evicted;
  int looks = 0;
  ThumbnailLoader loader{executor, testing::decodedPictures(), [this](const FileURL& url) {
                           ++looks;
                           return evicted.contains(url.path());
                         }};
  ThumbnailOnAnyScreen view{loader, nullptr};
};

TEST_F(ScreenshotThumbnailTest, ShowsThePicture) {
  show(content(write("a.png", Qt::red)));
  EXPECT_EQ(view.image().size(), QSize(200, 100));
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red));
}

TEST_F(ScreenshotThumbnailTest, LoadsInTheBackground) {
  executor.holdBackground();
  show(content(write("a.png", Qt::red)));
  EXPECT_EQ(loads(), 0) << "it isn't even looked whether the file is evicted";
  EXPECT_FALSE(view.outcome());
  executor.runHeldBackground();
  EXPECT_TRUE(view.outcome());
}

TEST_F(ScreenshotThumbnailTest, LoadsOnceForOneKey) {
  const Content picture = content(write("a.png", Qt::red));
  for (int i = 0; i < 3; ++i) show(picture);
  view.repaint();
  EXPECT_EQ(loads(), 1);
}

TEST_F(ScreenshotThumbnailTest, LoadsAnewForEachPartOfTheKey) {
  const FileURL url = write("a.png", Qt::red);
  Content picture = content(url);
  picture.identity = identity(1);
  show(picture);
  EXPECT_EQ(loads(), 1);
  picture.identity->size = 11;
  show(picture);
  EXPECT_EQ(loads(), 1);
  picture.maxPointSize = 100;
  show(picture);
  EXPECT_EQ(loads(), 1);
  picture.crop = QRectF(10, 10, 50, 50);
  show(picture);
  EXPECT_GE(loads(), 1);
  picture.crop->setWidth(50.000000000001);
  show(picture);
  EXPECT_GE(loads(), 1) << "almost equal is not equal";
  picture.url = write("b.png", Qt::red);
  show(picture);
  EXPECT_GE(loads(), 1);
}

TEST_F(ScreenshotThumbnailTest, OneRectangleToldFromTwoCornersIsOneCrop) {
  Content picture = content(write("a.png", Qt::red));
  picture.crop = QRectF(10, 10, 50, 50);
  show(picture);
  EXPECT_GE(loads(), 1);
  picture.crop = QRectF(60, 60, -50, -50);
  show(picture);
  EXPECT_EQ(loads(), 0);
}

TEST_F(ScreenshotThumbnailTest, HowItLooksIsNoneOfTheKey) {
  Content picture = content(write("a.png", Qt::red));
  show(picture);
  loads();
  picture.cornerRadius = 12;
  picture.alignment = Qt::AlignLeft;
  picture.accessibilityLabel = QStringLiteral("Another");
  show(picture);
  EXPECT_EQ(loads(), 0);
}

TEST_F(ScreenshotThumbnailTest, ItsPixelsAreItsPointsOnThisScreen) {
  view.displayScale = 1.5;
  show(content(write("a.png", Qt::red)));
  EXPECT_EQ(view.image().size(), QSize(300, 150));
}

TEST_F(ScreenshotThumbnailTest, OnAnotherScreenItLoadsAnew) {
  show(content(write("a.png", Qt::red, {1000, 500})));
  EXPECT_EQ(view.image().size(), QSize(200, 100));
  view.displayScale = 2;
  view.repaint();
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red)) << "until then as large as it was";
  executor.drain();
  EXPECT_EQ(view.image().size(), QSize(400, 200));
}

TEST_F(ScreenshotThumbnailTest, HiddenItLoadsNothing) {
  view.setVisible(false);
  show(content(write("a.png", Qt::red)));
  EXPECT_EQ(loads(), 0);
  open();
  executor.drain();
  EXPECT_EQ(view.image().size(), QSize(200, 100));
}

TEST_F(ScreenshotThumbnailTest, HidingCancelsWhatLoadsAndShowingStartsItAgain) {
  executor.holdBackground();
  show(content(write("a.png", Qt::red)));
  view.setVisible(false);
  executor.runHeldBackground();
  EXPECT_FALSE(view.outcome());
  EXPECT_EQ(loader.cachedBytes(), 0) << "stopped before it decoded";
  open();
  executor.drain();
  EXPECT_FALSE(view.image().isNull());
}

TEST_F(ScreenshotThumbnailTest, HidingAndShowingLoadsNothingAgain) {
  show(content(write("a.png", Qt::red)));
  loads();
  view.setVisible(false);
  open();
  executor.drain();
  EXPECT_EQ(loads(), 0);
}

TEST_F(ScreenshotThumbnailTest, ChangedAndChangedBackWhileHiddenItHasItsPicture) {
  const Content picture = content(write("a.png", Qt::red));
  show(picture);
  view.setVisible(false);
  show(content(write("b.png", Qt::blue)));
  show(picture);
  open();
  executor.drain();
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red));
}

TEST_F(ScreenshotThumbnailTest, ANewKeyCancelsTheLoadBefore) {
  executor.holdBackground();
  show(content(write("a.png", Qt::red)));
  show(content(write("b.png", Qt::blue)));
  executor.runHeldBackground();
  EXPECT_EQ(view.image().pixelColor(5, 5), QColor(Qt::blue));
  EXPECT_EQ(loader.cachedBytes(), 200 * 100 * 4) << "the first was never decoded";
}

TEST_F(ScreenshotThumbnailTest, GoneWhileItLoadsItHarmsNobody) {
  executor.holdBackground();
  {
    ThumbnailOnAnyScreen other(loader, nullptr);
    other.setVisible(true);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
    other.show(content(write("a.png", Qt::red)));
  }
  executor.runHeldBackground();
  EXPECT_EQ(loader.cachedBytes(), 0);
}

// --- What is shown meanwhile ---

TEST_F(ScreenshotThumbnailTest, AReplacedFilesEarlierPictureStaysUntilTheNewOne) {
  Content picture = content(write("a.png", Qt::red));
  picture.identity = identity(1);
  show(picture);
  executor.holdBackground();
  write("a.png", Qt::blue);
  picture.identity = identity(2);
  show(picture);
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red));
  executor.runHeldBackground();
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::blue));
}

TEST_F(ScreenshotThumbnailTest, ARenamedFilesPictureStays) {
  Content picture = content(write("a.png", Qt::red));
  picture.identity = identity(1);
  show(picture);
  executor.holdBackground();
  picture.url = folder.file("renamed.png");
  show(picture);
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red));
}

TEST_F(ScreenshotThumbnailTest, AnotherScreenshotNeverShowsTheEarlierPicture) {
  Content picture = content(write("a.png", Qt::red));
  picture.identity = identity(1);
  show(picture);
  executor.holdBackground();
  picture.url = write("b.png", Qt::blue);
  picture.identity = identity(2);
  show(picture);
  EXPECT_TRUE(view.image().isNull());
  EXPECT_NE(colourAt(100, 50), QColor(Qt::red));
}

TEST_F(ScreenshotThumbnailTest, APictureThatTurnsUnreadableHasASymbol) {
  Content picture = content(write("a.png", Qt::red));
  show(picture);
  writeFile(picture.url, "no picture");
  picture.identity = identity(2);
  show(picture);
  EXPECT_TRUE(isUnreadable());
  EXPECT_NE(colourAt(100, 50), QColor(Qt::red));
}

// --- Symbols in place of a picture ---

TEST_F(ScreenshotThumbnailTest, AnEvictedFileSaysHowToBringItBack) {
  const FileURL url = write("a.png", Qt::red);
  evicted.insert(url.path());
  show(content(url));
  EXPECT_TRUE(isNotDownloaded());
  const QString why =
      localized("The image isn’t on this Mac. Choose Download, or open the screenshot in Finder, to bring it back.");
  EXPECT_EQ(view.toolTip(), why);
  evicted.clear();
  Content again = content(url);
  again.identity = identity(1);
  show(again);
  EXPECT_EQ(view.toolTip(), QString());
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red));
}

TEST_F(ScreenshotThumbnailTest, KnownToBeElsewhereItIsNotEvenLookedFor) {
  Content picture = content(write("a.png", Qt::red));
  picture.hasImageData = false;
  show(picture);
  EXPECT_EQ(loads(), 0);
  EXPECT_TRUE(isNotDownloaded());
  EXPECT_FALSE(view.toolTip().isEmpty());
  picture.hasImageData = true;
  show(picture);
  EXPECT_EQ(loads(), 1);
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red));
}

TEST_F(ScreenshotThumbnailTest, AnUnreadableFileHasAPlainSymbol) {
  writeFile(folder.file("a.png"), "no picture");
  show(content(folder.file("a.png")));
  EXPECT_TRUE(isUnreadable());
  EXPECT_EQ(view.toolTip(), QString());
  const QImage plain = view.grab().toImage();
  Content notHere = content(folder.file("a.png"));
  notHere.hasImageData = false;
  show(notHere);
  EXPECT_NE(view.grab().toImage(), plain);
}

TEST_F(ScreenshotThumbnailTest, WhatWouldCostTooMuchSaysSo) {
  // A small picture, and twenty megabytes that are nothing of it.
  write("a.png", Qt::red);
  testing::appendToFile(folder.file("a.png"), std::string(20'000'000, 'x'));
  show(content(folder.file("a.png")));
  EXPECT_EQ(view.toolTip(), localized("The picture would take too much memory or time to open."));
  write("b.png", Qt::red);
  show(content(folder.file("b.png")));
  EXPECT_EQ(view.toolTip(), QString());
}

TEST_F(ScreenshotThumbnailTest, ToolTipsOfItsOwnerStay) {
  view.setToolTip(QStringLiteral("Mine"));
  show(content(write("a.png", Qt::red)));
  EXPECT_EQ(view.toolTip(), QStringLiteral("Mine"));
}

TEST_F(ScreenshotThumbnailTest, SymbolsFollowTheColoursOfTheDesktop) {
  Content picture = content(folder.file("a.png"));
  picture.hasImageData = false;
  show(picture);
  setWindowColour(Qt::white);
  const QImage light = view.grab().toImage();
  setWindowColour(QColor(20, 20, 20));
  EXPECT_NE(view.grab().toImage(), light);
}

TEST_F(ScreenshotThumbnailTest, NoSymbolIsTooLargeForItsPlace) {
  Content picture = content(folder.file("a.png"));
  picture.hasImageData = false;
  for (const QSize size : {QSize(64, 44), QSize(20, 20), QSize(3, 3), QSize(1, 1), QSize(408, 96)}) {
    view.resize(size);
    show(picture);
    EXPECT_FALSE(view.grab().isNull());
  }
}

// --- Where it is ---

TEST_F(ScreenshotThumbnailTest, APictureOfAnotherShapeStandsInTheMiddle) {
  show(content(write("a.png", Qt::red, {400, 400})));
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red));
  EXPECT_EQ(colourAt(60, 50), QColor(Qt::red));
  EXPECT_EQ(colourAt(40, 50), QColor(40, 90, 60));
  EXPECT_EQ(colourAt(160, 50), QColor(40, 90, 60));
}

TEST_F(ScreenshotThumbnailTest, ItsOwnerSaysAtWhichEdgeItStands) {
  Content picture = content(write("a.png", Qt::red, {400, 400}));
  picture.alignment = Qt::AlignLeft | Qt::AlignVCenter;
  show(picture);
  EXPECT_EQ(colourAt(5, 50), QColor(Qt::red));
  EXPECT_EQ(colourAt(110, 50), QColor(40, 90, 60));
}

TEST_F(ScreenshotThumbnailTest, ASmallPictureIsNotEnlarged) {
  show(content(write("a.png", Qt::red, {40, 20})));
  EXPECT_EQ(colourAt(100, 50), QColor(Qt::red));
  EXPECT_EQ(colourAt(70, 50), QColor(40, 90, 60));
}

TEST_F(ScreenshotThumbnailTest, ItsCornersAreRound) {
  Content picture = content(write("a.png", Qt::red));
  picture.cornerRadius = 20;
  show(picture);
  EXPECT_EQ(colourAt(1, 1), QColor(40, 90, 60));
  EXPECT_EQ(colourAt(30, 30), QColor(Qt::red));
}

/// Every second column dark: any blur would turn them gray.
TEST_F(ScreenshotThumbnailTest, PixelsOfAPictureThatFitsArePixelsOfTheScreen) {
  QImage stripes(120, 60, QImage::Format_RGB32);
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 120; ++x) stripes.setPixelColor(x, y, x % 2 ? Qt::white : Qt::black);
  }
  const FileURL url = folder.file("a.png");
  ASSERT_TRUE(stripes.save(url.displayPath(), "PNG"));
  for (const qreal scale : {1.0, 1.25, 1.5, 2.0}) {
    view.displayScale = scale;
    show(content(url));
    executor.drain();
    QImage shot(qCeil(200 * scale), qCeil(100 * scale), QImage::Format_RGB32);
    shot.setDevicePixelRatio(scale);
    shot.fill(Qt::green);
    view.render(&shot);
    for (int x = shot.width() / 2 - 20; x < shot.width() / 2 + 20; ++x) {
      const int level = qGreen(shot.pixel(x, shot.height() / 2));
      EXPECT_TRUE(level == 0 || level == 255) << level << " at scale " << scale;
      EXPECT_NE(level, qGreen(shot.pixel(x + 1, shot.height() / 2)));
    }
  }
}

TEST_F(ScreenshotThumbnailTest, ItsCropIsShown) {
  QImage halves(400, 200, QImage::Format_RGB32);
  halves.fill(Qt::red);
  for (int y = 0; y < 200; ++y) {
    for (int x = 200; x < 400; ++x) halves.setPixelColor(x, y, Qt::blue);
  }
  const FileURL url = folder.file("a.png");
  ASSERT_TRUE(halves.save(url.displayPath(), "PNG"));
  Content picture = content(url);
  picture.crop = QRectF(200, 0, 200, 200);
  show(picture);
  EXPECT_EQ(view.image().size(), QSize(200, 200));
  EXPECT_EQ(colourAt(60, 50), QColor(Qt::blue));
}

TEST_F(ScreenshotThumbnailTest, ScreenReadersHearALabelledGraphic) {
  show(content(write("a.png", Qt::red)));
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&view);
  ASSERT_TRUE(interface);
  EXPECT_EQ(interface->role(), QAccessible::Graphic);
  EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Screenshot preview"));
}

TEST_F(ScreenshotThumbnailTest, ScreenReadersHearWhereTheImageIs) {
  Content picture = content(folder.file("a.png"));
  picture.hasImageData = false;
  show(picture);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&view)->text(QAccessible::Description), view.toolTip());
}

}  // namespace
}  // namespace quillmere
