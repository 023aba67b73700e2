#include "fakes/PictureFixture.h"
#include "formats/ImageEncoding.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kUnreadable =
    "The screenshot couldn’t be opened. It may have moved or expired. Choose it again from the Inbox.";
constexpr const char* kInvalidCrop = "Choose a crop with a positive width and height inside the image.";
const QRectF kCrop(10, 20, 30, 40);

class AppModelReplacing : public PictureFixture {
 protected:
  /// The reason, or nothing when it was done.
  std::optional<std::string> replace(const UUID& id, const QRectF& rect = kCrop) {
    const auto task = model->replaceOriginal(id, picture(), rect);
    executor.drain();
    return reasonOf(task);
  }
  static std::optional<std::string> reasonOf(const Task<std::optional<QString>>& task) {
    if (!task.isDone()) return "not done";
    const auto reason = task.await_resume();
    return reason ? std::optional(reason->toStdString()) : std::nullopt;
  }
  static std::string formatOf(const FileURL& url) {
    const std::string bytes = readBytes(url);
    return bytes.starts_with("\x89PNG") ? "png" : bytes.starts_with("\xFF\xD8") ? "jpeg" : "neither";
  }
  void describe(const UUID& id) {
    ScreenshotItem described = item(id);
    described.suggestedName = "A window";
    described.recognizedText = "text";
    described.imageDescription = "A window with text";
    described.analysisFailure = AnalysisFailureCode::busy;
    described.analysisRetryable = true;
    described.captureKind = CaptureKind::display;
    described.knownWindows = "display 20x10 0";
    storeRecords({described});
    launch();
  }
  FileURL journal() const { return listFile.parent().appending("replacing.json"); }
};

TEST_F(AppModelReplacing, TheCropTakesTheNameAndTheOriginalGoesToTrash) {
  const UUID id = arrivePicture("shot.png");
  const std::string before = readBytes(shots.appending("shot.png"));
  EXPECT_EQ(replace(id), std::nullopt);
  const auto cropped = ImageOperations::loadImage(shots.appending("shot.png"));
  ASSERT_TRUE(cropped);
  EXPECT_EQ(*cropped, picture().copy(kCrop.toRect()));
  EXPECT_EQ(readBytes(trash.appending("shot.png")), before);
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png"));
  EXPECT_FALSE(fileExists(journal()));
}

TEST_F(AppModelReplacing, TheRecordStaysButForWhatDescribedTheOldPicture) {
  arrivePicture("shot.png");
  const UUID id = model->items()[0].id;
  model->markTemporary(id, TemporaryDuration::oneHour).detach();
  describe(id);
  const ScreenshotItem before = item(id);
  EXPECT_EQ(replace(id), std::nullopt);
  ScreenshotItem expected;
  expected.id = before.id;
  expected.url = before.url;
  expected.createdAt = before.createdAt;
  expected.state = before.state;
  expected.expiresAt = before.expiresAt;
  expected.fileIdentity = identityOf(before.url);
  expected.fileBookmark = FakeSecurityScope::bookmarkOf(before.url);
  EXPECT_EQ(item(id), expected);
  EXPECT_NE(item(id).fileIdentity, before.fileIdentity);
  EXPECT_EQ(savedRecord(id), expected);
  EXPECT_EQ(scheduledAt(id), before.expiresAt);
}

TEST_F(AppModelReplacing, AReplacedTemporaryScreenshotGoesWhenItsTimeIsUp) {
  const UUID id = arrivePicture("shot.png");
  model->markTemporary(id, TemporaryDuration::fiveMinutes).detach();
  replace(id);
  std::filesystem::remove_all(trash.path());
  advance(301);
  EXPECT_FALSE(hasRecord(id));
  EXPECT_TRUE(isInTrashFolder("shot.png"));
}

TEST_F(AppModelReplacing, AnUndecidedScreenshotStaysInThePopup) {
  const UUID id = arrivePicture("shot.png");
  replace(id);
  EXPECT_THAT(queue(), ElementsAre(id));
  EXPECT_EQ(stateOf(id), State::pending);
}

TEST_F(AppModelReplacing, TheFormatStaysThatOfTheName) {
  const UUID id = arrivePicture("shot.jpeg");
  EXPECT_EQ(replace(id), std::nullopt);
  EXPECT_EQ(formatOf(shots.appending("shot.jpeg")), "jpeg");
}

TEST_F(AppModelReplacing, AnUnknownExtensionHoldsAPngUnderItsOwnName) {
  const UUID id = arrivePicture("shot.capture");
  EXPECT_EQ(replace(id), std::nullopt);
  EXPECT_EQ(formatOf(shots.appending("shot.capture")), "png");
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.capture"));
}

TEST_F(AppModelReplacing, AFileOutsideTheFolderThatHadNoAccessIsGivenIt) {
  const UUID id = arrivePicture("shot.png");
  ScreenshotItem stored = item(id);
  const FileURL outside = elsewhere.appending("shot.png");
  std::filesystem::create_directories(elsewhere.path());
  moveFile(stored.url, outside);
  stored.url = outside;
  stored.fileBookmark.reset();
  storeRecords({stored});
  scope.refusesBookmarks = true;
  launchWatching();
  ASSERT_FALSE(scope.isOpen(outside));
  scope.refusesBookmarks = false;
  EXPECT_EQ(replace(id), std::nullopt);
  EXPECT_EQ(item(id).fileBookmark, FakeSecurityScope::bookmarkOf(outside));
  EXPECT_TRUE(scope.isOpen(outside));
}

TEST_F(AppModelReplacing, TheMonitorIsToldOfTheNewFile) {
  const UUID id = arrivePicture("shot.png");
  monitor.known.clear();
  EXPECT_EQ(replace(id), std::nullopt);
  EXPECT_THAT(monitor.known, ElementsAre(shots.appending("shot.png")));
}

TEST_F(AppModelReplacing, TheMonitorIsToldOfANumberUnderWhichTheOriginalCameBack) {
  const UUID id = arrivePicture("shot.png");
  monitor.known.clear();
  files.refusesReplacements = true;
  files.onMove = [&](const FileURL&, const FileURL& to) { writeFile(to, "a newcomer"); };
  EXPECT_NE(replace(id), std::nullopt);
  EXPECT_EQ(item(id).url, shots.appending("shot (1).png"));
  EXPECT_EQ(savedRecord(id)->url, item(id).url);
  EXPECT_THAT(monitor.known, ElementsAre(item(id).url));
}

TEST_F(AppModelReplacing, AnInvalidCropChangesNothing) {
  const UUID id = arrivePicture("shot.png");
  const ScreenshotItem before = item(id);
  EXPECT_EQ(replace(id, QRectF(90, 70, 30, 40)), kInvalidCrop);
  EXPECT_EQ(item(id), before);
  EXPECT_EQ(sizeOf(before.url), picture().size());
  EXPECT_EQ(files.calls(), 0);
}

TEST_F(AppModelReplacing, AnUnknownRecordCannotBeReplaced) {
  EXPECT_EQ(replace(uuid(9)), kUnreadable);
}

TEST_F(AppModelReplacing, ARefusalOfTrashLeavesTheOriginalAndNoTemporary) {
  const UUID id = arrivePicture("shot.png");
  const ScreenshotItem before = item(id);
  files.refuse(before.url);
  EXPECT_EQ(replace(id), "No space left on device.");
  EXPECT_EQ(item(id), before);
  EXPECT_EQ(sizeOf(before.url), picture().size());
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png"));
  EXPECT_FALSE(fileExists(journal()));
}

TEST_F(AppModelReplacing, AVanishedOriginalIsUnreadable) {
  const UUID id = arrivePicture("shot.png");
  const FileURL url = item(id).url;
  files.onTrash = [&] { deleteFile(url); };
  EXPECT_EQ(replace(id), kUnreadable);
  EXPECT_THAT(namesIn(shots), IsEmpty());
}

TEST_F(AppModelReplacing, ARefusedMoveBringsTheOriginalBackFromTrash) {
  const UUID id = arrivePicture("shot.png");
  const ScreenshotItem before = item(id);
  files.refusesReplacements = true;
  EXPECT_EQ(replace(id), "No space left on device.");
  EXPECT_EQ(item(id), before);
  EXPECT_EQ(sizeOf(before.url), picture().size());
  EXPECT_FALSE(isInTrashFolder("shot.png"));
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png"));
}

TEST_F(AppModelReplacing, WhereTrashTellsNoPlaceTheOriginalStaysInIt) {
  const UUID id = arrivePicture("shot.png");
  files.refusesReplacements = true;
  files.tellsPlaceInTrash = false;
  EXPECT_EQ(replace(id), "No space left on device.");
  EXPECT_TRUE(isInTrashFolder("shot.png"));
  EXPECT_THAT(namesIn(shots), IsEmpty());
}

TEST_F(AppModelReplacing, NothingIsThrownAwayWhileItIsBeingWritten) {
  const UUID id = arrivePicture("shot.png");
  model->markTemporary(id, TemporaryDuration::fiveMinutes).detach();
  executor.holdBackground();
  const auto task = model->replaceOriginal(id, picture(), kCrop);
  executor.drain();
  finish(model->disposeItem(item(id), ErrorScope::inbox, AppModel::DisposalReason::chosen));
  advance(301);
  EXPECT_TRUE(hasRecord(id));
  executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(reasonOf(task), std::nullopt);
  EXPECT_EQ(sizeOf(item(id).url), QSize(30, 40));
}

TEST_F(AppModelReplacing, AScreenshotThatWasRenamedMeanwhileIsNotReplaced) {
  const UUID id = arrivePicture("shot.png");
  executor.holdBackground();
  const auto task = model->replaceOriginal(id, picture(), kCrop);
  executor.drain();
  model->rename(id, QStringLiteral("A window"), ErrorScope::inbox).detach();
  executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(reasonOf(task), kUnreadable);
  EXPECT_EQ(sizeOf(shots.appending("A window.png")), picture().size());
  EXPECT_THAT(namesIn(shots), ElementsAre("A window.png"));
}

TEST_F(AppModelReplacing, AModelThatGoesAwayLeavesNoTemporary) {
  const UUID id = arrivePicture("shot.png");
  executor.holdBackground();
  model->replaceOriginal(id, picture(), kCrop).cancel();
  executor.drain();
  model.reset();
  executor.runHeldBackground();
  executor.drain();
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png"));
}

TEST_F(AppModelReplacing, ALookThatWasUnderWayDoesNotTakeTheRecordAway) {
  const UUID id = arrivePicture("shot.png");
  const FileURL url = item(id).url;
  const FileURL hidden = home.file("hidden.png");
  // The look finds nothing under the name, as between the two renames.
  moveFile(url, hidden);
  executor.holdBackground();
  model->reconcile({.ids = UUIDSet{id}, .polite = false, .dropsUnavailableFromQueue = false, .completions = {}});
  executor.drain();
  moveFile(hidden, url);
  const auto task = model->replaceOriginal(id, picture(), kCrop);
  executor.runHeldBackground();
  executor.drain();
  EXPECT_EQ(reasonOf(task), std::nullopt);
  EXPECT_TRUE(hasRecord(id));
}

// --- A run that ended in the middle ---

class AppModelCutOffReplacing : public AppModelReplacing {
 protected:
  void SetUp() override {
    launchWatching();
    id = arrivePicture("shot.png");
    describe(id);
    model.reset();
    const auto crop = ImageOperations::encode(picture().copy(kCrop.toRect()), PictureFormat::png);
    writeFile(temporary, crop->toStdString());
    const uint64_t file = fileStatus(temporary)->inode;
    ASSERT_TRUE(ReplacementJournal(journal()).save({{id, original, temporary, file}}));
  }
  void expectFinished() {
    EXPECT_EQ(sizeOf(original), QSize(30, 40));
    EXPECT_FALSE(fileExists(temporary));
    EXPECT_EQ(item(id).fileIdentity, identityOf(original));
    EXPECT_EQ(item(id).imageDescription, std::nullopt);
    EXPECT_EQ(item(id).url, original);
    EXPECT_FALSE(fileExists(journal()));
  }
  const FileURL original = shots.appending("shot.png");
  const FileURL temporary = shots.appending(".quillmere-replacing-5.png");
  UUID id;
};

TEST_F(AppModelCutOffReplacing, ACropWhoseOriginalIsInTrashTakesItsName) {
  std::filesystem::create_directories(trash.path());
  moveFile(original, trash.appending("shot.png"));
  launch();
  expectFinished();
  EXPECT_TRUE(isInTrashFolder("shot.png"));
}

TEST_F(AppModelCutOffReplacing, ACropWhoseOriginalNeverLeftGoes) {
  launch();
  EXPECT_EQ(sizeOf(original), picture().size());
  EXPECT_FALSE(fileExists(temporary));
  EXPECT_NE(item(id).imageDescription, std::nullopt);
  EXPECT_FALSE(fileExists(journal()));
}

TEST_F(AppModelCutOffReplacing, ACropThatTookTheNameIsKnownToTheRecord) {
  std::filesystem::create_directories(trash.path());
  moveFile(original, trash.appending("shot.png"));
  moveFile(temporary, original);
  launch();
  expectFinished();
}

TEST_F(AppModelCutOffReplacing, AFolderThatIsAwayIsWaitedFor) {
  moveFile(original, home.file("in the trash of that disk"));
  unreachableFolders.insert(shots.path());
  launch();
  EXPECT_TRUE(fileExists(journal()));
  EXPECT_TRUE(fileExists(temporary));
  unreachableFolders.clear();
  launch();
  expectFinished();
}

TEST_F(AppModelCutOffReplacing, ARefusalIsTriedAgainAtTheNextStart) {
  moveFile(original, home.file("in the trash"));
  files.refusesReplacements = true;
  launch();
  EXPECT_TRUE(fileExists(temporary));
  EXPECT_TRUE(fileExists(journal()));
}

// --- Save as New ---

class AppModelSavingAsNew : public AppModelReplacing {
 protected:
  /// The new record, or the reason.
  Result<UUID, QString> save(const UUID& source, const QRectF& rect = kCrop) {
    const auto task = model->saveAsNew(*model->items().find(source), picture(), rect);
    executor.drain();
    EXPECT_TRUE(task.isDone());
    return task.await_resume();
  }
};

TEST_F(AppModelSavingAsNew, TheCropIsAKeptScreenshotOfItsOwn) {
  const UUID source = arrivePicture("Screenshot 1.png");
  const auto saved = save(source);
  ASSERT_TRUE(saved);
  const FileURL url = shots.appending("Screenshot 1 Crop.png");
  ScreenshotItem expected;
  expected.id = *saved;
  expected.url = url;
  expected.createdAt = now();
  expected.state = State::permanent;
  expected.sourceItemID = source;
  expected.fileIdentity = identityOf(url);
  expected.fileBookmark = FakeSecurityScope::bookmarkOf(url);
  EXPECT_EQ(item(*saved), expected);
  EXPECT_EQ(savedRecord(*saved), expected);
  EXPECT_EQ(sizeOf(url), QSize(30, 40));
  EXPECT_THAT(queue(), ElementsAre(source)) << "nobody is asked about it";
}

TEST_F(AppModelSavingAsNew, WhoeverWantsToQuitKnowsUntilItIsInTheList) {
  const UUID source = arrivePicture("Screenshot 1.png");
  EXPECT_FALSE(model->isWritingFiles());
  size_t listed = 0;
  model->onFilesWritten = [&] { listed = model->items().size(); };
  executor.holdBackground();
  const auto saving = model->saveAsNew(item(source), picture(), kCrop);
  const auto replacing = model->replaceOriginal(source, picture(), kCrop);
  EXPECT_TRUE(model->isWritingFiles());
  executor.runHeldBackground();
  EXPECT_TRUE(saving.isDone());
  EXPECT_TRUE(replacing.isDone());
  EXPECT_FALSE(model->isWritingFiles());
  EXPECT_EQ(listed, 2u) << "told once the last of them is done";
  listed = 0;
  EXPECT_FALSE(save(source, QRectF()));
  EXPECT_EQ(listed, 2u) << "also when it failed";
}

TEST_F(AppModelSavingAsNew, TheMonitorIsToldOfTheNewFile) {
  const UUID source = arrivePicture("Screenshot 1.png");
  monitor.known.clear();
  ASSERT_TRUE(save(source));
  EXPECT_THAT(monitor.known, ElementsAre(shots.appending("Screenshot 1 Crop.png")));
}

TEST_F(AppModelSavingAsNew, ATakenNameIsNumbered) {
  const UUID source = arrivePicture("Screenshot 1.png");
  writeFile(shots.appending("Screenshot 1 Crop.png"), "another");
  const auto saved = save(source);
  ASSERT_TRUE(saved);
  EXPECT_EQ(item(*saved).url, shots.appending("Screenshot 1 Crop (1).png"));
  EXPECT_EQ(readBytes(shots.appending("Screenshot 1 Crop.png")), "another");
}

TEST_F(AppModelSavingAsNew, TheCropOfAJpegIsAPng) {
  const auto saved = save(arrivePicture("shot.jpg"));
  ASSERT_TRUE(saved);
  EXPECT_EQ(item(*saved).url, shots.appending("shot Crop.png"));
  EXPECT_EQ(formatOf(item(*saved).url), "png");
}

TEST_F(AppModelSavingAsNew, WithoutAFolderItSaysSo) {
  folderStore.stored.reset();
  writeFile(elsewhere.appending("shot.png"), "a picture");
  launch();
  monitor.onArrivedScreenshot(elsewhere.appending("shot.png"));
  const auto saved = save(model->items()[0].id);
  ASSERT_FALSE(saved);
  EXPECT_EQ(saved.reason(), "Choose a screenshot folder in Settings, then save again.");
}

TEST_F(AppModelSavingAsNew, AnInvalidCropWritesNothing) {
  const auto saved = save(arrivePicture("shot.png"), QRectF());
  ASSERT_FALSE(saved);
  EXPECT_EQ(saved.reason(), kInvalidCrop);
  EXPECT_THAT(namesIn(shots), ElementsAre("shot.png"));
}

TEST_F(AppModelSavingAsNew, ASourceThatHasLeftTheInboxIsCroppedAllTheSame) {
  const UUID source = arrivePicture("Screenshot 1.png");
  const ScreenshotItem gone = item(source);
  model->removeRecords({source});
  const auto task = model->saveAsNew(gone, picture(), kCrop);
  executor.drain();
  const auto saved = task.await_resume();
  ASSERT_TRUE(saved);
  EXPECT_EQ(item(*saved).url, shots.appending("Screenshot 1 Crop.png"));
  EXPECT_EQ(item(*saved).sourceItemID, source);
}

TEST_F(AppModelSavingAsNew, ItsNameIsTheSourcesOfNow) {
  const UUID source = arrivePicture("Screenshot 1.png");
  const ScreenshotItem before = item(source);
  ASSERT_TRUE(finish(model->rename(source, QStringLiteral("Invoice"), ErrorScope::inbox)));
  const auto task = model->saveAsNew(before, picture(), kCrop);
  executor.drain();
  ASSERT_TRUE(task.await_resume());
  EXPECT_EQ(model->items()[0].url, shots.appending("Invoice Crop.png"));
}

TEST_F(AppModelSavingAsNew, TheMonitorsNewsOfTheNewFileMakesNoSecondRecord) {
  const auto saved = save(arrivePicture("shot.png"));
  ASSERT_TRUE(saved);
  monitor.onScreenshot(item(*saved).url);
  EXPECT_EQ(model->items().size(), 2u);
}

TEST_F(AppModelSavingAsNew, NorDoesNewsThatComesWhileTheDiskStillTakesItIn) {
  const UUID source = arrivePicture("Screenshot 1.png");
  const FileURL crop = shots.appending("Screenshot 1 Crop.png");
  AppModelDependencies world = dependencies();
  bool isTold = false;
  // The file is seen, and the look at it is over, before the writer has come back.
  world.fileIdentity = [&](const FileURL& url) {
    if (url == crop && fileExists(crop) && !std::exchange(isTold, true)) monitor.onScreenshot(crop);
    return identityOf(url);
  };
  model.reset();
  model = std::make_unique<AppModel>(world);
  model->start();
  executor.drain();
  const auto saved = save(source);
  ASSERT_TRUE(saved);
  EXPECT_TRUE(isTold);
  ASSERT_EQ(model->items().size(), 2u);
  EXPECT_EQ(item(*saved).url, crop);
  EXPECT_EQ(item(*saved).state, State::permanent) << "whoever saved it has decided";
  EXPECT_EQ(item(*saved).sourceItemID, source);
  EXPECT_EQ(savedRecord(*saved), item(*saved));
  EXPECT_THAT(queue(), ElementsAre(source)) << "nobody is asked about it";
}

}  // namespace
}  // namespace quillmere::testing
