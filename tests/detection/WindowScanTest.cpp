#include "detection/WindowScan.h"

#include <gtest/gtest.h>
#include <QtCore/QRectF>
#include <QtGui/QTransform>

#include "support/DrawnPictures.h"
#include "support/Files.h"
#include "support/Images.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ImageOperations::OperationError;

class WindowScanTest : public ::testing::Test {
 protected:
  /// A picture of 144 dots per inch with one window on a plain ground.
  FileURL savedPicture() {
    plain::Gray gray(640, 480, 120);
    pictures::outline(gray, kFrame, 20);
    QImage image = pictures::image(gray);
    image.setDotsPerMeterX(5669);
    image.setDotsPerMeterY(5669);
    const FileURL url = home.file("shot.png");
    EXPECT_TRUE(image.save(url.displayPath()));
    return url;
  }

  inline static const QRectF kFrame{100, 80, 400, 300};
  TemporaryFolder home;
};

TEST_F(WindowScanTest, GivesThePictureWithItsWindows) {
  const auto scan = ImageOperations::scanWindowsNow(savedPicture());
  ASSERT_TRUE(scan);
  EXPECT_EQ(scan->image.size(), QSize(640, 480));
  ASSERT_EQ(scan->windows.size(), 1u);
  EXPECT_EQ(scan->windows[0].frame, kFrame);
  EXPECT_EQ(scan->windows, ImageOperations::detectWindows(scan->image, 2.0)) << "at the scale that the file tells";
}

TEST_F(WindowScanTest, StopsBetweenItsStepsWhenItIsCancelled) {
  const FileURL url = savedPicture();
  int asked = 0;
  for (int last = 1; last <= 2; ++last) {
    asked = 0;
    const auto scan = ImageOperations::scanWindowsNow(url, [&] { return ++asked == last; });
    EXPECT_FALSE(scan);
    EXPECT_EQ(asked, last);
  }
}

TEST_F(WindowScanTest, MeasuresAPictureAsItIsSeen) {
  plain::Gray gray(640, 480, 120);
  pictures::outline(gray, kFrame, 20);
  const QImage seen = pictures::image(gray);
  // Stored lying on its side, with the word to turn it clockwise.
  const QImage stored = seen.transformed(QTransform().rotate(-90));
  const FileURL url = home.file("turned.png");
  ASSERT_TRUE(stored.save(url.displayPath()));
  std::string bytes = readBytes(url);
  bytes.insert(bytes.find("IDAT") - 4, pngChunk("eXIf", std::string("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01"
                                                                    "\0\x06\0\0\0\0\0\0",
                                                                    26)));
  writeFile(url, bytes);
  const auto scan = ImageOperations::scanWindowsNow(url);
  ASSERT_TRUE(scan);
  EXPECT_EQ(scan->image.size(), seen.size());
  ASSERT_EQ(scan->windows.size(), 1u);
  EXPECT_EQ(scan->windows[0].frame, kFrame);
}

TEST_F(WindowScanTest, AFileThatIsNoPictureIsUnreadable) {
  const FileURL url = home.file("shot.png");
  writeFile(url, "no picture");
  const auto scan = ImageOperations::scanWindowsNow(url);
  ASSERT_FALSE(scan);
  EXPECT_EQ(scan.reason(), OperationError::unreadable);
  EXPECT_FALSE(ImageOperations::scanWindowsNow(home.file("nowhere.png")));
}

}  // namespace
}  // namespace quillmere::testing
