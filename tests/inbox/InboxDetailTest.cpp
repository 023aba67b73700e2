#include "inbox/InboxDetail.h"

#include <QtTest/QTest>
#include <QtWidgets/QPushButton>

#include "controls/ScreenshotThumbnail.h"
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
    detail = std::make_unique<InboxDetail>(*model, thumbnails, nullptr);
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

  ThumbnailLoader thumbnails{executor, [this](const FileURL& file) { return dataless.contains(file.path()); }};
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

TEST_F(InboxDetailTest, AScreenshotDoesNotExpireUnderTheQuestionWhetherToDeleteIt) {
  model->markTemporary(id, TemporaryDuration::oneMinute).detach();
  model->setDeletesChosenImmediately(true);
  show();
  confirmsDeletion = false;
  onDeletionQuestion = [this] { advance(65); };
  QPushButton* trashButton = nullptr;
  for (auto* button : detail->findChildren<QPushButton*>()) {
    if (button->text() == QStringLiteral("Delete")) trashButton = button;
  }
  ASSERT_TRUE(trashButton);
  QTest::mouseClick(trashButton, Qt::LeftButton);
  EXPECT_EQ(deletionQuestions, std::vector<QString>{QStringLiteral("1.png")});
  EXPECT_TRUE(hasRecord(id));
  EXPECT_EQ(files.calls(), 0);
  advance(10);
  EXPECT_FALSE(hasRecord(id)) << "its time goes on after the answer";
}

}  // namespace
}  // namespace quillmere
