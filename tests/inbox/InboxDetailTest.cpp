#include "inbox/InboxDetail.h"

#include <QtTest/QTest>
#include <QtWidgets/QPushButton>

#include "controls/ScreenshotThumbnail.h"
#include "fakes/DecodedPictures.h"
#include "fakes/ModelFixture.h"
#include "inbox/MessageView.h"

namespace quillmere {
namespace {

class InboxDetailTest : public testing::ModelFixture {
 protected:
  InboxDetailTest() {
    launchWatching();
    id = arrive("1.png");
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::red);
    EXPECT_TRUE(image.save(url().displayPath(), "PNG"));
    presentation = std::make_unique<InboxPresentation>(*model, InboxServices{.thumbnails = &thumbnails});
    detail = std::make_unique<InboxDetail>(*model, *presentation, nullptr);
    detail->resize(800, 600);
    show();
    detail->setVisible(true);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(detail.get()));
    executor.drain();
  }
  FileURL url() const { return model->items().find(id)->url; }
  void show() {
    detail->show(*model->items().find(id));
    executor.drain();
  }
  const ScreenshotThumbnail* picture() const {
    for (QWidget* child : detail->findChildren<QWidget*>()) {
      if (const auto* found = dynamic_cast<ScreenshotThumbnail*>(child)) return found;
    }
    return nullptr;
  }
  const QWidget* message() const {
    for (QWidget* child : detail->findChildren<QWidget*>()) {
      if (dynamic_cast<MessageView*>(child)) return child;
    }
    return nullptr;
  }

  QPushButton* button(const char* text) const {
    for (auto* found : detail->findChildren<QPushButton*>()) {
      if (found->text() == QString::fromUtf8(text)) return found;
    }
    return nullptr;
  }

  ThumbnailLoader thumbnails{executor, testing::decodedPictures(),
                             [this](const FileURL& file) { return dataless.contains(file.path()); }};
  std::unique_ptr<InboxPresentation> presentation;
  std::unique_ptr<InboxDetail> detail;
  UUID id;
};

TEST_F(InboxDetailTest, ShowsThePicture) {
  EXPECT_TRUE(picture()->isVisible());
  EXPECT_FALSE(message()->isVisible());
  EXPECT_EQ(picture()->image().size(), QSize(300, 200));
}

TEST_F(InboxDetailTest, APictureThatIsElsewhereHasAPlaceholder) {
  dataless.insert(url().path());
  reconcileAll();
  ASSERT_TRUE(model->evictedItemIDs->contains(id));
  show();
  EXPECT_TRUE(picture()->isVisible());
  EXPECT_TRUE(std::holds_alternative<ThumbnailLoader::NotDownloaded>(*picture()->outcome()));
}

TEST_F(InboxDetailTest, AnUnavailableScreenshotSaysSoInThePicturesPlace) {
  makeUnavailable(id);
  show();
  EXPECT_FALSE(picture()->isVisible());
  EXPECT_TRUE(message()->isVisible());
}

TEST_F(InboxDetailTest, MoveToTrashAsksFirstAndTheTimeStandsStillMeanwhile) {
  model->markTemporary(id, TemporaryDuration::oneMinute).detach();
  show();
  QTest::mouseClick(button("Move to Trash"), Qt::LeftButton);
  ASSERT_TRUE(*presentation->deletionCandidate);
  advance(65);
  EXPECT_TRUE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
  presentation->cancelDeletion();
  advance(10);
  EXPECT_FALSE(hasRecord(id)) << "its time goes on after the answer";
}

TEST_F(InboxDetailTest, ADragBeginsOnThePictureOnceForEachPress) {
  std::vector<UUID> dragged;
  detail->onDrag = [&](const UUID& which) { dragged.push_back(which); };
  QWidget* preview = const_cast<ScreenshotThumbnail*>(picture());
  const QPoint middle = picture()->picturePlace().center().toPoint();
  QTest::mousePress(preview, Qt::LeftButton, {}, middle);
  QTest::mouseMove(preview, middle + QPoint(1, 0));
  const auto drag = [&](const QPoint& to) {
    QMouseEvent move(QEvent::MouseMove, to, preview->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(preview, &move);
  };
  drag(middle + QPoint(2, 0));
  EXPECT_TRUE(dragged.empty());
  drag(middle + QPoint(40, 0));
  drag(middle + QPoint(60, 0));
  EXPECT_EQ(dragged, std::vector<UUID>{id});
  EXPECT_EQ(preview->accessibleDescription(),
            QStringLiteral("Drag this preview into another app to put the screenshot’s file there."));
}

TEST_F(InboxDetailTest, DoubleClickAndReturnShowItInQuickLook) {
  QWidget* preview = const_cast<ScreenshotThumbnail*>(picture());
  QTest::mouseDClick(preview, Qt::LeftButton, {}, picture()->picturePlace().center().toPoint());
  EXPECT_EQ(*presentation->quickLookURL, url());
  presentation->setQuickLookURL(std::nullopt);
  QTest::keyClick(preview, Qt::Key_Return);
  EXPECT_EQ(*presentation->quickLookURL, url());
}

TEST_F(InboxDetailTest, ThePictureKeepsItsLeastHeightAndTheRestScrolls) {
  for (const int width : {360, 800, 1600}) {
    for (const int height : {400, 600, 900, 1400}) {
      detail->resize(width, height);
      QCoreApplication::processEvents();
      EXPECT_GE(picture()->height(), 160) << width << " x " << height;
      EXPECT_LE(detail->widget()->width(), width) << "nothing is cut off at the side";
    }
  }
}

}  // namespace
}  // namespace quillmere
