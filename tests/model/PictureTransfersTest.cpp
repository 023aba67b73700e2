#include "model/PictureTransfers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/DecodedPictures.h"
#include "fakes/ModelFakes.h"
#include "foundation/ManualExecutor.h"
#include "support/Files.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class FakeTransferSource final : public TransferSource {
 public:
  std::optional<PromptPreviewTransfer::Crop> extractedWindow(const UUID&) const override { return window; }
  std::optional<CopyFailure> knownObstacle(const UUID&) const override { return obstacle; }
  void showTransferFailure(ErrorScope scope, const UUID& id, const QString& title, const QString&) override {
    failures.push_back({scope, id, title});
  }

  struct Failure {
    ErrorScope scope;
    UUID id;
    QString title;
    bool operator==(const Failure&) const = default;
  };
  std::optional<PromptPreviewTransfer::Crop> window;
  std::optional<CopyFailure> obstacle;
  std::vector<Failure> failures;
};

class PictureTransfersTest : public ::testing::Test {
 protected:
  PictureTransfersTest() {
    world.executor = &executor;
    world.pictures = decodedPictures();
    world.pasteboard = &pasteboard;
    world.announcer = &announcer;
    world.transferFiles = TransferFiles(home.file("transfers"));
    world.isDataless = [this](const FileURL&) { return isEvicted; };
    world.fileIdentity = [this](const FileURL&) {
      ++looks;
      return looks >= replacedAtLook ? another : identity;
    };
  }
  ScreenshotItem add(int number, const char* bytes) {
    ScreenshotItem item = bareItem(number);
    item.url = home.file(std::to_string(number) + ".png");
    writeFile(item.url, bytes);
    items.insertNewest(item);
    return item;
  }

  TemporaryFolder home;
  CallLog log;
  ManualExecutor executor;
  FakePasteboard pasteboard;
  FakeAnnouncer announcer{log};
  FakeTransferSource source;
  bool isEvicted = false;
  const std::optional<FileIdentity> identity = FileIdentity{"volume", 1, Date{1}, 3};
  const std::optional<FileIdentity> another = FileIdentity{"volume", 2, Date{2}, 3};
  int looks = 0;
  int replacedAtLook = 1000;
  AppModelDependencies world;
  ScreenshotList items;
  std::unique_ptr<PictureTransfers> transfers = std::make_unique<PictureTransfers>(world, items, source);
};

TEST_F(PictureTransfersTest, OfTwoCopiesTheLastCounts) {
  transfers->copy(add(1, "one"), ErrorScope::popup).detach();
  transfers->copy(add(2, "two"), ErrorScope::popup).detach();
  executor.drain();
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].data, "two");
  EXPECT_THAT(announcer.said, SizeIs(1));
}

TEST_F(PictureTransfersTest, TheCopiesOfAPictureGoWithItsRecord) {
  const FileURL copies = home.file("transfers");
  const auto prepare = [&](int number) {
    transfers->prepare(*items.find(uuid(number)), QStringLiteral("Another name")).detach();
    executor.drain();
  };
  const auto count = [&] {
    return std::distance(std::filesystem::directory_iterator(copies.path()), std::filesystem::directory_iterator());
  };
  add(1, "one");
  add(2, "two");
  prepare(1);
  prepare(1);
  prepare(2);
  EXPECT_EQ(count(), 2);
  transfers->forget({uuid(1)});
  executor.drain();
  EXPECT_EQ(count(), 1);
  transfers->removeLeftCopies();
  executor.drain();
  EXPECT_EQ(count(), 0);
}

TEST_F(PictureTransfersTest, ACopyThatIsReadyAfterItsRecordWentIsRemoved) {
  add(1, "one");
  executor.holdBackground();
  transfers->prepare(*items.find(uuid(1)), QStringLiteral("Another name")).detach();
  items.remove({uuid(1)});
  transfers->forget({uuid(1)});
  executor.runHeldBackground();
  executor.drain();
  EXPECT_TRUE(std::filesystem::is_empty(home.file("transfers").path()));
}

TEST_F(PictureTransfersTest, WhatIsKnownNotToBeHereIsNotRead) {
  source.obstacle = CopyFailure::unavailable;
  transfers->copy(add(1, "one"), ErrorScope::inbox).detach();
  EXPECT_THAT(source.failures,
              ElementsAre(FakeTransferSource::Failure{ErrorScope::inbox, uuid(1), "Couldn’t Copy Screenshot"}))
      << "at once";
  executor.drain();
  EXPECT_THAT(pasteboard.items, IsEmpty());
}

TEST_F(PictureTransfersTest, AFileThatWasRenamedMeanwhileIsReadUnderItsNewName) {
  const ScreenshotItem item = add(1, "one");
  transfers->copy(item, ErrorScope::popup).detach();
  const FileURL renamed = home.file("renamed.png");
  std::filesystem::rename(item.url.path(), renamed.path());
  items.update(0, [&](ScreenshotItem& record) { record.url = renamed; });
  executor.drain();
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].url, renamed);
}

TEST_F(PictureTransfersTest, ACopyWhoseOwnerIsGoneWritesNothing) {
  transfers->copy(add(1, "one"), ErrorScope::popup).detach();
  transfers.reset();
  executor.drain();
  EXPECT_THAT(pasteboard.items, IsEmpty());
  EXPECT_THAT(source.failures, IsEmpty());
}

TEST_F(PictureTransfersTest, AnExtractedWindowIsPreparedAsAPngEvenOfAnEvictedFile) {
  isEvicted = true;
  QImage image(20, 10, QImage::Format_RGB32);
  image.fill(Qt::red);
  source.window = PromptPreviewTransfer::Crop{image, QRectF(0, 0, 5, 4)};
  const auto preparing = transfers->prepare(add(1, "one"), QStringLiteral("Window"));
  executor.drain();
  ASSERT_TRUE(preparing.isDone());
  const auto prepared = preparing.await_resume();
  ASSERT_TRUE(prepared);
  EXPECT_EQ(prepared->file.lastPathComponent(), "Window.png");
  EXPECT_EQ(QImage(prepared->file.displayPath()).size(), QSize(5, 4));
}

TEST_F(PictureTransfersTest, AnEvictedFileIsNotSharedAndThatIsShown) {
  isEvicted = true;
  const auto preparing = transfers->prepare(add(1, "one"), {});
  executor.drain();
  EXPECT_EQ(preparing.await_resume(), std::nullopt);
  EXPECT_THAT(source.failures,
              ElementsAre(FakeTransferSource::Failure{ErrorScope::popup, uuid(1), "Couldn’t Share Screenshot"}));
}

TEST_F(PictureTransfersTest, AnotherFileInThePlaceIsNotSentBeforeOrDuringTheReading) {
  for (const int look : {1, 2}) {
    replacedAtLook = 1000;
    ScreenshotItem item = add(look, "one");
    item.fileIdentity = identity;
    looks = 0;
    replacedAtLook = look;
    const auto copying = transfers->copy(item, ErrorScope::inbox);
    executor.drain();
    looks = 0;
    const auto preparing = transfers->prepare(item, {});
    executor.drain();
    EXPECT_EQ(preparing.await_resume(), std::nullopt);
  }
  EXPECT_TRUE(pasteboard.items.empty());
  EXPECT_EQ(source.failures.size(), 4u);
}

// --- A part of a picture ---

class CopiedCrop : public PictureTransfersTest {
 protected:
  Task<bool> copy(const QRectF& rect) { return transfers->copyCrop(image, rect); }
  static bool isDone(const Task<bool>& task) { return task.isDone() && task.await_resume(); }

  const QImage image = [] {
    QImage drawn(20, 10, QImage::Format_ARGB32);
    drawn.fill(qRgba(10, 20, 30, 40));
    drawn.setPixel(4, 5, qRgba(200, 100, 50, 25));
    return drawn;
  }();
};

TEST_F(CopiedCrop, IsAPngInNoFile) {
  const auto copying = copy({3, 4, 5, 6});
  executor.drain();
  EXPECT_TRUE(isDone(copying));
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].url, std::nullopt);
  EXPECT_EQ(pasteboard.items[0].contentType, "image/png");
  EXPECT_EQ(QImage::fromData(pasteboard.items[0].data, "png"), image.copy(3, 4, 5, 6));
  ASSERT_THAT(announcer.said, SizeIs(1));
  EXPECT_EQ(announcer.said[0].text, "Cropped image copied.");
  EXPECT_EQ(announcer.said[0].priority, AnnouncementPriority::low);
}

TEST_F(CopiedCrop, ThatIsNotInThePictureIsTheCallersToShow) {
  const auto copying = copy({18, 4, 5, 6});
  executor.drain();
  EXPECT_TRUE(copying.isDone());
  EXPECT_FALSE(isDone(copying));
  EXPECT_THAT(pasteboard.items, IsEmpty());
  EXPECT_THAT(announcer.said, IsEmpty());
  EXPECT_THAT(source.failures, IsEmpty());
}

TEST_F(CopiedCrop, ThatALaterOneOvertookIsNotWrittenAndHasNotFailed) {
  for (const QRectF& rect : {QRectF(0, 0, 5, 5), QRectF(18, 4, 5, 6)}) {
    pasteboard.items.clear();
    announcer.said.clear();
    const auto first = copy(rect);
    const auto second = copy({3, 4, 2, 2});
    executor.drain();
    EXPECT_TRUE(isDone(first));
    EXPECT_TRUE(isDone(second));
    ASSERT_THAT(pasteboard.items, SizeIs(1));
    EXPECT_EQ(QImage::fromData(pasteboard.items[0].data, "png").size(), QSize(2, 2));
    EXPECT_THAT(announcer.said, SizeIs(1));
  }
}

TEST_F(CopiedCrop, AndACopiedFileOvertakeEachOther) {
  const auto crop = copy({0, 0, 5, 5});
  transfers->copy(add(1, "one"), ErrorScope::inbox).detach();
  executor.drain();
  EXPECT_TRUE(isDone(crop));
  ASSERT_THAT(pasteboard.items, SizeIs(1));
  EXPECT_EQ(pasteboard.items[0].data, "one");
  transfers->copy(add(2, "two"), ErrorScope::inbox).detach();
  const auto last = copy({0, 0, 5, 5});
  executor.drain();
  EXPECT_TRUE(isDone(last));
  ASSERT_THAT(pasteboard.items, SizeIs(2));
  EXPECT_EQ(pasteboard.items[1].url, std::nullopt);
}

TEST_F(CopiedCrop, WhoseOwnerIsGoneIsNotWritten) {
  const auto copying = copy({0, 0, 5, 5});
  transfers.reset();
  executor.drain();
  EXPECT_TRUE(copying.isDone());
  EXPECT_FALSE(isDone(copying));
  EXPECT_THAT(pasteboard.items, IsEmpty());
}

}  // namespace
}  // namespace quillmere::testing
