#include "fakes/PictureFixture.h"

// A picture that is opened to take a part of it, and whether its file is still the one that was opened.
namespace quillmere::testing {
namespace {

using ImageOperations::OperationError;
using ::testing::IsEmpty;

class OpenedPicture : public PictureFixture {
 protected:
  using Opened = Result<AppModel::OpenedPicture, OperationError>;
  static Opened outcome(const Task<Opened>& task) {
    EXPECT_TRUE(task.isDone());
    return task.isDone() ? task.await_resume() : Opened(OperationError::encoding);
  }
  Opened open(const UUID& id) {
    const auto task = model->openPicture(item(id), false);
    executor.drain();
    return outcome(task);
  }
  void expectUnreadable(const UUID& id) {
    const auto opened = open(id);
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.reason(), OperationError::unreadable);
  }
  static std::string anotherPicture() {
    return ImageOperations::encode(picture().copy(0, 0, 50, 60), PictureFormat::png)->toStdString();
  }
};

TEST_F(OpenedPicture, ComesAtFullSizeWithWhatItsFileWas) {
  const UUID id = arrivePicture("shot.png");
  const auto opened = open(id);
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened->image, picture());
  EXPECT_TRUE(opened->windows.empty());
  EXPECT_EQ(opened->readFrom, model->stampOf(item(id).url));
  EXPECT_THAT(scanner.calls, IsEmpty()) << "nobody asked for windows";
}

TEST_F(OpenedPicture, ComesWithItsWindowsWhereTheyAreAskedFor) {
  const UUID id = arrivePicture("shot.png");
  const auto task = model->openPicture(item(id), true);
  executor.drain();
  ASSERT_EQ(scanner.calls.size(), 1u);
  EXPECT_EQ(scanner.calls[0]->url, item(id).url);
  EXPECT_FALSE(task.isDone());
  scanner.answer(0, picture(), QRectF(10, 20, 30, 40));
  executor.drain();
  const auto opened = outcome(task);
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened->image, picture());
  ASSERT_EQ(opened->windows.size(), 1u);
  EXPECT_EQ(opened->windows[0].frame, QRectF(10, 20, 30, 40));
  EXPECT_EQ(opened->readFrom, model->stampOf(item(id).url));
}

TEST_F(OpenedPicture, IsNoneOfAFileThatHoldsNoneOrIsGone) {
  const UUID id = arrive("words.png");
  expectUnreadable(id);
  deleteFile(item(id).url);
  expectUnreadable(id);
}

TEST_F(OpenedPicture, IsNoneWhereTheSearchForWindowsCouldNotReadIt) {
  const UUID id = arrivePicture("shot.png");
  const auto task = model->openPicture(item(id), true);
  executor.drain();
  scanner.answer(0, FakeWindowScanner::Outcome(OperationError::unreadable));
  executor.drain();
  const auto opened = outcome(task);
  ASSERT_FALSE(opened);
  EXPECT_EQ(opened.reason(), OperationError::unreadable);
}

TEST_F(OpenedPicture, IsNotReadWhereThatWouldDownloadIt) {
  const UUID id = arrivePicture("shot.png");
  dataless.insert(item(id).url.path());
  expectUnreadable(id);
  EXPECT_THAT(downloads, IsEmpty());
}

TEST_F(OpenedPicture, WrittenWhileItIsReadIsNotTheFileThatWasOpened) {
  const UUID id = arrivePicture("shot.png");
  const FileURL url = item(id).url;
  const FileStamp before = model->stampOf(url);
  executor.holdBackground();
  const auto task = model->openPicture(item(id), false);
  executor.drain();
  // Between the look at the file and its reading.
  executor.runInBackground([&] { writeFile(url, anotherPicture()); }, [] {});
  executor.runHeldBackground();
  const auto opened = outcome(task);
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened->image.size(), QSize(50, 60));
  EXPECT_EQ(opened->readFrom, before);
  EXPECT_NE(opened->readFrom, model->stampOf(url)) << "so that the new one is not replaced by a part of who knows what";
}

TEST_F(OpenedPicture, WrittenWhileItsWindowsAreFoundIsNotTheFileThatWasOpened) {
  const UUID id = arrivePicture("shot.png");
  const FileStamp before = model->stampOf(item(id).url);
  const auto task = model->openPicture(item(id), true);
  executor.drain();
  writeFile(item(id).url, anotherPicture());
  scanner.answer(0, picture(), std::nullopt);
  executor.drain();
  const auto opened = outcome(task);
  ASSERT_TRUE(opened);
  EXPECT_TRUE(opened->windows.empty());
  EXPECT_EQ(opened->readFrom, before);
}

TEST_F(OpenedPicture, ThatIsNotWantedAnyMoreIsNotLookedThrough) {
  const UUID id = arrivePicture("shot.png");
  executor.holdBackground();
  const auto task = model->openPicture(item(id), true);
  task.cancel();
  executor.runHeldBackground();
  EXPECT_FALSE(outcome(task));
  EXPECT_THAT(scanner.calls, IsEmpty());
}

TEST_F(OpenedPicture, OfAModelThatWentAwayIsNone) {
  const UUID id = arrivePicture("shot.png");
  executor.holdBackground();
  const auto task = model->openPicture(item(id), true);
  model.reset();
  executor.runHeldBackground();
  EXPECT_FALSE(outcome(task));
  EXPECT_THAT(scanner.calls, IsEmpty());
}

TEST_F(OpenedPicture, ThatNobodyWaitsForAnyMoreIsNoHarm) {
  const UUID id = arrivePicture("shot.png");
  for (const bool detectsWindows : {false, true}) {
    executor.holdBackground();
    model->openPicture(item(id), detectsWindows).cancel();
    executor.runHeldBackground();
  }
  EXPECT_TRUE(open(id));
}

// --- Whether it can be replaced ---

class ReplaceablePicture : public OpenedPicture {
 protected:
  void SetUp() override {
    OpenedPicture::SetUp();
    id = arrivePicture("shot.png");
    readFrom = model->stampOf(url);
    ASSERT_TRUE(isReplaceable());
    ASSERT_TRUE(isKnownReplaceable());
  }
  bool isReplaceable() {
    const auto task = model->isReplaceable(id, url, readFrom);
    executor.drain();
    EXPECT_TRUE(task.isDone());
    return task.await_resume();
  }
  bool isKnownReplaceable() const { return model->isReplaceableAsFarAsKnown(id, url); }

  const FileURL url = shots.appending("shot.png");
  UUID id;
  FileStamp readFrom;
};

TEST_F(ReplaceablePicture, OfAnotherNameIsNone) {
  ASSERT_TRUE(finish(model->rename(id, QStringLiteral("Invoice"), ErrorScope::inbox)));
  EXPECT_FALSE(isKnownReplaceable());
  EXPECT_FALSE(isReplaceable());
}

TEST_F(ReplaceablePicture, ThatLeftTheInboxIsNone) {
  model->removeRecords({id});
  EXPECT_FALSE(isKnownReplaceable());
  EXPECT_FALSE(isReplaceable());
}

TEST_F(ReplaceablePicture, WrittenOverIsNone) {
  writeFile(url, anotherPicture());
  EXPECT_TRUE(isKnownReplaceable()) << "without a look";
  EXPECT_FALSE(isReplaceable());
}

TEST_F(ReplaceablePicture, WrittenOverWithAsManyBytesIsNone) {
  std::filesystem::last_write_time(url.path(), std::filesystem::last_write_time(url.path()) + std::chrono::seconds(1));
  EXPECT_FALSE(isReplaceable());
}

TEST_F(ReplaceablePicture, WithAnotherFileInItsPlaceIsNone) {
  const FileURL other = home.file("other.png");
  writeFile(other, readBytes(url));
  moveFile(other, url);
  EXPECT_FALSE(isReplaceable());
}

TEST_F(ReplaceablePicture, ThatIsGoneIsNone) {
  deleteFile(url);
  EXPECT_FALSE(isReplaceable());
  readFrom = model->stampOf(url);
  EXPECT_FALSE(isReplaceable()) << "nor where it was gone already when it was looked at first";
}

TEST_F(ReplaceablePicture, InAFolderThatCannotBeReachedIsNone) {
  model->keepPrompt(id, std::nullopt).detach();
  executor.drain();
  makeUnavailable(id);
  EXPECT_FALSE(isKnownReplaceable());
  EXPECT_FALSE(isReplaceable());
}

TEST_F(ReplaceablePicture, WhoseDataAreInTheCloudIsNone) {
  dataless.insert(url.path());
  EXPECT_TRUE(isKnownReplaceable());
  EXPECT_FALSE(isReplaceable()) << "also before the next look at all files";
  reconcileAll();
  ASSERT_TRUE(model->evictedItemIDs->contains(id));
  EXPECT_FALSE(isKnownReplaceable());
  EXPECT_FALSE(isReplaceable());
  dataless.clear();
  reconcileAll();
  EXPECT_TRUE(isReplaceable());
}

TEST_F(ReplaceablePicture, WhoseRecordGoesDuringTheLookIsNone) {
  executor.holdBackground();
  const auto task = model->isReplaceable(id, url, readFrom);
  model->removeRecords({id});
  executor.runHeldBackground();
  EXPECT_FALSE(task.await_resume());
}

TEST_F(ReplaceablePicture, OfAModelThatWentAwayIsNone) {
  executor.holdBackground();
  const auto task = model->isReplaceable(id, url, readFrom);
  model.reset();
  executor.runHeldBackground();
  EXPECT_FALSE(task.await_resume());
}

}  // namespace
}  // namespace quillmere::testing
