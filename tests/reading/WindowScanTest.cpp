#include "reading/WindowScan.h"

#include <gtest/gtest.h>

#include "fakes/DecodedPictures.h"
#include "foundation/ManualExecutor.h"
#include "support/DrawnPictures.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

class WindowScanTest : public ::testing::Test {
 protected:
  /// With one window on a plain ground.
  FileURL savedPicture() {
    plain::Gray gray(640, 480, 120);
    pictures::outline(gray, QRectF(100, 80, 400, 300), 20);
    const FileURL url = home.file("shot.png");
    EXPECT_TRUE(pictures::image(gray).save(url.displayPath()));
    return url;
  }
  TemporaryFolder home;
  ManualExecutor executor;
};

TEST_F(WindowScanTest, RunsInTheBackground) {
  const FileURL url = savedPicture();
  executor.holdBackground();
  const auto task = ImageOperations::scanWindows(executor, decodedPictures(), url);
  executor.drain();
  EXPECT_FALSE(task.isDone());
  executor.runHeldBackground();
  ASSERT_TRUE(task.isDone());
  EXPECT_EQ(task.await_resume().value().windows.size(), 1u);
}

TEST_F(WindowScanTest, DoesNotEvenLookAtTheFileOnceItIsCancelled) {
  int looks = 0;
  executor.holdBackground();
  const auto task = ImageOperations::scanWindows(executor, decodedPictures(), savedPicture(), {}, [&](const FileURL&) {
    ++looks;
    return false;
  });
  task.cancel();
  executor.runHeldBackground();
  ASSERT_TRUE(task.isDone());
  EXPECT_FALSE(task.await_resume());
  EXPECT_EQ(looks, 0);
}

TEST_F(WindowScanTest, DoesNotReadAFileThatIsNotHere) {
  const auto task = ImageOperations::scanWindows(executor, decodedPictures(), savedPicture(), {},
                                                 [](const FileURL&) { return true; });
  executor.drain();
  ASSERT_TRUE(task.isDone());
  EXPECT_EQ(task.await_resume().reason(), ImageOperations::OperationError::unreadable);
}

}  // namespace
}  // namespace quillmere::testing
