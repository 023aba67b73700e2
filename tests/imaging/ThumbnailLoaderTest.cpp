#include "imaging/ThumbnailLoader.h"

#include <sys/inotify.h>
#include <unistd.h>
#include <set>

#include "foundation/FileStatus.h"
#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::setModified;
using testing::TemporaryFolder;
using testing::writeFile;
using Outcome = ThumbnailLoader::Outcome;

class ThumbnailLoaderTest : public ::testing::Test {
 protected:
  FileURL writePicture(std::string_view name, int width, int height, QColor color = Qt::red) {
    const FileURL url = folder.file(name);
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    EXPECT_TRUE(image.save(url.displayPath(), "PNG"));
    return url;
  }
  Outcome load(const FileURL& url, int pixels) {
    std::optional<Outcome> outcome;
    keep(loader.load(url, pixels), outcome).detach();
    executor.drain();
    EXPECT_TRUE(outcome);
    return outcome.value_or(ThumbnailLoader::Unreadable{});
  }
  static Task<> keep(Task<Outcome> task, std::optional<Outcome>& outcome) { outcome = co_await task; }
  QImage image(const FileURL& url, int pixels) {
    const Outcome outcome = load(url, pixels);
    const QImage* found = std::get_if<QImage>(&outcome);
    return found ? *found : QImage();
  }
  /// Of a thumbnail of 100 × 100.
  static constexpr int64_t kBytes = 100 * 100 * 4;

  TemporaryFolder folder;
  ManualExecutor executor;
  std::set<std::string> evicted;
  ThumbnailLoader loader{executor, [this](const FileURL& url) { return evicted.contains(url.path()); }, 3 * kBytes};
};

TEST_F(ThumbnailLoaderTest, APictureComesAtTheSizeWanted) {
  const QImage thumbnail = image(writePicture("a.png", 400, 200), 100);
  EXPECT_EQ(thumbnail.size(), QSize(100, 50));
  EXPECT_EQ(thumbnail.format(), QImage::Format_RGB32) << "what the screen wants";
  EXPECT_EQ(thumbnail.pixelColor(50, 25), QColor(Qt::red));
}

TEST_F(ThumbnailLoaderTest, TheWorkIsDoneInTheBackground) {
  executor.holdBackground();
  std::optional<Outcome> outcome;
  keep(loader.load(writePicture("a.png", 100, 100), 100), outcome).detach();
  executor.drain();
  EXPECT_FALSE(outcome);
  EXPECT_EQ(executor.heldBackground(), 1u);
  executor.runHeldBackground();
  EXPECT_TRUE(outcome);
}

TEST_F(ThumbnailLoaderTest, AnEvictedFileIsNeverRead) {
  const FileURL url = writePicture("a.png", 100, 100);
  evicted.insert(url.path());
  // The kernel tells of every opening.
  const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  ASSERT_GE(::inotify_add_watch(watch, url.c_str(), IN_OPEN | IN_ACCESS), 0);
  EXPECT_TRUE(std::holds_alternative<ThumbnailLoader::NotDownloaded>(load(url, 100)));
  char event[256];
  EXPECT_LT(::read(watch, event, sizeof event), 0);
  ::close(watch);
  EXPECT_EQ(loader.cachedBytes(), 0);
  evicted.clear();
  EXPECT_FALSE(image(url, 100).isNull()) << "once its data is here it is";
  evicted.insert(url.path());
  EXPECT_TRUE(std::holds_alternative<ThumbnailLoader::NotDownloaded>(load(url, 100))) << "nor from the cache";
}

TEST_F(ThumbnailLoaderTest, WhatCannotBeReadIsUnreadableAndNotKept) {
  const FileURL url = folder.file("a.png");
  writeFile(url, "no picture");
  EXPECT_TRUE(std::holds_alternative<ThumbnailLoader::Unreadable>(load(url, 100)));
  EXPECT_TRUE(std::holds_alternative<ThumbnailLoader::Unreadable>(load(folder.file("missing.png"), 100)));
  EXPECT_EQ(loader.cachedBytes(), 0);
  writePicture("a.png", 100, 100);
  EXPECT_FALSE(image(url, 100).isNull()) << "a file that has been written to its end is";
}

TEST_F(ThumbnailLoaderTest, TheSameFileIsReadOnce) {
  const FileURL url = writePicture("a.png", 100, 100);
  const Date date{700000000};
  setModified(url, date);
  image(url, 100);
  writeFile(url, "no picture any more");
  setModified(url, date);
  ASSERT_EQ(fileStatus(url)->modified, date);
  EXPECT_EQ(image(url, 100).pixelColor(5, 5), QColor(Qt::red));
}

TEST_F(ThumbnailLoaderTest, AFileThatChangedIsReadAnew) {
  const FileURL url = writePicture("a.png", 100, 100, Qt::red);
  setModified(url, Date{700000000});
  image(url, 100);
  writePicture("a.png", 100, 100, Qt::blue);
  setModified(url, Date{700000000.001});
  EXPECT_EQ(image(url, 100).pixelColor(5, 5), QColor(Qt::blue)) << "a thousandth of a second later is another date";
  EXPECT_EQ(loader.cachedBytes(), 2 * kBytes) << "the old one ages out by itself";
}

TEST_F(ThumbnailLoaderTest, EachSizeIsKeptByItself) {
  const FileURL url = writePicture("a.png", 100, 100);
  image(url, 100);
  EXPECT_EQ(image(url, 50).size(), QSize(50, 50));
  EXPECT_EQ(loader.cachedBytes(), kBytes + kBytes / 4);
}

TEST_F(ThumbnailLoaderTest, TheCacheIsBoundedByItsBytes) {
  for (int i = 0; i < 10; ++i) {
    image(writePicture(std::to_string(i) + ".png", 100, 100), 100);
    EXPECT_LE(loader.cachedBytes(), 3 * kBytes);
  }
  EXPECT_EQ(loader.cachedBytes(), 3 * kBytes);
}

TEST_F(ThumbnailLoaderTest, WhatWasUsedLeastRecentlyGoesFirst) {
  const FileURL a = writePicture("a.png", 100, 100);
  const FileURL b = writePicture("b.png", 100, 100);
  const Date date{700000000};
  for (const FileURL& url : {a, b}) setModified(url, date);
  for (const FileURL& url : {a, b, writePicture("c.png", 100, 100), a, writePicture("d.png", 100, 100)}) {
    image(url, 100);
  }
  const auto isKept = [&](const FileURL& url) {
    writeFile(url, "no picture any more");
    setModified(url, date);
    return !image(url, 100).isNull();
  };
  EXPECT_TRUE(isKept(a));
  EXPECT_FALSE(isKept(b));
}

TEST_F(ThumbnailLoaderTest, APictureLargerThanTheCacheIsGivenButNotKept) {
  const QImage large = image(writePicture("a.png", 400, 400), 400);
  EXPECT_EQ(large.size(), QSize(400, 400));
  EXPECT_EQ(loader.cachedBytes(), 0);
}

TEST_F(ThumbnailLoaderTest, TwoLoadsOfOneFileKeepItOnce) {
  const FileURL url = writePicture("a.png", 100, 100);
  executor.holdBackground();
  std::optional<Outcome> first;
  std::optional<Outcome> second;
  keep(loader.load(url, 100), first).detach();
  keep(loader.load(url, 100), second).detach();
  executor.runHeldBackground();
  EXPECT_TRUE(first && second);
  EXPECT_EQ(loader.cachedBytes(), kBytes);
}

TEST_F(ThumbnailLoaderTest, TheWorkOfADroppedTaskStaysInTheCache) {
  executor.holdBackground();
  { const auto dropped = loader.load(writePicture("a.png", 100, 100), 100); }
  executor.runHeldBackground();
  EXPECT_EQ(loader.cachedBytes(), kBytes);
}

}  // namespace
}  // namespace quillmere
