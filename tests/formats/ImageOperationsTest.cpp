#include "formats/ImageOperations.h"

#include <sys/stat.h>

#include "formats/Pictures.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using ImageOperations::OperationError;
using testing::encoded;
using testing::redAndBlue;
using testing::TemporaryFolder;
using testing::writeFile;

class LoadImage : public ::testing::Test {
 protected:
  void expectUnreadable(const FileURL& url) {
    const auto image = ImageOperations::loadImage(url);
    ASSERT_FALSE(image) << url.path();
    EXPECT_EQ(image.reason(), OperationError::unreadable);
  }
  FileURL write(std::string_view bytes, std::string_view name = "a.png") {
    const FileURL url = folder.file(name);
    writeFile(url, bytes);
    return url;
  }
  TemporaryFolder folder;
};

TEST_F(LoadImage, GivesThePictureAtFullSize) {
  const QImage original = redAndBlue(321, 123);
  const auto image = ImageOperations::loadImage(write(encoded(original, "PNG")));
  ASSERT_TRUE(image);
  EXPECT_EQ(*image, original);
}

TEST_F(LoadImage, GivesAJpegUpright) {
  for (char orientation = 1; orientation <= 8; ++orientation) {
    const auto image =
        ImageOperations::loadImage(write(testing::oriented(encoded(redAndBlue(64, 32), "JPEG"), orientation), "a.jpg"));
    ASSERT_TRUE(image) << int{orientation};
    EXPECT_EQ(image->size(), orientation >= 5 ? QSize(32, 64) : QSize(64, 32)) << int{orientation};
  }
}

TEST_F(LoadImage, AnyNameWillDo) {
  EXPECT_TRUE(ImageOperations::loadImage(write(encoded(redAndBlue(8, 8), "PNG"), "caf\xe9\xff.jpg")));
}

TEST_F(LoadImage, WhatIsNoWholePictureIsUnreadable) {
  expectUnreadable(folder.url());
  expectUnreadable(folder.file("missing.png"));
  expectUnreadable(FileURL());
  expectUnreadable(write(""));
  expectUnreadable(write("no picture"));
  expectUnreadable(write(encoded(redAndBlue(64, 64), "PNG").substr(0, 2000)));
  const FileURL pipe = folder.file("pipe.png");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  expectUnreadable(pipe);
}

}  // namespace
}  // namespace quillmere
