#include "inbox/QuickLookWindow.h"

#include <gtest/gtest.h>
#include <QtGui/QAccessible>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <set>

#include "controls/PictureCanvas.h"
#include "fakes/DecodedPictures.h"
#include "foundation/Localized.h"
#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;
using Content = QuickLookWindow::Content;

class PaintCounter final : public QObject {
 public:
  explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }
  int paints = 0;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paints;
    return false;
  }
};

class QuickLookWindowTest : public ::testing::Test {
 protected:
  QuickLookWindowTest() {
    inbox.resize(400, 300);
    inbox.show();
    look.onStep = [this](int step) { steps.push_back(step); };
    look.onClosed = [this] { ++closings; };
  }
  FileURL write(std::string_view name, QColor color, QSize size = {400, 300}) {
    const FileURL url = folder.file(name);
    EXPECT_TRUE(plain(size, color).save(url.displayPath(), "PNG"));
    return url;
  }
  static QImage plain(QSize size, QColor color) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
  }
  static Content content(const FileURL& url, const QImage& preview = {}) {
    Content content;
    content.url = url;
    content.identity = identity(1);
    content.title = url.displayName();
    content.preview = preview;
    return content;
  }
  static FileIdentity identity(uint64_t file) { return {"volume", file, Date{1000}, 10}; }
  /// Shown, with all that follows.
  void show(const Content& content) {
    look.show(content);
    executor.advance(seconds(1));
    EXPECT_TRUE(QTest::qWaitForWindowActive(&look));
    executor.advance(seconds(1));
  }
  PictureCanvas& canvas() const {
    for (QWidget* child : look.findChildren<QWidget*>()) {
      if (auto* found = dynamic_cast<PictureCanvas*>(child)) return *found;
    }
    throw std::logic_error("no canvas");
  }
  QColor middle() { return canvas().grab().toImage().pixelColor(canvas().rect().center()); }
  QPushButton* button(const QString& name) const {
    for (auto* found : look.findChildren<QPushButton*>()) {
      if (found->accessibleName() == name) return found;
    }
    return nullptr;
  }
  QString texts() const {
    QStringList all;
    for (const auto* label : look.findChildren<QLabel*>()) {
      if (label->isVisible()) all << label->text();
    }
    return all.join(QStringLiteral(" | "));
  }
  /// Questions whether a file is evicted, since the last call: one before each reading.
  int reads() { return std::exchange(looks, 0); }

  TemporaryFolder folder;
  ManualExecutor executor;
  std::set<std::string> evicted;
  int looks = 0;
  ThumbnailLoader loader{executor, testing::decodedPictures(), [this](const FileURL& url) {
                           ++looks;
                           return evicted.contains(url.path());
                         }};
  QWidget inbox;
  QuickLookWindow look{loader, executor, &inbox};
  std::vector<int> steps;
  int closings = 0;
};

// --- Opening ---

/// Two frames of a screen at 60 Hz.
constexpr Duration kTwoFrames = std::chrono::milliseconds(33);

TEST_F(QuickLookWindowTest, OpensWithinTwoFramesWithThePreviewWhateverTheDiskDoes) {
  const FileURL url = write("a.png", Qt::blue, {1200, 900});
  const PaintCounter counter(canvas());
  executor.holdBackground();
  look.show(content(url, plain({400, 300}, Qt::red)));
  EXPECT_EQ(reads(), 0) << "nothing is even looked at on this thread";
  executor.advance(QuickLookWindow::kLongestWait);
  static_assert(QuickLookWindow::kLongestWait < kTwoFrames / 2);
  ASSERT_TRUE(look.isVisible());
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&look));
  EXPECT_EQ(counter.paints, 1);
  const QImage screen = look.screen()->grabWindow(look.winId()).toImage();
  const QPoint middleOfPicture = canvas().geometry().center();
  EXPECT_EQ(screen.pixelColor(middleOfPicture), QColor(Qt::red)) << "the first frame has the picture";
  EXPECT_EQ(reads(), 0);
  executor.runHeldBackground();
  EXPECT_EQ(middle(), QColor(Qt::blue));
}

TEST_F(QuickLookWindowTest, OpensAsSoonAsItKnowsTheSize) {
  const FileURL url = write("a.png", Qt::blue, {1200, 900});
  look.show(content(url, plain({400, 300}, Qt::red)));
  EXPECT_FALSE(look.isVisible());
  executor.drain();
  EXPECT_TRUE(look.isVisible());
  EXPECT_EQ(executor.instant(), Instant{}) << "no time has gone by";
  EXPECT_EQ(canvas().zoom().picture(), QSize(1200, 900));
}

TEST_F(QuickLookWindowTest, WithoutAPreviewItOpensAllTheSame) {
  executor.holdBackground();
  look.show(content(write("a.png", Qt::blue)));
  executor.advance(QuickLookWindow::kLongestWait);
  EXPECT_TRUE(look.isVisible());
  EXPECT_FALSE(canvas().hasPicture());
  executor.runHeldBackground();
  EXPECT_EQ(middle(), QColor(Qt::blue));
}

TEST_F(QuickLookWindowTest, IsAWindowOfItsOwnThatHoldsUpNobody) {
  show(content(write("a.png", Qt::blue)));
  EXPECT_TRUE(look.isWindow());
  EXPECT_EQ(look.windowModality(), Qt::NonModal);
  EXPECT_EQ(look.windowHandle()->transientParent(), inbox.windowHandle());
  EXPECT_EQ(look.windowTitle(), QStringLiteral("a.png"));
}

// --- Sharpening ---

TEST_F(QuickLookWindowTest, AllPixelsTakeThePlaceOfThePreviewWhereTheyAre) {
  executor.holdBackground();
  look.show(content(write("a.png", Qt::blue, {1200, 900}), plain({400, 300}, Qt::red)));
  executor.advance(QuickLookWindow::kLongestWait);
  EXPECT_EQ(middle(), QColor(Qt::red));
  const QRect place = look.geometry();
  executor.runHeldBackground();
  EXPECT_TRUE(canvas().hasFullPicture());
  EXPECT_EQ(middle(), QColor(Qt::blue));
  EXPECT_TRUE(look.geometry().contains(place)) << "the size was only estimated";
}

TEST_F(QuickLookWindowTest, ZoomedMeanwhileItStaysSo) {
  const FileURL url = write("a.png", Qt::blue, {1200, 900});
  show(content(write("b.png", Qt::green)));
  // What was stepped to rests before it is read, with its size known.
  Content next = content(url, plain({400, 300}, Qt::red));
  next.identity = identity(2);
  look.show(next);
  executor.drain();
  ASSERT_FALSE(canvas().hasFullPicture());
  canvas().showRealSize();
  const QRectF before = canvas().zoom().place();
  EXPECT_EQ(before.width() * canvas().devicePixelRatioF(), 1200);
  executor.advance(seconds(1));
  ASSERT_TRUE(canvas().hasFullPicture());
  EXPECT_EQ(canvas().zoom().place(), before);
}

TEST_F(QuickLookWindowTest, WhatCannotBeReadHasASymbolAlsoAfterAPreview) {
  writeFile(folder.file("a.png"), "no picture");
  show(content(folder.file("a.png"), plain({400, 300}, Qt::red)));
  EXPECT_EQ(canvas().missing(), MissingPicture::unreadable);
  EXPECT_FALSE(canvas().hasPicture());
  EXPECT_FALSE(button(localized("Real Size"))->isEnabled());
  EXPECT_EQ(texts(), QStringLiteral("a.png"));
  show(content(folder.file("gone.png")));
  EXPECT_EQ(canvas().missing(), MissingPicture::unreadable);
}

TEST_F(QuickLookWindowTest, AnEvictedFileIsNotRead) {
  Content elsewhere = content(write("a.png", Qt::blue));
  elsewhere.hasImageData = false;
  show(elsewhere);
  EXPECT_EQ(reads(), 0);
  EXPECT_TRUE(look.isVisible());
  EXPECT_EQ(canvas().missing(), MissingPicture::notDownloaded);
  EXPECT_EQ(canvas().toolTip(), adviceFor(MissingPicture::notDownloaded));
  EXPECT_EQ(canvas().accessibleDescription(), canvas().toolTip());
  elsewhere.hasImageData = true;
  show(elsewhere);
  EXPECT_EQ(middle(), QColor(Qt::blue)) << "it has come back";
  EXPECT_EQ(canvas().toolTip(), QString());
}

TEST_F(QuickLookWindowTest, AFileFoundToBeEvictedIsNotReadEither) {
  const FileURL url = write("a.png", Qt::blue);
  evicted.insert(url.path());
  show(content(url));
  EXPECT_EQ(canvas().missing(), MissingPicture::notDownloaded);
}

TEST_F(QuickLookWindowTest, AReplacedFileIsReadAnewAndTheEarlierPictureStaysUntilThen) {
  Content picture = content(write("a.png", Qt::blue));
  show(picture);
  reads();
  show(picture);
  EXPECT_EQ(reads(), 0) << "the same file";
  write("a.png", Qt::green);
  picture.identity = identity(2);
  executor.holdBackground();
  look.show(picture);
  executor.advance(seconds(1));
  EXPECT_EQ(middle(), QColor(Qt::blue));
  executor.runHeldBackground();
  EXPECT_EQ(middle(), QColor(Qt::green));
}

TEST_F(QuickLookWindowTest, ARenamedFileKeepsItsPictureAndItsPlace) {
  show(content(write("a.png", Qt::blue, {1200, 900})));
  canvas().showRealSize();
  const QRectF place = canvas().zoom().place();
  show(content(write("renamed.png", Qt::blue, {1200, 900})));
  EXPECT_EQ(look.windowTitle(), QStringLiteral("renamed.png"));
  EXPECT_EQ(canvas().zoom().place(), place);
}

// --- Stepping ---

TEST_F(QuickLookWindowTest, ArrowKeysStep) {
  show(content(write("a.png", Qt::blue)));
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Right, Qt::Key_Up, Qt::Key_Left}) QTest::keyClick(&look, key);
  EXPECT_EQ(steps, (std::vector<int>{1, 1, -1, -1}));
  button(localized("Real Size"))->setFocus();
  QTest::keyClick(button(localized("Real Size")), Qt::Key_Right);
  EXPECT_EQ(steps.size(), 5U) << "also where a button has the keyboard";
  EXPECT_TRUE(button(localized("Real Size"))->hasFocus());
}

TEST_F(QuickLookWindowTest, AnotherScreenshotNeverShowsTheEarlierPicture) {
  show(content(write("a.png", Qt::blue)));
  executor.holdBackground();
  Content next = content(write("b.png", Qt::green));
  next.identity = identity(2);
  look.show(next);
  EXPECT_EQ(look.windowTitle(), QStringLiteral("a.png")) << "for less than a frame all stays as it was";
  EXPECT_EQ(middle(), QColor(Qt::blue));
  executor.advance(QuickLookWindow::kLongestWait);
  EXPECT_EQ(look.windowTitle(), QStringLiteral("b.png"));
  EXPECT_FALSE(canvas().hasPicture());
  executor.advance(seconds(1));
  executor.runHeldBackground();
  EXPECT_EQ(middle(), QColor(Qt::green));
}

TEST_F(QuickLookWindowTest, WhileAKeyIsHeldOnlyTheLastIsReadWhole) {
  show(content(write("a.png", Qt::blue)));
  reads();
  constexpr int kSteps = 20;
  for (int i = 0; i < kSteps; ++i) {
    Content next = content(write(std::to_string(i) + ".png", Qt::green), plain({40, 30}, Qt::red));
    next.identity = identity(static_cast<uint64_t>(i) + 2);
    look.show(next);
    executor.advance(std::chrono::milliseconds(30));
    EXPECT_EQ(middle(), QColor(Qt::red)) << "each is seen";
  }
  EXPECT_EQ(reads(), kSteps) << "the header of each";
  executor.advance(QuickLookWindow::kRest);
  EXPECT_EQ(reads(), 1);
  EXPECT_EQ(middle(), QColor(Qt::green));
}

TEST_F(QuickLookWindowTest, WhatComesLateForAnotherIsDropped) {
  executor.holdBackground();
  look.show(content(write("a.png", Qt::blue)));
  executor.advance(seconds(1));
  Content next = content(write("b.png", Qt::green));
  next.identity = identity(2);
  look.show(next);
  executor.runHeldBackground();
  executor.advance(seconds(1));
  executor.runHeldBackground();
  EXPECT_EQ(middle(), QColor(Qt::green));
  EXPECT_EQ(look.windowTitle(), QStringLiteral("b.png"));
}

// --- Where it is ---

TEST_F(QuickLookWindowTest, HasThePicturesRealSizeOrMostOfTheScreen) {
  const QRect screen = inbox.screen()->availableGeometry();
  show(content(write("a.png", Qt::blue, {600, 420})));
  EXPECT_EQ(canvas().size(), QSize(600, 420));
  EXPECT_EQ(look.geometry().center(), screen.center());
  Content next = content(write("b.png", Qt::green, {1200, 900}));
  next.identity = identity(2);
  show(next);
  EXPECT_LE(look.height(), qRound(screen.height() * 0.85) + 1);
  EXPECT_TRUE(screen.contains(look.geometry()));
  EXPECT_NEAR(look.geometry().center().y(), screen.center().y(), 1);
}

TEST_F(QuickLookWindowTest, MovedByThePersonItStaysAboutItsNewCentre) {
  show(content(write("a.png", Qt::blue, {430, 310})));
  look.move(look.pos() + QPoint(37, 21));
  const QPoint centre = look.geometry().center();
  for (int i = 0; i < 6; ++i) {
    Content next = content(write(std::to_string(i) + ".png", Qt::green, {431 + 12 * i, 311 + 7 * i}));
    next.identity = identity(static_cast<uint64_t>(i) + 2);
    show(next);
    EXPECT_LE((look.geometry().center() - centre).manhattanLength(), 2);
    EXPECT_EQ(canvas().width(), 431 + 12 * i);
  }
}

TEST_F(QuickLookWindowTest, ResizedByThePersonItKeepsThatSizeUntilItCloses) {
  show(content(write("a.png", Qt::blue, {600, 420})));
  look.resize(555, 444);
  Content next = content(write("b.png", Qt::green, {500, 400}));
  next.identity = identity(2);
  show(next);
  EXPECT_EQ(look.size(), QSize(555, 444));
  look.close();
  show(next);
  EXPECT_EQ(canvas().size(), QSize(500, 400));
}

// --- What it tells ---

TEST_F(QuickLookWindowTest, TellsNameSizeAndScale) {
  show(content(write("a.png", Qt::blue, {600, 420})));
  EXPECT_EQ(texts(), QStringLiteral("a.png | 600 × 420 | 100%"));
  canvas().zoomIn();
  EXPECT_EQ(texts(), QStringLiteral("a.png | 600 × 420 | 125%"));
  QTest::mouseClick(button(localized("Fit to Window")), Qt::LeftButton);
  EXPECT_EQ(canvas().zoom().mode(), PictureZoom::Mode::fit);
  canvas().zoomIn();
  QTest::mouseClick(button(localized("Real Size")), Qt::LeftButton);
  EXPECT_EQ(canvas().zoom().scale(), 1);
}

TEST_F(QuickLookWindowTest, WhatIsOnlyEstimatedIsNotTold) {
  executor.holdBackground();
  look.show(content(write("a.png", Qt::blue, {1200, 900}), plain({400, 300}, Qt::red)));
  executor.advance(QuickLookWindow::kLongestWait);
  EXPECT_EQ(texts(), QStringLiteral("a.png"));
  executor.runHeldBackground();
  EXPECT_TRUE(texts().contains(QStringLiteral("1200 × 900")));
}

TEST_F(QuickLookWindowTest, ScreenReadersHearWhatIsShown) {
  show(content(write("a.png", Qt::blue, {600, 420})));
  QAccessibleInterface* picture = QAccessible::queryAccessibleInterface(&canvas());
  EXPECT_EQ(picture->role(), QAccessible::Graphic);
  EXPECT_EQ(picture->text(QAccessible::Name), localized("Screenshot preview"));
  EXPECT_EQ(picture->text(QAccessible::Description), QStringLiteral("a.png, 600 × 420 pixels"));
}

TEST_F(QuickLookWindowTest, OpeningElsewhereIsOfferedWhereItCanBeDone) {
  show(content(write("a.png", Qt::blue)));
  EXPECT_FALSE(button(localized("Open in Image Viewer"))->isVisible());
  look.close();
  int openings = 0;
  look.onOpenElsewhere = [&] { ++openings; };
  show(content(write("a.png", Qt::blue)));
  QTest::mouseClick(button(localized("Open in Image Viewer")), Qt::LeftButton);
  EXPECT_EQ(openings, 1);
}

// --- Closing ---

TEST_F(QuickLookWindowTest, KeysCloseItAndNothingOfThePictureIsKept) {
  const FileURL url = write("a.png", Qt::blue);
  const std::vector<std::pair<Qt::Key, Qt::KeyboardModifiers>> keys{{Qt::Key_Space, Qt::NoModifier},
                                                                    {Qt::Key_Escape, Qt::NoModifier},
                                                                    {Qt::Key_W, Qt::ControlModifier},
                                                                    {Qt::Key_Y, Qt::ControlModifier}};
  for (const auto& [key, modifiers] : keys) {
    show(content(url));
    ASSERT_TRUE(canvas().hasPicture());
    closings = 0;
    QTest::keyClick(&canvas(), key, modifiers);
    EXPECT_FALSE(look.isVisible());
    EXPECT_EQ(closings, 1);
    EXPECT_FALSE(canvas().hasPicture());
  }
}

TEST_F(QuickLookWindowTest, ItGoesWithTheInbox) {
  show(content(write("a.png", Qt::blue)));
  inbox.close();
  EXPECT_FALSE(look.isVisible());
  EXPECT_EQ(closings, 1);
  EXPECT_FALSE(canvas().hasPicture());
}

TEST_F(QuickLookWindowTest, ClosedWhileItLoadsItStaysClosed) {
  executor.holdBackground();
  look.show(content(write("a.png", Qt::blue)));
  executor.advance(QuickLookWindow::kLongestWait);
  look.close();
  executor.runHeldBackground();
  executor.advance(seconds(1));
  EXPECT_FALSE(look.isVisible());
  EXPECT_FALSE(canvas().hasPicture());
}

TEST_F(QuickLookWindowTest, GoneWhileItLoadsItHarmsNobody) {
  executor.holdBackground();
  {
    QuickLookWindow other(loader, executor, nullptr);
    other.show(content(write("a.png", Qt::blue)));
    executor.advance(QuickLookWindow::kLongestWait);
  }
  executor.runHeldBackground();
  executor.advance(seconds(1));
}

}  // namespace
}  // namespace quillmere
