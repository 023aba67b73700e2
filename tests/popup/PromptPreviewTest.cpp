#include "popup/PromptPreview.h"

#include <QtGui/private/qhighdpiscaling_p.h>
#include <gtest/gtest.h>
#include <QtTest/QTest>

#include "controls/ScreenshotThumbnail.h"
#include "fakes/DecodedPictures.h"
#include "foundation/ManualExecutor.h"
#include "popup/PromptPreviewActions.h"
#include "popup/PromptPreviewNoticeView.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

constexpr int kInset = 8;

class PromptPreviewTest : public ::testing::Test {
 protected:
  /// A screenshot of so many pixels, in the height that the card gives it.
  void show(QSize pixels) {
    content.item.url = folder.file("shot " + std::to_string(pixels.width()) + ".png");
    QImage image(pixels, QImage::Format_RGB32);
    image.fill(Qt::red);
    EXPECT_TRUE(image.save(content.item.url.displayPath(), "PNG"));
    content.screenshotPixelSize = content.previewPixelSize = QSizeF(pixels);
    content.thumbnailHeight = CapturePromptContent::heightOfThumbnail(content.screenshotPixelSize);
    show();
  }
  void show() {
    preview.show(content);
    static_cast<QWidget&>(preview).show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&preview));
    executor.drain();
  }
  ScreenshotThumbnail& thumbnail() const {
    for (auto* child : preview.findChildren<QWidget*>()) {
      if (auto* found = dynamic_cast<ScreenshotThumbnail*>(child)) return *found;
    }
    std::abort();
  }
  QRect actions() const { return preview.actions().geometry(); }

  testing::TemporaryFolder folder;
  ManualExecutor executor;
  ThumbnailLoader thumbnails{executor, testing::decodedPictures(), [](const FileURL&) { return false; }};
  CapturePromptContent content;
  PromptPreview preview{executor, thumbnails, nullptr};
};

TEST_F(PromptPreviewTest, TheActionsAreInThePicturesTrailingCorner) {
  show({1632, 640});
  EXPECT_EQ(preview.size(), QSize(408, 160));
  EXPECT_EQ(actions().right(), preview.width() - kInset - 1);
  EXPECT_EQ(actions().top(), kInset);
  EXPECT_EQ(thumbnail().geometry(), preview.rect());
}

TEST_F(PromptPreviewTest, APictureTooNarrowForThemHasThemBesideIt) {
  show({900, 1000});
  EXPECT_EQ(actions().right(), preview.width() - kInset - 1);
  EXPECT_EQ(thumbnail().geometry().right(), actions().left() - kInset - 1);
}

TEST_F(PromptPreviewTest, WhereLanguageRunsFromTheRightTheyAreInTheOtherCorner) {
  preview.setLayoutDirection(Qt::RightToLeft);
  show({1632, 640});
  EXPECT_EQ(actions().left(), kInset);
  show({900, 1000});
  EXPECT_EQ(thumbnail().geometry().left(), actions().right() + 1 + kInset);
}

TEST_F(PromptPreviewTest, AWindowOutOfThePictureIsShownBesideThem) {
  show({1632, 640});
  const QRect before = actions();
  content.windowExtraction = PromptWindowExtraction::Extracted{QRectF(0, 0, 600, 300)};
  content.previewPixelSize = QSizeF(600, 300);
  show();
  EXPECT_EQ(actions(), before);
  EXPECT_FALSE(thumbnail().geometry().intersects(actions()));
}

TEST_F(PromptPreviewTest, WithoutActionsThePictureHasTheWholeWell) {
  content.canReadImage = false;
  show({900, 1000});
  EXPECT_EQ(thumbnail().geometry(), preview.rect());
}

TEST_F(PromptPreviewTest, ThePictureStandsInAWellOfTheWholeWidth) {
  show({1632, 640});
  const QColor card = preview.palette().color(QPalette::Window);
  EXPECT_EQ(preview.grab().toImage().pixelColor(204, 80), QColor(Qt::red));
  for (const QSize size : {QSize(150, 60), QSize(100, 1000), QSize(2000, 20)}) {
    show(size);
    EXPECT_NE(preview.grab().toImage().pixelColor(20, 20), card) << size.width();
  }
}

TEST_F(PromptPreviewTest, ANoticeIsAtTheBottomInTheMiddle) {
  show({1632, 640});
  preview.notice().show(PromptPreviewNotice::textCopied);
  const QRect notice = preview.notice().geometry();
  EXPECT_EQ(notice.bottom(), preview.height() - kInset - 1);
  EXPECT_NEAR(notice.center().x(), preview.width() / 2.0, 1);
}

TEST_F(PromptPreviewTest, ANoticeIsInNobodysWay) {
  show({1632, 640});
  preview.notice().show(PromptPreviewNotice::textCopied);
  EXPECT_EQ(preview.childAt(preview.notice().geometry().center()), nullptr) << "the picture under it can be dragged";
}

TEST_F(PromptPreviewTest, WhatIsDraggedAlongIsTheSmallPicture) {
  EXPECT_TRUE(preview.dragPicture().isNull());
  show({1600, 800});
  EXPECT_EQ(preview.dragPicture().deviceIndependentSize(), QSizeF(160, 80));
  preview.clear();
  EXPECT_TRUE(preview.dragPicture().isNull());
}

TEST_F(PromptPreviewTest, WhatIsDraggedAlongIsAsSharpAsTheScreen) {
  QHighDpiScaling::setGlobalFactor(2);
  show({1600, 800});
  EXPECT_EQ(preview.dragPicture().size(), QSize(320, 160));
  EXPECT_EQ(preview.dragPicture().deviceIndependentSize(), QSizeF(160, 80));
  QHighDpiScaling::setGlobalFactor(1);
}

TEST_F(PromptPreviewTest, WhatIsSpokenTellsTheWindowFromTheScreenshot) {
  show({1600, 800});
  EXPECT_EQ(thumbnail().accessibleName(), QStringLiteral("Screenshot preview"));
  EXPECT_EQ(thumbnail().accessibleDescription(),
            QStringLiteral("Drag this preview into another app to put the screenshot’s file there."));
  content.windowExtraction = PromptWindowExtraction::Extracted{QRectF(0, 0, 100, 100)};
  show();
  EXPECT_EQ(thumbnail().accessibleName(), QStringLiteral("Extracted window preview"));
  EXPECT_EQ(thumbnail().accessibleDescription(),
            QStringLiteral("Drag this preview into another app to put the extracted window there as an image."));
}

TEST_F(PromptPreviewTest, ACopyThatIsOnlyMeasuredLoadsNoPicture) {
  content.reportsEdits = false;
  show({1600, 800});
  EXPECT_EQ(preview.height(), 204);
  EXPECT_TRUE(thumbnail().image().isNull());
}

}  // namespace
}  // namespace quillmere
