#include "inbox/DetailPreview.h"

#include <QtTest/QTest>

#include "inbox/DetailFixture.h"

namespace quillmere {
namespace {

class DetailPreviewTest : public testing::DetailFixture {
 protected:
  void open() {
    QImage image(300, 300, QImage::Format_RGB32);
    image.fill(Qt::red);
    EXPECT_TRUE(image.save(item(id).url.displayPath(), "PNG"));
    ScreenshotThumbnail::Content content;
    content.url = item(id).url;
    content.maxPointSize = 300;
    preview.resize(600, 300);
    preview.ScreenshotThumbnail::show(content);
    preview.setVisible(true);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&preview));
    executor.drain();
    preview.onDrag = [this] { ++drags; };
    preview.onOpen = [this] { ++opens; };
  }
  void move(const QPoint& to, Qt::MouseButtons held) {
    QMouseEvent event(QEvent::MouseMove, to, preview.mapToGlobal(to), Qt::NoButton, held, {});
    QCoreApplication::sendEvent(&preview, &event);
  }
  DetailPreview preview{thumbnails, nullptr};
  int drags = 0;
  int opens = 0;
};

TEST_F(DetailPreviewTest, OnlyThePictureCanBeTakenHoldOf) {
  open();
  move(QPoint(300, 150), Qt::NoButton);
  EXPECT_EQ(preview.cursor().shape(), Qt::OpenHandCursor);
  move(QPoint(10, 150), Qt::NoButton);
  EXPECT_EQ(preview.cursor().shape(), Qt::ArrowCursor);
  QTest::mousePress(&preview, Qt::LeftButton, {}, QPoint(10, 150));
  move(QPoint(100, 150), Qt::LeftButton);
  EXPECT_EQ(drags, 0);
  QTest::mouseDClick(&preview, Qt::LeftButton, {}, QPoint(10, 150));
  EXPECT_EQ(opens, 0);
  QTest::mousePress(&preview, Qt::LeftButton, {}, QPoint(300, 150));
  move(QPoint(340, 150), Qt::LeftButton);
  EXPECT_EQ(drags, 1);
}

TEST_F(DetailPreviewTest, ReturnOpensItButNotWithAnotherKey) {
  open();
  QTest::keyClick(&preview, Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(opens, 0);
  QTest::keyClick(&preview, Qt::Key_Enter);
  EXPECT_EQ(opens, 1);
}

}  // namespace
}  // namespace quillmere
