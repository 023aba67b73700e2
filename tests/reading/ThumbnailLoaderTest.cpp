#include "reading/ThumbnailLoader.h"

#include <sys/inotify.h>
#include <unistd.h>
#include <QtGui/QColorSpace>
#include <cmath>
#include <limits>
#include <set>

#include "fakes/DecodedPictures.h"
#include "fakes/FakeSharedThumbnails.h"
#include "formats/Pictures.h"
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
  static void setModifiedToNanosecond(const FileURL& url, time_t seconds, long nanoseconds) {
    const timespec moment{seconds, nanoseconds};
    const timespec times[2] = {moment, moment};
    ASSERT_EQ(::utimensat(AT_FDCWD, url.c_str(), times, 0), 0);
  }
  Outcome loadCrop(const FileURL& url, int pixels, const QRectF& crop) {
    std::optional<Outcome> outcome;
    keep(loader.load(url, pixels, crop), outcome).detach();
    executor.drain();
    EXPECT_TRUE(outcome);
    return outcome.value_or(ThumbnailLoader::Cancelled{});
  }
  QImage part(const FileURL& url, int pixels, const QRectF& crop) {
    const Outcome outcome = loadCrop(url, pixels, crop);
    const QImage* found = std::get_if<QImage>(&outcome);
    return found ? *found : QImage();
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
  ThumbnailLoader loader{executor, testing::decodedPictures(),
                         [this](const FileURL& url) { return evicted.contains(url.path()); }, 3 * kBytes};
};

TEST_F(ThumbnailLoaderTest, APictureComesAtTheSizeWanted) {
  const QImage thumbnail = image(writePicture("a.png", 400, 200), 100);
  EXPECT_EQ(thumbnail.size(), QSize(100, 50));
  EXPECT_EQ(thumbnail.format(), QImage::Format_RGB32) << "what the screen wants";
  EXPECT_EQ(thumbnail.pixelColor(50, 25), QColor(Qt::red));
}

TEST_F(ThumbnailLoaderTest, APictureOfAnotherColourSpaceLooksAsItWasMeant) {
  QImage image(200, 200, QImage::Format_RGB32);
  image.fill(QColor(200, 80, 40));
  image.setColorSpace(QColorSpace::SRgb);
  image.convertToColorSpace(QColorSpace::DisplayP3);
  ASSERT_NE(image.pixelColor(5, 5), QColor(200, 80, 40));
  const FileURL url = folder.file("a.png");
  ASSERT_TRUE(image.save(url.displayPath(), "PNG"));
  const QImage thumbnail = this->image(url, 100);
  EXPECT_NEAR(thumbnail.pixelColor(50, 50).red(), 200, 2);
  EXPECT_NEAR(thumbnail.pixelColor(50, 50).green(), 80, 2);
  EXPECT_NEAR(thumbnail.pixelColor(50, 50).blue(), 40, 2);
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

TEST_F(ThumbnailLoaderTest, AFileThatEndsBeforeItsPixelsIsUnreadable) {
  const std::string whole = testing::encoded(testing::redAndBlue(200, 200), "PNG");
  const FileURL url = folder.file("a.png");
  writeFile(url, whole.substr(0, 60));
  EXPECT_EQ(load(url, 100), Outcome(ThumbnailLoader::Unreadable{}));
}

TEST_F(ThumbnailLoaderTest, AHeaderThatPromisesTooMuchIsUnreadable) {
  std::string bomb = testing::encoded(testing::redAndBlue(16, 16), "JPEG");
  bomb.replace(bomb.find("\xff\xc0") + 5, 4, "\x3f\xff\x3f\xff");
  const FileURL url = folder.file("a.jpg");
  writeFile(url, bomb);
  EXPECT_EQ(load(url, 100), Outcome(ThumbnailLoader::Unreadable{}));
}

TEST_F(ThumbnailLoaderTest, WhatWouldCostTooMuchIsToldApart) {
  const FileURL url = folder.file("a.png");
  writeFile(url, testing::encoded(testing::redAndBlue(16, 16), "PNG") + std::string(20'000'000, 'x'));
  EXPECT_EQ(load(url, 100), Outcome(ThumbnailLoader::TooCostly{}));
  EXPECT_EQ(load(url, 50), Outcome(ThumbnailLoader::TooCostly{}));
}

/// Gives one answer to all, and counts how often it is asked.
class AnsweringPictures final : public PictureReading {
 public:
  std::optional<PictureHead> head(const FileURL&) override { return std::nullopt; }
  std::optional<PictureError> failureOf(const FileURL&) override { return answer; }
  Picture picture(const FileURL&, const Stop&) override { return answer; }
  Picture thumbnail(const FileURL&, int, const Stop&) override {
    ++asked;
    if (asking) asking();
    return answer;
  }
  Picture thumbnail(std::string_view, int) override { return answer; }
  Result<ImageOperations::WindowScan, ImageOperations::OperationError> windows(const FileURL&,
                                                                               const std::optional<KnownWindows>&,
                                                                               const Stop&) override {
    return ImageOperations::operationError(answer);
  }
  std::optional<KnownWindows> knownWindows(const FileURL&, const std::vector<WindowStack>&, Date,
                                           const Stop&) override {
    return std::nullopt;
  }
  std::optional<QString> text(const FileURL&, const Stop&) override { return std::nullopt; }
  Result<QByteArray, ImageOperations::OperationError> encoded(const QImage&, PictureFormat) override {
    return ImageOperations::OperationError::encoding;
  }

  PictureError answer = PictureError::damaged;
  std::function<void()> asking;
  int asked = 0;
};

TEST_F(ThumbnailLoaderTest, NobodyIsAskedAgainAboutWhatFailedUntilItChanges) {
  const auto pictures = std::make_shared<AnsweringPictures>();
  ThumbnailLoader failing(executor, pictures, [](const FileURL&) { return false; });
  const FileURL url = writePicture("a.png", 100, 100);
  const auto loadFailing = [&] {
    std::optional<Outcome> outcome;
    keep(failing.load(url, 100), outcome).detach();
    executor.drain();
    return outcome;
  };
  pictures->answer = PictureError::unreadable;
  for (int i = 0; i < 2; ++i) EXPECT_EQ(loadFailing(), Outcome(ThumbnailLoader::Unreadable{}));
  EXPECT_EQ(pictures->asked, 2) << "another time it may be read";
  pictures->answer = PictureError::tooCostly;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(loadFailing(), Outcome(ThumbnailLoader::TooCostly{}));
  EXPECT_EQ(pictures->asked, 3);
  pictures->answer = PictureError::damaged;
  writePicture("a.png", 200, 200);
  EXPECT_EQ(loadFailing(), Outcome(ThumbnailLoader::Unreadable{}));
  EXPECT_EQ(pictures->asked, 4);
}

TEST_F(ThumbnailLoaderTest, WhatIsSaidOfALoadThatWasCancelledIsForgotten) {
  const auto pictures = std::make_shared<AnsweringPictures>();
  ThumbnailLoader failing(executor, pictures, [](const FileURL&) { return false; });
  const FileURL url = writePicture("a.png", 100, 100);
  std::optional<Outcome> outcome;
  const auto task = failing.load(url, 100);
  pictures->asking = [&] { task.cancel(); };
  keep(task, outcome).detach();
  executor.drain();
  pictures->asking = nullptr;
  EXPECT_EQ(outcome, Outcome(ThumbnailLoader::Cancelled{}));
  keep(failing.load(url, 100), outcome).detach();
  executor.drain();
  EXPECT_EQ(pictures->asked, 2);
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
  setModifiedToNanosecond(url, 1678307200, 1);
  EXPECT_EQ(image(url, 100).pixelColor(5, 5), QColor(Qt::blue)) << "a nanosecond later is another date";
  EXPECT_EQ(loader.cachedBytes(), 2 * kBytes) << "the old one ages out by itself";
}

TEST_F(ThumbnailLoaderTest, AFileThatTookTheNameOfAnotherIsReadAnew) {
  const FileURL url = writePicture("a.png", 100, 100, Qt::red);
  setModifiedToNanosecond(url, 1678307200, 500);
  image(url, 100);
  const FileURL replacement = writePicture("b.png", 100, 100, Qt::blue);
  setModifiedToNanosecond(replacement, 1678307200, 400);
  ASSERT_EQ(::rename(replacement.c_str(), url.c_str()), 0);
  EXPECT_EQ(image(url, 100).pixelColor(5, 5), QColor(Qt::blue)) << "an older date is another date too";
}

TEST_F(ThumbnailLoaderTest, ALinkPutInThePlaceOfAPictureShowsNothing) {
  const FileURL secret = writePicture("secret.png", 100, 100, Qt::red);
  const FileURL url = writePicture("a.png", 100, 100, Qt::blue);
  ASSERT_EQ(image(url, 100).pixelColor(5, 5), QColor(Qt::blue));
  std::filesystem::remove(url.path());
  ASSERT_EQ(::symlink(secret.c_str(), url.c_str()), 0);
  EXPECT_TRUE(image(url, 100).isNull());
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
  image(writePicture("b.png", 100, 100), 100);
  image(writePicture("a.png", 400, 400), 400);
  EXPECT_EQ(loader.cachedBytes(), kBytes) << "nor does it drive out what is kept";
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

// --- Cancelling ---

TEST_F(ThumbnailLoaderTest, ALoadCancelledBeforeItsWorkReadsNothing) {
  const FileURL url = writePicture("a.png", 100, 100);
  const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  ASSERT_GE(::inotify_add_watch(watch, url.c_str(), IN_OPEN | IN_ACCESS), 0);
  executor.holdBackground();
  for (const bool isCrop : {false, true}) {
    const auto task = isCrop ? loader.load(url, 100, QRectF(0, 0, 50, 50)) : loader.load(url, 100);
    std::optional<Outcome> outcome;
    keep(task, outcome).detach();
    task.cancel();
    executor.runHeldBackground();
    executor.holdBackground();
    ASSERT_TRUE(outcome);
    EXPECT_TRUE(std::holds_alternative<ThumbnailLoader::Cancelled>(*outcome));
  }
  char event[256];
  EXPECT_LT(::read(watch, event, sizeof event), 0);
  ::close(watch);
  EXPECT_EQ(loader.cachedBytes(), 0);
}

/// Cancelled by the look whether its data is here, the last thing before the decoder.
TEST_F(ThumbnailLoaderTest, ALoadCancelledWhileItWorksIsNotKept) {
  const FileURL url = writePicture("a.png", 100, 100);
  Task<Outcome> task;
  ThumbnailLoader cancelling(executor, testing::decodedPictures(), [&](const FileURL&) {
    task.cancel();
    return false;
  });
  task = cancelling.load(url, 100);
  executor.drain();
  EXPECT_TRUE(task.isDone());
  EXPECT_EQ(cancelling.cachedBytes(), 0);
}

TEST_F(ThumbnailLoaderTest, AnotherLoadOfTheFileGoesOn) {
  const FileURL url = writePicture("a.png", 100, 100);
  executor.holdBackground();
  std::optional<Outcome> outcome;
  const auto cancelled = loader.load(url, 100);
  keep(loader.load(url, 100), outcome).detach();
  cancelled.cancel();
  executor.runHeldBackground();
  ASSERT_TRUE(outcome);
  EXPECT_TRUE(std::holds_alternative<QImage>(*outcome));
}

TEST_F(ThumbnailLoaderTest, TheWorkMayOutliveTheLoader) {
  auto shortLived =
      std::make_unique<ThumbnailLoader>(executor, testing::decodedPictures(), [](const FileURL&) { return false; });
  executor.holdBackground();
  std::optional<Outcome> outcome;
  keep(shortLived->load(writePicture("a.png", 100, 100), 100), outcome).detach();
  shortLived.reset();
  executor.runHeldBackground();
  ASSERT_TRUE(outcome);
  EXPECT_TRUE(std::holds_alternative<QImage>(*outcome));
}

// --- Shared thumbnails ---

class ThumbnailSharingTest : public ThumbnailLoaderTest {
 protected:
  using Sharing = ThumbnailLoader::Sharing;
  Outcome load(const FileURL& url, int pixels, Sharing sharing) {
    std::optional<Outcome> outcome;
    keep(sharer.load(url, pixels, sharing), outcome).detach();
    executor.drain();
    return outcome.value_or(ThumbnailLoader::Cancelled{});
  }
  QImage image(const FileURL& url, int pixels, Sharing sharing) {
    const Outcome outcome = load(url, pixels, sharing);
    const QImage* found = std::get_if<QImage>(&outcome);
    return found ? *found : QImage();
  }
  static QImage plain(QSize size, QColor color) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
  }

  std::shared_ptr<testing::FakeSharedThumbnails> shared = std::make_shared<testing::FakeSharedThumbnails>();
  ThumbnailLoader sharer{executor, testing::decodedPictures(),
                         [this](const FileURL& url) { return evicted.contains(url.path()); }, shared};
  const QImage green = plain({128, 64}, Qt::green);
};

TEST_F(ThumbnailSharingTest, AnotherProgramsThumbnailIsTakenAndTheFileNotOpened) {
  const FileURL url = folder.file("a.png");
  writeFile(url, "no picture, and so never decoded");
  shared->ofOthers[url.path()] = green;
  EXPECT_EQ(image(url, 128, Sharing::taken), green);
  EXPECT_EQ(image(url, 128, Sharing::takenAndKept), green);
  EXPECT_EQ(shared->asked, std::vector<std::string>{"a.png 128"}) << "once, then it is in the memory cache";
  EXPECT_TRUE(shared->kept.empty());
}

TEST_F(ThumbnailSharingTest, ACrispPictureIsNeverAnotherPrograms) {
  const FileURL url = writePicture("a.png", 400, 200);
  shared->ofOthers[url.path()] = green;
  ASSERT_EQ(image(url, 128, Sharing::taken), green);
  EXPECT_EQ(image(url, 128, Sharing::none).pixelColor(5, 5), QColor(Qt::red)) << "nor by way of the memory cache";
  EXPECT_EQ(image(url, 128, Sharing::taken).pixelColor(5, 5), QColor(Qt::red)) << "which has a better one now";
  std::optional<Outcome> part;
  keep(sharer.load(url, 128, QRectF(0, 0, 400, 200)), part).detach();
  executor.drain();
  EXPECT_EQ(std::get<QImage>(*part).pixelColor(5, 5), QColor(Qt::red));
  EXPECT_EQ(shared->asked.size(), 1u);
  EXPECT_TRUE(shared->kept.empty());
}

TEST_F(ThumbnailSharingTest, AnEvictedFileIsNotAskedFor) {
  const FileURL url = writePicture("a.png", 400, 200);
  shared->ofOthers[url.path()] = green;
  evicted.insert(url.path());
  EXPECT_EQ(load(url, 128, Sharing::takenAndKept), Outcome(ThumbnailLoader::NotDownloaded{}));
  EXPECT_TRUE(shared->asked.empty());
  EXPECT_TRUE(shared->kept.empty());
}

TEST_F(ThumbnailSharingTest, OursIsKeptForAFileThatLivesOnOnly) {
  const FileURL url = writePicture("a.png", 400, 200);
  EXPECT_FALSE(image(url, 128, Sharing::none).isNull());
  EXPECT_FALSE(image(url, 128, Sharing::taken).isNull());
  EXPECT_TRUE(shared->kept.empty());
  EXPECT_FALSE(image(url, 128, Sharing::takenAndKept).isNull());
  ASSERT_EQ(shared->kept.size(), 1u) << "also one from the memory cache";
  EXPECT_EQ(shared->kept[0].thumbnail.size(), QSize(128, 64));
  EXPECT_EQ(shared->kept[0].seen.modified, fileStatus(url)->modified);
}

TEST_F(ThumbnailSharingTest, OursIsMadeAsLargeAsOthersWantIt) {
  const FileURL url = writePicture("a.png", 400, 200);
  EXPECT_EQ(image(url, 160, Sharing::takenAndKept).size(), QSize(160, 80));
  ASSERT_EQ(shared->kept.size(), 1u);
  EXPECT_EQ(shared->kept[0].thumbnail.size(), QSize(256, 128));
  EXPECT_EQ(image(url, 300, Sharing::takenAndKept).size(), QSize(300, 150));
  EXPECT_EQ(shared->kept.size(), 1u) << "there is no such size";
}

TEST_F(ThumbnailSharingTest, OursIsKeptAfterThePictureWasGiven) {
  const FileURL url = writePicture("a.png", 400, 200);
  executor.holdBackground();
  std::optional<Outcome> outcome;
  keep(sharer.load(url, 128, Sharing::takenAndKept), outcome).detach();
  executor.drain();
  EXPECT_EQ(executor.heldBackground(), 1u);
  executor.runHeldBackground();
  EXPECT_TRUE(outcome);
  executor.runHeldBackground();
  EXPECT_EQ(shared->kept.size(), 1u);
}

TEST_F(ThumbnailSharingTest, WhatCannotBeReadIsNotKept) {
  const FileURL url = folder.file("a.png");
  writeFile(url, "no picture");
  EXPECT_EQ(load(url, 128, Sharing::takenAndKept), Outcome(ThumbnailLoader::Unreadable{}));
  EXPECT_TRUE(shared->kept.empty());
}

TEST_F(ThumbnailSharingTest, ThumbnailsOfOtherColourSpacesLookAsTheyWereMeant) {
  const FileURL url = writePicture("a.png", 400, 200);
  QImage wide = plain({128, 64}, QColor(200, 80, 40));
  wide.setColorSpace(QColorSpace::SRgb);
  wide.convertToColorSpace(QColorSpace::DisplayP3);
  shared->ofOthers[url.path()] = wide;
  EXPECT_NEAR(image(url, 128, Sharing::taken).pixelColor(5, 5).red(), 200, 2);
}

TEST_F(ThumbnailSharingTest, ACancelledLoadAsksNobodyAndKeepsNothing) {
  const FileURL url = writePicture("a.png", 400, 200);
  executor.holdBackground();
  const auto task = sharer.load(url, 128, Sharing::takenAndKept);
  task.cancel();
  executor.runHeldBackground();
  executor.drain();
  EXPECT_TRUE(shared->asked.empty());
  EXPECT_TRUE(shared->kept.empty());
}

// --- Crops ---

// --- All of its pixels ---

class FullPictureTest : public ThumbnailLoaderTest {
 protected:
  Outcome loadFull(const FileURL& url) {
    std::optional<Outcome> outcome;
    keep(loader.loadFull(url), outcome).detach();
    executor.drain();
    return outcome.value_or(ThumbnailLoader::Cancelled{});
  }
  std::optional<QSize> pixelSize(const FileURL& url) {
    std::optional<QSize> size;
    keepSize(loader.pixelSize(url), size).detach();
    executor.drain();
    return size;
  }
  static Task<> keepSize(Task<std::optional<QSize>> task, std::optional<QSize>& size) { size = co_await task; }
};

TEST_F(FullPictureTest, HasEachPixelAndTheCacheNothingOfIt) {
  const FileURL url = writePicture("a.png", 700, 300);
  image(writePicture("b.png", 100, 100), 100);
  const int64_t before = loader.cachedBytes();
  const Outcome outcome = loadFull(url);
  const auto* picture = std::get_if<QImage>(&outcome);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->size(), QSize(700, 300));
  EXPECT_EQ(picture->format(), QImage::Format_RGB32) << "what the screen wants";
  EXPECT_EQ(picture->pixelColor(350, 150), QColor(Qt::red));
  EXPECT_EQ(loader.cachedBytes(), before);
}

TEST_F(FullPictureTest, OfAnotherColourSpaceLooksAsItWasMeant) {
  QImage image(50, 50, QImage::Format_RGB32);
  image.fill(QColor(200, 80, 40));
  image.setColorSpace(QColorSpace::SRgb);
  image.convertToColorSpace(QColorSpace::DisplayP3);
  const FileURL url = folder.file("a.png");
  ASSERT_TRUE(image.save(url.displayPath(), "PNG"));
  const Outcome outcome = loadFull(url);
  ASSERT_TRUE(std::holds_alternative<QImage>(outcome));
  EXPECT_NEAR(std::get<QImage>(outcome).pixelColor(5, 5).red(), 200, 2);
  EXPECT_NEAR(std::get<QImage>(outcome).pixelColor(5, 5).green(), 80, 2);
}

TEST_F(FullPictureTest, IsNeverReadWhereTheFileIsEvicted) {
  const FileURL url = writePicture("a.png", 70, 30);
  EXPECT_EQ(pixelSize(url), QSize(70, 30));
  evicted.insert(url.path());
  EXPECT_EQ(loadFull(url), Outcome(ThumbnailLoader::NotDownloaded{}));
  EXPECT_EQ(pixelSize(url), std::nullopt);
}

TEST_F(FullPictureTest, CannotBeOfWhatIsNoPicture) {
  writeFile(folder.file("a.png"), "no picture");
  EXPECT_EQ(loadFull(folder.file("a.png")), Outcome(ThumbnailLoader::Unreadable{}));
  EXPECT_EQ(pixelSize(folder.file("a.png")), std::nullopt);
  EXPECT_EQ(loadFull(folder.file("gone.png")), Outcome(ThumbnailLoader::Unreadable{}));
}

TEST_F(FullPictureTest, IsNotDecodedOnceItIsNotWanted) {
  const FileURL url = writePicture("a.png", 70, 30);
  executor.holdBackground();
  std::optional<Outcome> outcome;
  const auto task = loader.loadFull(url);
  keep(task, outcome).detach();
  task.cancel();
  executor.runHeldBackground();
  EXPECT_EQ(outcome, Outcome(ThumbnailLoader::Cancelled{}));
}

class ThumbnailCropTest : public ThumbnailLoaderTest {
 protected:
  /// The size of the whole thumbnail that a crop was cut from.
  QSize sizeAskedFor(QSize full, int pixels, const QRectF& crop) {
    ThumbnailLoader large(executor, testing::decodedPictures(), [](const FileURL&) { return false; });
    std::optional<Outcome> outcome;
    keep(large.load(writePicture("crop.png", full.width(), full.height()), pixels, crop), outcome).detach();
    executor.drain();
    EXPECT_TRUE(outcome && std::holds_alternative<QImage>(*outcome));
    // Only that one is kept, and it has the shape of the picture.
    const double pixelsKept = static_cast<double>(large.cachedBytes()) / 4;
    const double ratio = static_cast<double>(full.height()) / full.width();
    const int width = qRound(std::sqrt(pixelsKept / ratio));
    return {width, qRound(pixelsKept / width)};
  }
};

TEST_F(ThumbnailCropTest, AsLargeAsTheImageItAsksForExactlyThePixels) {
  EXPECT_EQ(sizeAskedFor({1000, 500}, 300, QRectF(0, 0, 1000, 500)), QSize(300, 150));
  EXPECT_EQ(part(writePicture("a.png", 90, 45), 30, QRectF(0, 0, 90, 45)).size(), QSize(30, 15));
}

TEST_F(ThumbnailCropTest, OfAQuarterOfTheWidthItAsksForFourTimesThePixels) {
  EXPECT_EQ(sizeAskedFor({4000, 1000}, 300, QRectF(1000, 0, 1000, 1000)), QSize(1200, 300));
}

TEST_F(ThumbnailCropTest, AsksForTheNextWholeNumberOfPixels) {
  EXPECT_EQ(sizeAskedFor({1000, 500}, 100, QRectF(0, 0, 300, 200)), QSize(334, 167));
}

TEST_F(ThumbnailCropTest, NeverAsksForMoreThanTheFullImage) {
  EXPECT_EQ(sizeAskedFor({400, 200}, 300, QRectF(10, 10, 20, 20)), QSize(400, 200));
  EXPECT_EQ(part(writePicture("a.png", 80, 80), 300, QRectF(10, 10, 20, 30)).size(), QSize(20, 30));
}

TEST_F(ThumbnailCropTest, ShowsThatPartAlone) {
  QImage image(80, 40, QImage::Format_RGB32);
  image.fill(Qt::red);
  for (int y = 10; y < 30; ++y) {
    for (int x = 20; x < 60; ++x) image.setPixelColor(x, y, Qt::blue);
  }
  const FileURL url = folder.file("a.png");
  ASSERT_TRUE(image.save(url.displayPath(), "PNG"));
  QImage blue(40, 20, QImage::Format_RGB32);
  blue.fill(Qt::blue);
  EXPECT_EQ(part(url, 1000, QRectF(20, 10, 40, 20)), blue);
  EXPECT_EQ(part(url, 1000, QRectF(60, 30, -40, -20)), blue) << "the same rectangle told from its other corner";
  const QImage small = part(url, 20, QRectF(20, 10, 40, 20));
  EXPECT_EQ(small.size(), QSize(20, 10));
  EXPECT_EQ(small.pixelColor(10, 5), QColor(Qt::blue));
}

TEST_F(ThumbnailCropTest, GrowsOutwardToWholePixelsAndEndsAtTheEdges) {
  const FileURL url = writePicture("a.png", 80, 40);
  EXPECT_EQ(part(url, 1000, QRectF(10.5, 10.2, 10, 5)).size(), QSize(11, 6));
  EXPECT_EQ(part(url, 1000, QRectF(70, 35, 100, 100)).size(), QSize(10, 5));
  EXPECT_EQ(part(url, 1000, QRectF(-5, -5, 10, 10)).size(), QSize(5, 5));
}

TEST_F(ThumbnailCropTest, OfNoPixelIsUnreadable) {
  const FileURL url = writePicture("a.png", 80, 40);
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  constexpr double kEndless = std::numeric_limits<double>::infinity();
  for (const QRectF& crop :
       {QRectF(0, 0, 0, 0), QRectF(5, 5, 0.9, 10), QRectF(5, 5, 10, 0.9), QRectF(80, 0, 10, 10), QRectF(-10, 0, 10, 10),
        QRectF(0, 0, kNone, 10), QRectF(kNone, 0, 10, 10), QRectF(1e300, 0, 10, 10), QRectF(kEndless, 0, 10, 10)}) {
    EXPECT_EQ(loadCrop(url, 100, crop), Outcome(ThumbnailLoader::Unreadable{})) << crop.x() << " " << crop.width();
  }
}

TEST_F(ThumbnailCropTest, OfAPictureThatCannotBeReadIsUnreadable) {
  const FileURL url = folder.file("a.png");
  writeFile(url, "no picture");
  EXPECT_EQ(loadCrop(url, 100, QRectF(0, 0, 10, 10)), Outcome(ThumbnailLoader::Unreadable{}));
  EXPECT_EQ(loadCrop(folder.file("missing.png"), 100, QRectF(0, 0, 10, 10)), Outcome(ThumbnailLoader::Unreadable{}));
}

TEST_F(ThumbnailCropTest, OfAnEvictedFileIsNotDownloaded) {
  const FileURL url = writePicture("a.png", 100, 100);
  evicted.insert(url.path());
  const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  ASSERT_GE(::inotify_add_watch(watch, url.c_str(), IN_OPEN | IN_ACCESS), 0);
  EXPECT_EQ(loadCrop(url, 100, QRectF(0, 0, 10, 10)), Outcome(ThumbnailLoader::NotDownloaded{}));
  EXPECT_EQ(loadCrop(url, 100, QRectF()), Outcome(ThumbnailLoader::NotDownloaded{})) << "before the crop is looked at";
  char event[256];
  EXPECT_LT(::read(watch, event, sizeof event), 0);
  ::close(watch);
}

TEST_F(ThumbnailCropTest, IsInPixelsOfTheUprightPicture) {
  const FileURL url = folder.file("a.jpg");
  writeFile(url, testing::oriented(testing::encoded(testing::redAndBlue(320, 160), "JPEG"), 6));
  // Upright it is 160 by 320, its upper half red.
  ThumbnailLoader large(executor, testing::decodedPictures(), [](const FileURL&) { return false; });
  std::optional<Outcome> outcome;
  keep(large.load(url, 100, QRectF(0, 0, 160, 160)), outcome).detach();
  executor.drain();
  ASSERT_TRUE(outcome && std::holds_alternative<QImage>(*outcome));
  EXPECT_EQ(std::get<QImage>(*outcome).size(), QSize(100, 100));
  EXPECT_EQ(large.cachedBytes(), 100 * 200 * 4);
  EXPECT_TRUE(testing::isAlike(std::get<QImage>(*outcome).pixel(50, 50), testing::kRed));
  EXPECT_EQ(part(url, 100, QRectF(200, 0, 100, 100)), QImage()) << "beside it, though not of the stored picture";
}

TEST_F(ThumbnailCropTest, IsCutFromTheWholeThatIsKept) {
  const FileURL url = writePicture("a.png", 100, 100);
  setModifiedToNanosecond(url, 1678307200, 0);
  EXPECT_EQ(part(url, 50, QRectF(0, 0, 50, 50)).size(), QSize(50, 50));
  EXPECT_EQ(loader.cachedBytes(), kBytes) << "not the cut";
  EXPECT_EQ(part(url, 50, QRectF(50, 50, 50, 50)).size(), QSize(50, 50));
  EXPECT_EQ(loader.cachedBytes(), kBytes);
}

TEST_F(ThumbnailCropTest, IsReadInTheBackground) {
  executor.holdBackground();
  std::optional<Outcome> outcome;
  keep(loader.load(writePicture("a.png", 100, 100), 100, QRectF(0, 0, 50, 50)), outcome).detach();
  executor.drain();
  EXPECT_FALSE(outcome);
  EXPECT_EQ(loader.cachedBytes(), 0);
  executor.runHeldBackground();
  EXPECT_TRUE(outcome);
}

}  // namespace
}  // namespace quillmere
