#include "popup/PreviewSizes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <QtGui/QImage>

#include "fakes/DecodedPictures.h"
#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

class PreviewSizesTest : public ::testing::Test {
 protected:
  PreviewSizesTest() {
    sizes.onLooked = [this](bool isFound) { found += isFound; };
  }
  ScreenshotItem picture(const std::string& name, const QSize& size, uint64_t file = 1) {
    ScreenshotItem item;
    item.url = home.file(name);
    item.fileIdentity = FileIdentity{"volume", file, Date{5}, 100};
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    EXPECT_TRUE(image.save(item.url.displayPath(), "PNG"));
    return item;
  }
  std::optional<QSizeF> look(const ScreenshotItem& item) {
    (void)sizes.size(item);
    executor.drain();
    return sizes.size(item);
  }

  TemporaryFolder home;
  ManualExecutor executor;
  bool isDataless = false;
  ThumbnailLoader thumbnails{executor, decodedPictures(), [this](const FileURL&) { return isDataless; }};
  PreviewSizes sizes{thumbnails};
  int found = 0;
};

TEST_F(PreviewSizesTest, AreReadInTheBackground) {
  const auto item = picture("a.png", QSize(30, 20));
  EXPECT_EQ(sizes.size(item), std::nullopt);
  EXPECT_EQ(found, 0);
  executor.drain();
  EXPECT_EQ(found, 1);
  EXPECT_EQ(sizes.size(item), QSizeF(30, 20));
}

TEST_F(PreviewSizesTest, AreReadOnce) {
  const auto item = picture("a.png", QSize(30, 20));
  look(item);
  writeFile(item.url, "something else");
  EXPECT_EQ(look(item), QSizeF(30, 20));
  EXPECT_EQ(found, 1);
}

TEST_F(PreviewSizesTest, OfAReplacedFileAreReadAnew) {
  look(picture("a.png", QSize(30, 20), 1));
  EXPECT_EQ(look(picture("a.png", QSize(50, 40), 2)), QSizeF(50, 40));
}

TEST_F(PreviewSizesTest, OfAnUnreadableFileAreAskedForAgain) {
  ScreenshotItem item;
  item.url = home.file("a.png");
  writeFile(item.url, "no picture");
  EXPECT_EQ(look(item), std::nullopt);
  EXPECT_EQ(found, 0);
  picture("a.png", QSize(30, 20));
  EXPECT_EQ(look(item), QSizeF(30, 20));
}

TEST_F(PreviewSizesTest, OfAnEvictedFileAreNotRead) {
  const auto item = picture("a.png", QSize(30, 20));
  isDataless = true;
  EXPECT_EQ(look(item), std::nullopt);
  isDataless = false;
  EXPECT_EQ(look(item), QSizeF(30, 20)) << "nothing was remembered of it";
}

TEST_F(PreviewSizesTest, AreForgottenTogetherWhenThereAreMany) {
  for (int i = 0; i <= 32; ++i) look(picture(std::to_string(i) + ".png", QSize(30, 20)));
  const auto first = home.file("0.png");
  ScreenshotItem item = picture("0.png", QSize(30, 20));
  EXPECT_EQ(sizes.size(item), QSizeF(30, 20)) << "33 are kept";
  look(picture("one more.png", QSize(30, 20)));
  EXPECT_EQ(sizes.size(item), std::nullopt);
}

TEST_F(PreviewSizesTest, MayBeGoneWhenTheAnswerComes) {
  auto passing = std::make_unique<PreviewSizes>(thumbnails);
  EXPECT_EQ(passing->size(picture("a.png", QSize(30, 20))), std::nullopt);
  passing.reset();
  executor.drain();
}

}  // namespace
}  // namespace quillmere::testing
