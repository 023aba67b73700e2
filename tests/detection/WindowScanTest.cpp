#include "detection/WindowScan.h"

#include <gtest/gtest.h>
#include <QtCore/QRectF>

#include "foundation/ManualExecutor.h"
#include "support/DrawnPictures.h"
#include "support/Files.h"
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
  ManualExecutor executor;
};

TEST_F(WindowScanTest, GivesThePictureWithItsWindows) {
  const auto scan = ImageOperations::scanWindowsNow(savedPicture());
  ASSERT_TRUE(scan);
  EXPECT_EQ(scan->image.size(), QSize(640, 480));
  ASSERT_EQ(scan->windows.size(), 1u);
  EXPECT_EQ(scan->windows[0].frame, kFrame);
  EXPECT_EQ(scan->windows, ImageOperations::detectWindows(scan->image, 2.0)) << "at the scale that the file tells";
}

TEST_F(WindowScanTest, RunsInTheBackground) {
  const FileURL url = savedPicture();
  executor.holdBackground();
  const auto task = ImageOperations::scanWindows(executor, url);
  executor.drain();
  EXPECT_FALSE(task.isDone());
  executor.runHeldBackground();
  ASSERT_TRUE(task.isDone());
  EXPECT_EQ(task.await_resume().value().windows.size(), 1u);
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
