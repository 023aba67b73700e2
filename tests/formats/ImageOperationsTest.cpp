#include "formats/ImageOperations.h"

#include <sys/stat.h>
#include <QtGui/QColorSpace>
#include <limits>

#include "formats/Pictures.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using ImageOperations::Failure;
using ImageOperations::OperationError;
using testing::encoded;
using testing::redAndBlue;
using testing::TemporaryFolder;
using testing::writeFile;

TEST(OperationErrors, EachTellsThePersonWhatToDo) {
  const auto text = [](OperationError error) { return ImageOperations::description(error).toStdString(); };
  EXPECT_EQ(text(OperationError::unreadable),
            "The screenshot couldn’t be opened. It may have moved or expired. Choose it again from the Inbox.");
  EXPECT_EQ(text(OperationError::invalidCrop), "Choose a crop with a positive width and height inside the image.");
  EXPECT_EQ(text(OperationError::encoding),
            "The cropped image couldn’t be saved. The original hasn’t changed. Try saving again.");
  EXPECT_EQ(text(OperationError::destinationExists),
            "A file already exists with that name. Choose a different name to avoid replacing it.");
  EXPECT_EQ(text(OperationError::noScreenshotFolder), "Choose a screenshot folder in Settings, then save again.");
}

TEST(OperationErrors, AFailureOfTheSystemIsASentence) {
  const Failure failure = std::make_error_code(std::errc::no_space_on_device);
  EXPECT_EQ(ImageOperations::description(failure).toStdString(), "No space left on device.");
  EXPECT_EQ(ImageOperations::description(Failure(OperationError::encoding)),
            ImageOperations::description(OperationError::encoding));
}

TEST(OperationErrors, OnlyTheSystemSaysThatAFileIsMissing) {
  EXPECT_TRUE(ImageOperations::isFileMissing(std::make_error_code(std::errc::no_such_file_or_directory)));
  EXPECT_TRUE(ImageOperations::isFileMissing(std::error_code(ENOENT, std::generic_category())));
  EXPECT_TRUE(ImageOperations::isFileMissing(std::error_code(ENOENT, std::system_category())));
  EXPECT_FALSE(ImageOperations::isFileMissing(std::make_error_code(std::errc::permission_denied)));
  EXPECT_FALSE(ImageOperations::isFileMissing(std::make_error_code(std::errc::not_a_directory)));
  EXPECT_FALSE(ImageOperations::isFileMissing(OperationError::unreadable));
}

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

class Crop : public ::testing::Test {
 protected:
  static bool isInvalid(const QImage& image, const QRectF& rect) {
    const auto part = ImageOperations::crop(image, rect);
    return !part && part.reason() == OperationError::invalidCrop;
  }
  QImage image = redAndBlue(20, 15);
};

TEST_F(Crop, GivesThePixelsInside) {
  const auto part = ImageOperations::crop(image, QRectF(3, 4, 5, 6));
  ASSERT_TRUE(part);
  EXPECT_EQ(*part, image.copy(3, 4, 5, 6));
  EXPECT_EQ(part->size(), QSize(5, 6));
}

TEST_F(Crop, TheWholeImageAndASinglePixelAreCrops) {
  const auto whole = ImageOperations::crop(image, QRectF(0, 0, 20, 15));
  ASSERT_TRUE(whole);
  EXPECT_EQ(*whole, image);
  const auto last = ImageOperations::crop(image, QRectF(19, 14, 1, 1));
  ASSERT_TRUE(last);
  EXPECT_EQ(last->pixel(0, 0), image.pixel(19, 14));
}

TEST_F(Crop, AFractionalRectangleGrowsToWholePixels) {
  const auto part = ImageOperations::crop(image, QRectF(0.5, 0.5, 10, 10));
  ASSERT_TRUE(part);
  EXPECT_EQ(part->size(), QSize(11, 11));
  EXPECT_EQ(*part, image.copy(0, 0, 11, 11));
  EXPECT_TRUE(isInvalid(image, QRectF(10.5, 0, 10, 10))) << "at the very edge it leaves the image";
  EXPECT_TRUE(isInvalid(image, QRectF(-0.1, 0, 10, 10)));
  EXPECT_TRUE(ImageOperations::crop(image, QRectF(10.5, 0, 9.5, 10)));
}

TEST_F(Crop, MustBeAPixelWideAndHigh) {
  EXPECT_TRUE(isInvalid(image, QRectF(1, 1, 0, 5)));
  EXPECT_TRUE(isInvalid(image, QRectF(1, 1, 5, 0.999)));
  EXPECT_TRUE(isInvalid(image, QRectF(5, 5, -3, 3)));
  EXPECT_TRUE(isInvalid(image, QRectF(5, 5, 3, -3)));
  EXPECT_TRUE(ImageOperations::crop(image, QRectF(1, 1, 1, 1)));
}

TEST_F(Crop, MustLieInside) {
  for (const QRectF& rect :
       {QRectF(-1, 0, 5, 5), QRectF(0, -1, 5, 5), QRectF(16, 0, 5, 5), QRectF(0, 11, 5, 5), QRectF(0, 0, 21, 15),
        QRectF(100, 100, 5, 5), QRectF(1e300, 0, 5, 5), QRectF(0, 0, 1e300, 5), QRectF(4294967296.0, 0, 5, 5)}) {
    EXPECT_TRUE(isInvalid(image, rect)) << rect.x() << " " << rect.y();
  }
}

TEST_F(Crop, MustBeFinite) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  for (const double odd : {kInfinity, -kInfinity, kNone}) {
    EXPECT_TRUE(isInvalid(image, QRectF(odd, 0, 5, 5)));
    EXPECT_TRUE(isInvalid(image, QRectF(0, odd, 5, 5)));
    EXPECT_TRUE(isInvalid(image, QRectF(0, 0, odd, 5)));
    EXPECT_TRUE(isInvalid(image, QRectF(0, 0, 5, odd)));
  }
}

TEST_F(Crop, OfNothingIsInvalid) {
  EXPECT_TRUE(isInvalid(QImage(), QRectF(0, 0, 1, 1)));
}

TEST_F(Crop, KeepsFormatAndColourSpace) {
  image.convertTo(QImage::Format_ARGB32);
  image.setColorSpace(QColorSpace::DisplayP3);
  const auto part = ImageOperations::crop(image, QRectF(1, 1, 3, 3));
  ASSERT_TRUE(part);
  EXPECT_EQ(part->format(), QImage::Format_ARGB32);
  EXPECT_EQ(part->colorSpace(), QColorSpace(QColorSpace::DisplayP3));
}

}  // namespace
}  // namespace quillmere
